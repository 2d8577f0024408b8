#include "tests/support/HttpServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace tamzo::testing {

struct HttpServer::State {
  int listener = -1;
  int port = 0;
  std::atomic<bool> isClosing{false};
  mutable std::mutex mutex;
  std::map<std::string, Handler> handlers;
  std::vector<std::string> requests;
  std::vector<std::thread> connections;
  std::thread acceptor;

  void accept();
  void serveConnection(int socket);
};

bool Exchange::send(std::string_view bytes) const {
  while (!bytes.empty()) {
    const ssize_t sent = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent <= 0) {
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

void Exchange::respond(std::string_view body, std::string_view status,
                       const std::vector<std::string>& headers) const {
  std::string head = "HTTP/1.1 " + std::string(status) + "\r\n";
  for (const std::string& header : headers) {
    head += header + "\r\n";
  }
  head += "Content-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n";
  send(head);
  send(body);
}

HttpServer::HttpServer() : state_(std::make_shared<State>()) {
  state_->listener = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  socklen_t length = sizeof(address);
  if (::bind(state_->listener, generic, length) != 0 || ::listen(state_->listener, 64) != 0 ||
      ::getsockname(state_->listener, generic, &length) != 0) {
    throw std::runtime_error("no port on loopback");
  }
  state_->port = ntohs(address.sin_port);
  state_->acceptor = std::thread([state = state_.get()] { state->accept(); });
}

HttpServer::~HttpServer() {
  state_->isClosing = true;
  ::shutdown(state_->listener, SHUT_RDWR);
  state_->acceptor.join();
  ::close(state_->listener);
  for (std::thread& connection : state_->connections) {
    connection.join();
  }
}

std::string HttpServer::url(std::string_view path) const {
  return "http://127.0.0.1:" + std::to_string(state_->port) + std::string(path);
}

void HttpServer::on(const std::string& path, Handler handler) {
  const std::lock_guard lock(state_->mutex);
  state_->handlers[path] = std::move(handler);
}

void HttpServer::serve(const std::string& path, std::string body) {
  on(path, [body = std::move(body)](const Exchange& exchange) { exchange.respond(body); });
}

std::vector<std::string> HttpServer::requests() const {
  const std::lock_guard lock(state_->mutex);
  return state_->requests;
}

bool HttpServer::isClosing() const { return state_->isClosing; }

void HttpServer::State::accept() {
  for (;;) {
    const int socket = ::accept(listener, nullptr, nullptr);
    if (socket < 0 || isClosing) {
      if (socket >= 0) {
        ::close(socket);
      }
      return;
    }
    connections.emplace_back([this, socket] { serveConnection(socket); });
  }
}

void HttpServer::State::serveConnection(int socket) {
  std::string head;
  std::array<char, 4096> buffer{};
  while (head.find("\r\n\r\n") == std::string::npos) {
    const ssize_t count = ::recv(socket, buffer.data(), buffer.size(), 0);
    if (count <= 0) {
      ::close(socket);
      return;
    }
    head.append(buffer.data(), static_cast<std::size_t>(count));
  }
  const std::size_t begin = head.find(' ') + 1;
  const std::string path = head.substr(begin, head.find(' ', begin) - begin);
  Handler handler;
  {
    const std::lock_guard lock(mutex);
    requests.push_back(path);
    const auto found = handlers.find(path);
    handler = found == handlers.end() ? nullptr : found->second;
  }
  const Exchange exchange(socket, path, head);
  if (handler) {
    handler(exchange);
  } else {
    exchange.respond("", "404 Not Found");
  }
  ::shutdown(socket, SHUT_RDWR);
  ::close(socket);
}

}  // namespace tamzo::testing
