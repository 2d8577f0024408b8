#include "tests/support/HttpServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/ssl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>

#include "base/Ascii.h"

namespace tamzo::testing {
namespace {

// A proxy of the machine's would be asked for what these servers have, by this process and by the
// commands that it runs.
[[maybe_unused]] const bool kHasNoProxy = [] {
  for (const char* name : {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY",
                           "no_proxy", "NO_PROXY"}) {
    unsetenv(name);
  }
  return true;
}();

class PlainPeer : public Peer {
 public:
  explicit PlainPeer(int socket) : socket_(socket) {}

  bool send(std::string_view bytes) override {
    while (!bytes.empty()) {
      const ssize_t sent = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
      if (sent <= 0) {
        return false;
      }
      bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
  }

  std::string receive() override {
    std::array<char, 16384> buffer{};
    const ssize_t count = ::recv(socket_, buffer.data(), buffer.size(), 0);
    return count <= 0 ? "" : std::string(buffer.data(), static_cast<std::size_t>(count));
  }

 private:
  int socket_;
};

// TLS between memory and a plain peer, so that no write of OpenSSL's raises SIGPIPE.
class TlsPeer : public Peer {
 public:
  TlsPeer(Peer& plain, SSL_CTX* context)
      : plain_(plain),
        ssl_(SSL_new(context)),
        in_(BIO_new(BIO_s_mem())),
        out_(BIO_new(BIO_s_mem())) {
    SSL_set_bio(ssl_.get(), in_, out_);
    SSL_set_accept_state(ssl_.get());
  }

  bool handshake() {
    return drive([this] { return SSL_do_handshake(ssl_.get()); }) == 1;
  }

  bool send(std::string_view bytes) override {
    while (!bytes.empty()) {
      const std::string_view piece = bytes.substr(0, 16384);
      if (drive([&] {
            return SSL_write(ssl_.get(), piece.data(), static_cast<int>(piece.size()));
          }) <= 0) {
        return false;
      }
      bytes.remove_prefix(piece.size());
    }
    return true;
  }

  std::string receive() override {
    std::array<char, 16384> buffer{};
    const int count =
        drive([&] { return SSL_read(ssl_.get(), buffer.data(), static_cast<int>(buffer.size())); });
    return count <= 0 ? "" : std::string(buffer.data(), static_cast<std::size_t>(count));
  }

  void close() {
    SSL_shutdown(ssl_.get());
    flush();
  }

 private:
  struct Free {
    void operator()(SSL* ssl) const noexcept { SSL_free(ssl); }
  };

  // Repeats a step until it needs nothing more from the network.
  int drive(const std::function<int()>& step) {
    for (;;) {
      const int result = step();
      const int error = SSL_get_error(ssl_.get(), result);
      if (!flush() || (result <= 0 && error != SSL_ERROR_WANT_READ)) {
        return -1;
      }
      if (result > 0) {
        return result;
      }
      const std::string more = plain_.receive();
      if (more.empty()) {
        return -1;
      }
      BIO_write(in_, more.data(), static_cast<int>(more.size()));
    }
  }

  bool flush() {
    std::array<char, 16384> buffer{};
    int count = 0;
    while ((count = BIO_read(out_, buffer.data(), static_cast<int>(buffer.size()))) > 0) {
      if (!plain_.send({buffer.data(), static_cast<std::size_t>(count)})) {
        return false;
      }
    }
    return true;
  }

  Peer& plain_;
  std::unique_ptr<SSL, Free> ssl_;
  BIO* in_;  // owned by ssl_
  BIO* out_;
};

}  // namespace

struct HttpServer::State {
  int listener = -1;
  int port = 0;
  std::shared_ptr<SSL_CTX> tls;
  std::atomic<bool> isClosing{false};
  mutable std::mutex mutex;
  std::map<std::string, Handler> handlers;
  RawHandler rawHandler;
  std::vector<std::string> requests;
  std::vector<std::string> heads;
  std::set<int> open;
  std::size_t connectionCount = 0;
  std::size_t handshakeCount = 0;
  std::string protocols;
  std::vector<std::thread> threads;
  std::thread acceptor;

