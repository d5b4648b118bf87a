#include "tests/cells/nastyfile.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace cells {

namespace {

/// splitmix64, by its author's published constants.
class Random {
 public:
  explicit Random(std::uint64_t seed) : fState(seed) {}

  std::uint64_t Below(std::uint64_t bound) {
    std::uint64_t z = (fState += 0x9E3779B97F4A7C15U);
    z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9U;
    z = (z ^ (z >> 27U)) * 0x94D049BB133111EBU;
    return (z ^ (z >> 31U)) % bound;
  }
  bool Percent(std::uint64_t percent) { return Below(100) < percent; }
  template <class Choices>
  const auto& From(const Choices& choices) {
    return choices[Below(choices.size())];
  }

 private:
  std::uint64_t fState;
};

constexpr std::array<std::string_view, 3> kLineEnds = {"\n", "\r\n", "\r"};
constexpr std::array<std::string_view, 10> kPlain = {"",       "1",   "-9",    "3.25",       "yes",
                                                     "a-b_c.", "007", "x y z", "2024-02-29", "1e5"};
constexpr std::array<std::string_view, 8> kMultiByte = {"\u00E9t\u00E9", "\u6F22\u5B57",  "\U0001F600", "na\u00EFve",
                                                        "e\u0301",       "\u2028between", "\u00A0",     "\u05D0\u05D1"};
constexpr std::array<std::string_view, 8> kInQuotes = {"a,b", ";", "two\nlines", "\r\n", "a\rb", "\t|,;", " ", "\n"};

/// What a file is made of; chances in percent.
struct Manner {
  std::string_view delimiter = ",";
  std::string_view lineEnd = "\n";
  std::size_t columns = 3;
  std::size_t rows = 5;
  bool mixesLineEnds = false;
  std::uint64_t quoted = 0;
  std::uint64_t doubledQuote = 0;
  std::uint64_t textBehindQuote = 0;
  std::uint64_t blankBehindQuote = 0;
  std::uint64_t blankBeforeQuote = 0;
  std::uint64_t strayQuote = 0;
  std::uint64_t blanksAround = 0;
  std::uint64_t emptyCell = 5;
  std::uint64_t multiByte = 0;
  std::uint64_t nul = 0;
  std::uint64_t noUtf8 = 0;
  std::uint64_t longCell = 0;
  std::uint64_t blankLine = 0;
  std::uint64_t ragged = 0;
  std::uint64_t unclosedQuote = 0;
  bool byteOrderMark = false;
  bool lastLineEnd = true;
};

Manner DrawManner(Random& random) {
  constexpr std::array<std::string_view, 6> kDelimiters = {",", ",", ",", ";", "\t", "|"};
  Manner manner;
  manner.delimiter = random.From(kDelimiters);
  manner.lineEnd = random.From(kLineEnds);
  manner.columns = random.Percent(15) ? 1 : 2 + random.Below(6);
  manner.rows = random.Percent(3) ? 3000 : random.Below(30);
  manner.byteOrderMark = random.Percent(4);
  manner.lastLineEnd = random.Percent(75);
  manner.quoted = random.Percent(60) ? 5 + random.Below(60) : 0;
  manner.doubledQuote = random.Percent(50) ? 20 : 0;
  manner.multiByte = random.Percent(40) ? 15 : 0;
  // Each of these alone in many files, several in some.
  const auto now = [&](std::uint64_t files, std::uint64_t chance) { return random.Percent(files) ? chance : 0; };
  manner.mixesLineEnds = random.Percent(8);
  manner.textBehindQuote = now(8, 8);
  manner.blankBehindQuote = now(8, 8);
  manner.blankBeforeQuote = now(8, 8);
  manner.strayQuote = now(8, 5);
  manner.blanksAround = now(20, 15);
  manner.emptyCell = now(50, 20);
  manner.nul = now(4, 4);
  manner.noUtf8 = now(1, 5);
  manner.longCell = now(4, 3);
  manner.blankLine = now(10, 10);
  manner.ragged = now(12, 10);
  manner.unclosedQuote = now(2, 2);
  return manner;
}

std::string CellText(Random& random, const Manner& manner) {
  if (random.Percent(manner.emptyCell)) return {};
  if (random.Percent(manner.multiByte)) return std::string(random.From(kMultiByte));
  if (random.Percent(manner.longCell)) return std::string(1000 + random.Below(200'000), 'L');
  if (random.Percent(manner.noUtf8)) return "\xE9t\xE9";
  if (random.Percent(manner.nul)) return std::string("n\0l", 3);
  return std::string(random.From(kPlain));
}

std::string QuotedCell(Random& random, const Manner& manner) {
  std::string text = CellText(random, manner);
  if (random.Percent(40)) text += random.From(kInQuotes);
  if (random.Percent(manner.doubledQuote)) text.insert(0, "\"\"");
  if (random.Percent(manner.doubledQuote)) text += "\"\"";
  std::string cell = "\"" + text;
  if (!random.Percent(manner.unclosedQuote)) cell += '"';
  if (random.Percent(manner.textBehindQuote)) cell += random.Percent(50) ? "tail" : " t";
  if (random.Percent(manner.blankBehindQuote)) cell += "  ";
  if (random.Percent(manner.blankBeforeQuote)) cell.insert(0, random.Percent(50) ? " " : "   ");
  return cell;
}

std::string PlainCell(Random& random, const Manner& manner) {
  std::string cell = CellText(random, manner);
  if (random.Percent(manner.strayQuote)) cell += random.Percent(50) ? "x\"" : "x\"y";
  if (random.Percent(manner.blanksAround))
    cell = (random.Percent(50) ? " " : "") + cell + (random.Percent(50) ? "  " : " ");
  return cell;
}

}  // namespace

std::string NastyFile(std::uint64_t seed) {
  Random random(seed * 0x9E3779B97F4A7C15U + 1);
  const Manner manner = DrawManner(random);
  std::string text = manner.byteOrderMark ? "\xEF\xBB\xBF" : "";
  for (std::size_t column = 0; column < manner.columns; ++column) {
    if (column > 0) text += manner.delimiter;
    text += random.Percent(10) ? "\"head " + std::to_string(column) + "\"" : "v" + std::to_string(column);
  }
  for (std::size_t row = 0; row < manner.rows; ++row) {
    const auto endLine = [&] { text += manner.mixesLineEnds ? random.From(kLineEnds) : manner.lineEnd; };
    endLine();
    while (random.Percent(manner.blankLine)) endLine();
    std::size_t cells = manner.columns;
    if (random.Percent(manner.ragged))
      cells = random.Percent(50) ? 1 + random.Below(cells) : cells + 1 + random.Below(3);
    for (std::size_t cell = 0; cell < cells; ++cell) {
      if (cell > 0) text += manner.delimiter;
      text += random.Percent(manner.quoted) ? QuotedCell(random, manner) : PlainCell(random, manner);
    }
  }
  if (manner.lastLineEnd) text += manner.lineEnd;
  return text;
}

}  // namespace cells
