// Passes connections on to servers of this machine and counts the bytes that go by.
//
//     counting_relay PORT...
//
// For each PORT of 127.0.0.1 it listens on a free port there and prints that one, a line each in the order given. From
// then on each line of standard input is answered by the bytes that went to the servers and those that came from them
// since the beginning, "TO FROM" for each PORT, a line each, once no connection is open or a second has passed. It ends
// with its standard input. The bytes are those of the connections' contents, without what the network adds.
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <list>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr std::size_t kMostAtOnce = std::size_t{1} << 20;
constexpr auto kPatience = std::chrono::seconds(1);

/// A descriptor that is closed with the object.
class Descriptor {
 public:
  explicit Descriptor(int number, const char* what) : fNumber(number) {
    if (number < 0) throw std::system_error(errno, std::generic_category(), what);
  }
  ~Descriptor() { close(fNumber); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int get() const { return fNumber; }

 private:
  int fNumber;
};

/// A server that is passed on to.
struct Target {
  std::uint16_t port = 0;
  std::atomic<std::int64_t> toServer{0};
  std::atomic<std::int64_t> fromServer{0};
  std::atomic<int> connections{0};
};

sockaddr_in LocalAddress(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

Descriptor NewSocket() { return Descriptor(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket"); }

/// Whatever comes from one side goes to the other, without a copy through this process, until the side ends.
void PassOn(int from, int to, std::atomic<std::int64_t>& count) {
  std::array<int, 2> pipe{};
  if (pipe2(pipe.data(), O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
  const Descriptor out(pipe[0], "pipe");
  const Descriptor in(pipe[1], "pipe");
  fcntl(in.get(), F_SETPIPE_SZ, kMostAtOnce);
  while (true) {
    ssize_t left = splice(from, nullptr, in.get(), nullptr, kMostAtOnce, SPLICE_F_MOVE);
    if (left <= 0) break;
    count += left;
    while (left > 0) {
      const ssize_t sent = splice(out.get(), nullptr, to, nullptr, static_cast<std::size_t>(left), SPLICE_F_MOVE);
      if (sent <= 0) {
        // The other side is gone, and the one that still sends must learn of it.
        shutdown(from, SHUT_RD);
        return;
      }
      left -= sent;
    }
  }
  shutdown(to, SHUT_WR);
}

void Serve(int accepted, Target& target) {
  const Descriptor client(accepted, "accept");
  try {
    const Descriptor server = NewSocket();
    const int yes = 1;
    setsockopt(client.get(), IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    setsockopt(server.get(), IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    const sockaddr_in address = LocalAddress(target.port);
    if (connect(server.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
      throw std::system_error(errno, std::generic_category(), "connect");
    std::thread answers(PassOn, server.get(), client.get(), std::ref(target.fromServer));
    PassOn(client.get(), server.get(), target.toServer);
    answers.join();
  } catch (const std::system_error& error) {
    std::cerr << "counting_relay: " << error.what() << '\n';
  }
  --target.connections;
}

void Listen(int listening, Target& target) {
  while (true) {
    const int accepted = accept4(listening, nullptr, nullptr, SOCK_CLOEXEC);
    if (accepted < 0) continue;
    ++target.connections;
    std::thread(Serve, accepted, std::ref(target)).detach();
  }
}

/// Listens on a free port, prints it, and serves it from now on.
void Open(Target& target) {
  // Open as long as the process is.
  const int listening = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address = LocalAddress(0);
  socklen_t length = sizeof address;
  if (listening < 0 || bind(listening, reinterpret_cast<const sockaddr*>(&address), length) != 0 ||
      listen(listening, SOMAXCONN) != 0 || getsockname(listening, reinterpret_cast<sockaddr*>(&address), &length) != 0)
    throw std::system_error(errno, std::generic_category(), "listen");
  std::cout << ntohs(address.sin_port) << std::endl;
  std::thread(Listen, listening, std::ref(target)).detach();
}

void Tell(const std::list<Target>& targets) {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  for (const Target& target : targets)
    while (target.connections > 0 && std::chrono::steady_clock::now() < end)
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
  for (const Target& target : targets) std::cout << target.toServer << ' ' << target.fromServer << '\n';
  std::cout.flush();
}

}  // namespace

int main(int argc, char** argv) {
  try {
    std::signal(SIGPIPE, SIG_IGN);
    if (argc < 2) throw std::invalid_argument("usage: counting_relay PORT...");
    std::list<Target> targets;
    for (int i = 1; i < argc; ++i) {
      targets.emplace_back().port = static_cast<std::uint16_t>(std::stoul(argv[i]));
      Open(targets.back());
    }
    std::string line;
    while (std::getline(std::cin, line)) Tell(targets);
    // Threads that still serve would see the targets go.
    std::_Exit(EXIT_SUCCESS);
  } catch (const std::exception& error) {
    std::cerr << "counting_relay: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