  void listen();
  void useTls(const ServerCertificate& certificate);
  void accept();
  void serveConnection(int socket);
  void serveClient(int socket);
  void serveRequests(Peer& peer, int socket);
  bool serveRequest(Peer& peer, int socket, std::string head);
  void shutDownConnections();

  static int onProtocols(SSL*, const unsigned char** out, unsigned char* outLength,
                         const unsigned char* in, unsigned length, void* self);
};

std::optional<std::string> Exchange::header(std::string_view name) const {
  std::string_view rest = head_;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find("\r\n"), rest.size());
    const std::string_view line = rest.substr(0, end);
    const std::size_t colon = line.find(':');
    if (colon != std::string_view::npos && equalsInAnyCase(line.substr(0, colon), name)) {
      const std::size_t value = line.find_first_not_of(' ', colon + 1);
      return std::string(value == std::string_view::npos ? "" : line.substr(value));
    }
    rest.remove_prefix(std::min(end + 2, rest.size()));
  }
  return std::nullopt;
}

bool Exchange::send(std::string_view bytes) const {
  hasSent_ = true;
  isKept_ = false;
  return peer_.send(bytes);
}

void Exchange::respond(std::string_view body, std::string_view status,
                       const std::vector<std::string>& headers) const {
  std::string answer = "HTTP/1.1 " + std::string(status) + "\r\n";
  bool stays = !hasSent_;
  for (const std::string& header : headers) {
    answer += header + "\r\n";
    stays = stays && header != "Connection: close";
  }
  answer += "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n";
  answer += body;
  isKept_ = peer_.send(answer) && stays;
}

