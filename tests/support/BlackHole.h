#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace tamzo::testing {

/// A port on loopback where a client waits for a connection and never gets one: its queue is full.
class BlackHole {
 public:
  /// On a port of its own, or on that one.
  explicit BlackHole(const std::string& address = "127.0.0.1", int port = 0) : address_(address) {
    sockaddr_in in = at(port);
    socklen_t length = sizeof in;
    listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::bind(listener_, reinterpret_cast<sockaddr*>(&in), length) != 0 ||
        ::listen(listener_, 0) != 0 ||
        ::getsockname(listener_, reinterpret_cast<sockaddr*>(&in), &length) != 0) {
      throw std::runtime_error("no port on loopback");
    }
    port_ = ntohs(in.sin_port);
    for (int i = 0; i < 4; ++i) {
      const int client = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
      sockaddr_in here = at(port_);
      static_cast<void>(::connect(client, reinterpret_cast<sockaddr*>(&here), sizeof here));
      clients_.push_back(client);
    }
    ::usleep(50'000);
  }
  ~BlackHole() {
    for (const int client : clients_) {
      ::close(client);
    }
    ::close(listener_);
  }
  BlackHole(const BlackHole&) = delete;
  BlackHole& operator=(const BlackHole&) = delete;

  std::string url(const std::string& path = "/") const {
    return "http://" + address_ + ":" + std::to_string(port_) + path;
  }

 private:
  sockaddr_in at(int port) const {
    sockaddr_in in{};
    in.sin_family = AF_INET;
    in.sin_port = htons(static_cast<std::uint16_t>(port));
    ::inet_pton(AF_INET, address_.c_str(), &in.sin_addr);
    return in;
  }

  std::string address_;
  int listener_ = -1;
  int port_ = 0;
  std::vector<int> clients_;
};

}  // namespace tamzo::testing
