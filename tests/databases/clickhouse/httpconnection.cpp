#include "tests/databases/clickhouse/httpconnection.h"

#include <array>
#include <cstring>
#include <memory>
#include <optional>
#include <utility>

#include <arpa/inet.h>
#include <fmt/format.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "runtime/data/open.h"

namespace clickhouse {

using runtime::data::DataError;
using runtime::data::SqlColumn;
using runtime::data::SqlRows;
using runtime::data::SqlType;

namespace {

class Socket {
 public:
  explicit Socket(int port) : fHandle(::socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    // The interface takes every family of addresses by the same pointer.
    if (fHandle < 0 || ::connect(fHandle, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
      throw DataError(fmt::format("127.0.0.1:{}: {}", port, std::strerror(errno)));
  }
  ~Socket() {
    if (fHandle >= 0) ::close(fHandle);
  }
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;

  void Write(std::string_view text) const {
    while (!text.empty()) {
      const ssize_t written = ::send(fHandle, text.data(), text.size(), MSG_NOSIGNAL);
      if (written <= 0) throw DataError(fmt::format("the server is gone: {}", std::strerror(errno)));
      text.remove_prefix(static_cast<std::size_t>(written));
    }
  }

  std::string ReadAll() const {
    std::string text;
    std::array<char, 65536> buffer;
    for (;;) {
      const ssize_t got = ::recv(fHandle, buffer.data(), buffer.size(), 0);
      if (got < 0) throw DataError(fmt::format("the server is gone: {}", std::strerror(errno)));
      if (got == 0) return text;
      text.append(buffer.data(), static_cast<std::size_t>(got));
    }
  }

 private:
  int fHandle;
};

/// Tabs, line ends and backslashes of cells are written behind a backslash.
std::string Unescaped(std::string_view cell) {
  std::string text;
  for (std::size_t i = 0; i < cell.size(); ++i) {
    if (cell[i] != '\\' || i + 1 == cell.size()) {
      text += cell[i];
      continue;
    }
    const char letter = cell[++i];
    text += letter == 't'   ? '\t'
            : letter == 'n' ? '\n'
            : letter == 'r' ? '\r'
            : letter == '0' ? '\0'
            : letter == 'b' ? '\b'
            : letter == 'f' ? '\f'
                            : letter;
  }
  return text;
}

std::vector<std::string_view> CellsOf(std::string_view line) {
  std::vector<std::string_view> cells;
  for (;;) {
    const std::size_t tab = line.find('\t');
    cells.push_back(line.substr(0, tab));
    if (tab == std::string_view::npos) return cells;
    line.remove_prefix(tab + 1);
  }
}

class Rows : public SqlRows {
 public:
  explicit Rows(std::string answer) : fAnswer(std::move(answer)), fRest(fAnswer) {}

  bool Next() override {
    if (fRest.empty()) return false;
    const std::size_t end = fRest.find('\n');
    fCells.clear();
    for (const std::string_view cell : CellsOf(fRest.substr(0, end)))
      fCells.push_back(cell == "\\N" ? std::nullopt : std::optional(Unescaped(cell)));
    fRest.remove_prefix(end == std::string_view::npos ? fRest.size() : end + 1);
    return true;
  }
  std::optional<std::string_view> Text(std::size_t column) override { return fCells.at(column); }

 private:
  std::string fAnswer;
  std::string_view fRest;
  std::vector<std::optional<std::string>> fCells;
};

SqlType TypeOf(std::string_view name) {
  constexpr std::string_view kNullable = "Nullable(";
  if (name.substr(0, kNullable.size()) == kNullable)
    name = name.substr(kNullable.size(), name.size() - kNullable.size() - 1);
  const auto begins = [&](std::string_view word) { return name.substr(0, word.size()) == word; };
  if (begins("Int") || begins("UInt")) return SqlType::Whole;
  if (begins("Decimal")) return SqlType::Decimal;
  if (name == "Float32") return SqlType::Single;
  if (name == "Float64") return SqlType::Double;
  if (begins("DateTime")) return SqlType::DateTime;
  if (name == "Date") return SqlType::Date;
  return SqlType::Text;
}

}  // namespace

HttpConnection::HttpConnection(const std::string& address) {
  fName = address;
  fEngine = "ClickHouse";
  fPort = std::stoi(address.substr(address.rfind(':') + 1));
}

std::string HttpConnection::Send(const std::string& statement) const {
  const Socket socket(fPort);
  socket.Write(fmt::format("POST /?user=reader HTTP/1.0\r\nContent-Length: {}\r\n\r\n{}", statement.size(), statement));
  const std::string answer = socket.ReadAll();
  const std::size_t head = answer.find("\r\n\r\n");
  if (head == std::string::npos) throw DataError(fName + ": the server did not answer");
  std::string body = answer.substr(head + 4);
  if (answer.compare(answer.find(' ') + 1, 3, "200") != 0)
    throw DataError(fmt::format("{}: {}, asked {}", fName, body, statement));
  return body;
}

std::string HttpConnection::Quoted(std::string_view identifier) const {
  std::string quoted = "`";
  for (const char letter : identifier) {
    if (letter == '`' || letter == '\\') quoted += '\\';
    quoted += letter;
  }
  return quoted + "`";
}

std::unique_ptr<SqlRows> HttpConnection::Ask(const std::string& query) {
  return std::make_unique<Rows>(Send(query + " FORMAT TabSeparated"));
}

void HttpConnection::Run(const std::string& statement) { Send(statement); }

std::string HttpConnection::FindTable(const std::string& table) { return Quoted(table); }

std::string HttpConnection::OnlyTable() { throw DataError(fName + ": name the table"); }

std::vector<SqlColumn> HttpConnection::ColumnsOf(const std::string& relation) {
  const std::string answer = Send("SELECT * FROM " + relation + " LIMIT 0 FORMAT TabSeparatedWithNamesAndTypes");
  const std::size_t end = answer.find('\n');
  const std::vector<std::string_view> names = CellsOf(std::string_view(answer).substr(0, end));
  const std::size_t types = end + 1;
  const std::vector<std::string_view> kinds =
      CellsOf(std::string_view(answer).substr(types, answer.find('\n', types) - types));
  std::vector<SqlColumn> columns;
  for (std::size_t i = 0; i < names.size(); ++i) {
    columns.emplace_back();
    columns.back().name = Unescaped(names[i]);
    columns.back().type = TypeOf(kinds.at(i));
  }
  return columns;
}

}  // namespace clickhouse