void Exchange::resetOnClose() const {
  isKept_ = false;
  const linger atOnce{1, 0};
  ::setsockopt(socket_, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
}

HttpServer::HttpServer() : state_(std::make_shared<State>()) { state_->listen(); }

HttpServer::HttpServer(const ServerCertificate& certificate) : state_(std::make_shared<State>()) {
  state_->useTls(certificate);
  state_->listen();
}

HttpServer::~HttpServer() {
  state_->isClosing = true;
  ::shutdown(state_->listener, SHUT_RDWR);
  state_->acceptor.join();
  ::close(state_->listener);
  state_->shutDownConnections();
  for (std::thread& thread : state_->threads) {
    thread.join();
  }
}

std::string HttpServer::url(std::string_view path) const { return urlOf("127.0.0.1", path); }

std::string HttpServer::urlOf(std::string_view host, std::string_view path) const {
  return (state_->tls == nullptr ? "http://" : "https://") + std::string(host) + ":" +
         std::to_string(state_->port) + std::string(path);
}

int HttpServer::port() const { return state_->port; }

void HttpServer::on(const std::string& path, Handler handler) {
  const std::lock_guard lock(state_->mutex);
  state_->handlers[path] = std::move(handler);
}

void HttpServer::serve(const std::string& path, std::string body) {
  on(path, [body = std::move(body)](const Exchange& exchange) { exchange.respond(body); });
}

void HttpServer::onConnection(RawHandler handler) {
  const std::lock_guard lock(state_->mutex);
  state_->rawHandler = std::move(handler);
}

std::vector<std::string> HttpServer::requests() const {
  const std::lock_guard lock(state_->mutex);
  return state_->requests;
}

std::vector<std::string> HttpServer::heads() const {
  const std::lock_guard lock(state_->mutex);
  return state_->heads;
}

std::size_t HttpServer::connections() const {
  const std::lock_guard lock(state_->mutex);
  return state_->connectionCount;
}

std::size_t HttpServer::handshakes() const {
  const std::lock_guard lock(state_->mutex);
  return state_->handshakeCount;
}

std::string HttpServer::offeredProtocols() const {
  const std::lock_guard lock(state_->mutex);
  return state_->protocols;
}

void HttpServer::closeConnections() { state_->shutDownConnections(); }

bool HttpServer::isClosing() const { return state_->isClosing; }

void HttpServer::State::listen() {
  listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  socklen_t length = sizeof(address);
  if (::bind(listener, generic, length) != 0 || ::listen(listener, 64) != 0 ||
      ::getsockname(listener, generic, &length) != 0) {
    throw std::runtime_error("no port on loopback");
  }
  port = ntohs(address.sin_port);
  acceptor = std::thread([this] { accept(); });
}

void HttpServer::State::useTls(const ServerCertificate& certificate) {
  tls.reset(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
  if (SSL_CTX_use_certificate_chain_file(tls.get(), certificate.certificateFile.c_str()) != 1 ||
      SSL_CTX_use_PrivateKey_file(tls.get(), certificate.keyFile.c_str(), SSL_FILETYPE_PEM) != 1) {
    throw std::runtime_error("no certificate in " + certificate.certificateFile);
  }
  SSL_CTX_set_alpn_select_cb(tls.get(), &State::onProtocols, this);
}

int HttpServer::State::onProtocols(SSL*, const unsigned char** out, unsigned char* outLength,
                                   const unsigned char* in, unsigned length, void* self) {
  auto& state = *static_cast<State*>(self);
  const std::lock_guard lock(state.mutex);
  state.protocols.clear();
  for (unsigned at = 0; at < length; at += in[at] + 1U) {
    state.protocols += at == 0 ? "" : ",";
    state.protocols.append(reinterpret_cast<const char*>(in) + at + 1, in[at]);
  }
  *out = in + 1;
  *outLength = in[0];
  return SSL_TLSEXT_ERR_OK;
}

void HttpServer::State::accept() {
  for (;;) {
    const int socket = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (socket < 0 || isClosing) {
      if (socket >= 0) {
        ::close(socket);
      }
      return;
    }
    const int on = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    const std::lock_guard lock(mutex);
    ++connectionCount;
    open.insert(socket);
    threads.emplace_back([this, socket] { serveConnection(socket); });
  }
}

void HttpServer::State::shutDownConnections() {
  const std::lock_guard lock(mutex);
  for (const int socket : open) {
    ::shutdown(socket, SHUT_RDWR);
  }
}

void HttpServer::State::serveConnection(int socket) {
  serveClient(socket);
  const std::lock_guard lock(mutex);
  open.erase(socket);
  ::close(socket);
}

void HttpServer::State::serveClient(int socket) {
  PlainPeer plain(socket);
  RawHandler raw;
  {
    const std::lock_guard lock(mutex);
    raw = rawHandler;
  }
  if (raw) {
    raw(plain);
    return;
  }
  if (tls == nullptr) {
    serveRequests(plain, socket);
    return;
  }
  TlsPeer peer(plain, tls.get());
  if (peer.handshake()) {
    {
      const std::lock_guard lock(mutex);
      ++handshakeCount;
    }
    serveRequests(peer, socket);
    peer.close();
  }
}

void HttpServer::State::serveRequests(Peer& peer, int socket) {
  constexpr std::string_view kEnd = "\r\n\r\n";
  std::string received;
  for (;;) {
    std::size_t end = 0;
    while ((end = received.find(kEnd)) == std::string::npos) {
      const std::string more = peer.receive();
      constexpr char kTls = 0x16;
      if (more.empty() || more[0] == kTls) {
        return;
      }
      received += more;
    }
    std::string head = received.substr(0, end + kEnd.size());
    received.erase(0, head.size());
    if (!serveRequest(peer, socket, std::move(head))) {
      return;
    }
  }
}

bool HttpServer::State::serveRequest(Peer& peer, int socket, std::string head) {
  const std::size_t begin = head.find(' ') + 1;
  const std::string path = head.substr(begin, head.find(' ', begin) - begin);
  Handler handler;
  {
    const std::lock_guard lock(mutex);
    requests.push_back(path);
    heads.push_back(head);
    const auto found = handlers.find(path);
    handler = found == handlers.end() ? nullptr : found->second;
  }
  const Exchange exchange(peer, socket, path, std::move(head));
  if (handler) {
    handler(exchange);
  } else {
    exchange.respond("", "404 Not Found");
  }
  return exchange.isKept();
}

}  // namespace tamzo::testing
