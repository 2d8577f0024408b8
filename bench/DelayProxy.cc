#include "bench/DelayProxy.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <deque>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace tamzo::bench {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

sockaddr_in loopback(int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

void sendAtOnce(int socket) {
  const int on = 1;
  setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

bool sendAll(int socket, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent <= 0) {
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

// What is under way in one direction. No bytes: the end.
struct Piece {
  Clock::time_point due;
  std::string bytes;
};

struct Direction {
  int from;
  int to;
  std::deque<Piece> pieces;
  bool hasEnded = false;
};

}  // namespace

struct DelayProxy::State {
  int listener = -1;
  int port = 0;
  int targetPort = 0;
  milliseconds roundTrip{};
  std::atomic<int> connections{0};
  std::atomic<int> turns{0};
  std::mutex mutex;
  std::set<int> open;
  std::vector<std::thread> threads;
  std::thread acceptor;

  void accept();
  void relay(int client);
  void relayBetween(int client, int server);
  static bool deliver(Direction& direction);
  static bool read(Direction& direction, Clock::duration delay);
};

DelayProxy::DelayProxy(int targetPort, milliseconds roundTrip) : state_(new State) {
  state_->targetPort = targetPort;
  state_->roundTrip = roundTrip;
  state_->listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address = loopback(0);
  socklen_t length = sizeof address;
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  if (bind(state_->listener, generic, length) != 0 || listen(state_->listener, 64) != 0 ||
      getsockname(state_->listener, generic, &length) != 0) {
    throw std::runtime_error("no port on loopback");
  }
  state_->port = ntohs(address.sin_port);
  state_->acceptor = std::thread([state = state_.get()] { state->accept(); });
}

DelayProxy::~DelayProxy() {
  shutdown(state_->listener, SHUT_RDWR);
  state_->acceptor.join();
  close(state_->listener);
  {
    const std::lock_guard lock(state_->mutex);
    for (const int each : state_->open) {
      shutdown(each, SHUT_RDWR);
    }
  }
  for (std::thread& thread : state_->threads) {
    thread.join();
  }
}

int DelayProxy::port() const noexcept { return state_->port; }
int DelayProxy::connections() const noexcept { return state_->connections; }
int DelayProxy::turns() const noexcept { return state_->turns; }

void DelayProxy::State::accept() {
  for (;;) {
    const int client = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (client < 0) {
      return;
    }
    ++connections;
    sendAtOnce(client);
    const std::lock_guard lock(mutex);
    open.insert(client);
    threads.emplace_back([this, client] { relay(client); });
  }
}

void DelayProxy::State::relay(int client) {
  const int server = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address = loopback(targetPort);
  if (connect(server, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) {
    sendAtOnce(server);
    relayBetween(client, server);
  }
  const std::lock_guard lock(mutex);
  open.erase(client);
  close(client);
  close(server);
}

void DelayProxy::State::relayBetween(int client, int server) {
  Direction up{client, server, {}, false};
  Direction down{server, client, {}, false};
  const auto established = Clock::now() + roundTrip;
  bool isWaiting = false;
  while (!(up.hasEnded && up.pieces.empty()) && !(down.hasEnded && down.pieces.empty())) {
    auto soonest = Clock::now() + std::chrono::seconds(1);
    for (const Direction* each : {&up, &down}) {
      soonest = each->pieces.empty() ? soonest : std::min(soonest, each->pieces.front().due);
    }
    const auto wait = std::chrono::ceil<milliseconds>(soonest - Clock::now()).count();
    std::array<pollfd, 2> sockets{
        {{up.hasEnded ? -1 : client, POLLIN, 0}, {down.hasEnded ? -1 : server, POLLIN, 0}}};
    poll(sockets.data(), sockets.size(), static_cast<int>(std::max<long>(wait, 0)));
    const auto extra = std::max(established - Clock::now(), Clock::duration::zero());
    if (sockets[0].revents != 0 && read(up, roundTrip / 2 + extra)) {
      isWaiting = true;
    }
    // A client that has closed its side waits for nothing.
    if (sockets[1].revents != 0 && read(down, roundTrip / 2) && isWaiting && !up.hasEnded) {
      isWaiting = false;
      ++turns;
    }
    if (!deliver(up) || !deliver(down)) {
      return;
    }
  }
}

// True when something came, other than the end.
bool DelayProxy::State::read(Direction& direction, Clock::duration delay) {
  std::array<char, 65536> buffer{};
  const ssize_t count = recv(direction.from, buffer.data(), buffer.size(), 0);
  direction.hasEnded = count <= 0;
  direction.pieces.push_back(
      {Clock::now() + delay,
       std::string(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)))});
  return count > 0;
}

bool DelayProxy::State::deliver(Direction& direction) {
  while (!direction.pieces.empty() && direction.pieces.front().due <= Clock::now()) {
    const std::string bytes = std::move(direction.pieces.front().bytes);
    direction.pieces.pop_front();
    if (bytes.empty()) {
      shutdown(direction.to, SHUT_WR);
    } else if (!sendAll(direction.to, bytes)) {
      return false;
    }
  }
  return true;
}

}  // namespace tamzo::bench
