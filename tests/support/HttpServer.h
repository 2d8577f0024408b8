#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tamzo::testing {

/// One client, as bytes go to and fro: plain, or over TLS.
class Peer {
 public:
  virtual ~Peer() = default;
  /// Sends bytes as they are; false once the client has gone.
  virtual bool send(std::string_view bytes) = 0;
  /// What has come, at least one byte; "" once the client has gone.
  virtual std::string receive() = 0;
};

/// One request as it arrived, and the way back to the client.
class Exchange {
 public:
  Exchange(Peer& peer, int socket, std::string path, std::string head)
      : peer_(peer), socket_(socket), path_(std::move(path)), head_(std::move(head)) {}

  /// The path and query of the request line.
  const std::string& path() const noexcept { return path_; }
  /// The request line and headers, as sent.
  const std::string& head() const noexcept { return head_; }
  /// The value of a header of the request, its name in any letter case; nothing without it.
  std::optional<std::string> header(std::string_view name) const;

  /// Sends bytes as they are; false once the client has gone. The connection is closed afterwards.
  bool send(std::string_view bytes) const;

  /// Sends a whole response with Content-Length, after which the connection stays open unless a
  /// header says otherwise.
  void respond(std::string_view body, std::string_view status = "200 OK",
               const std::vector<std::string>& headers = {}) const;

  /// Makes the connection end with an RST in place of a FIN.
  void resetOnClose() const;

  /// True when the connection stays open after this.
  bool isKept() const noexcept { return isKept_; }

 private:
  Peer& peer_;
  int socket_;
  std::string path_;
  std::string head_;
  mutable bool hasSent_ = false;
  mutable bool isKept_ = false;
};

/// The files that a server over TLS needs.
struct ServerCertificate {
  std::string certificateFile;
  std::string keyFile;
};

/// A real HTTP server on loopback, on a port of its own, for as long as it lives. Each connection
/// is served on a thread of its own, for as many requests as the client sends; an unknown path
/// answers 404.
class HttpServer {
 public:
  using Handler = std::function<void(const Exchange&)>;
  using RawHandler = std::function<void(Peer&)>;

  HttpServer();
  /// The same over TLS.
  explicit HttpServer(const ServerCertificate& certificate);
  ~HttpServer();
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  /// "http://127.0.0.1:PORT", or "https://…", without a slash at the end.
  std::string url(std::string_view path = "") const;
  /// The same by a name, which FakeNames leads here.
  std::string urlOf(std::string_view host, std::string_view path = "") const;
  int port() const;

  /// Serves `path`, query included, from now on.
  void on(const std::string& path, Handler handler);
  /// Serves `path` with that body and status 200.
  void serve(const std::string& path, std::string body);
  /// Takes every connection over from its first byte on, TLS not begun.
  void onConnection(RawHandler handler);

  /// The paths asked for so far, in order.
  std::vector<std::string> requests() const;
  /// The heads of the requests so far, in order.
  std::vector<std::string> heads() const;
  /// The connections that were opened so far.
  std::size_t connections() const;
  /// The connections whose TLS handshake came to its end.
  std::size_t handshakes() const;
  /// The protocols that the last client offered over TLS (ALPN), with a comma between.
  std::string offeredProtocols() const;

  /// Closes every connection that there is, from the server's side.
  void closeConnections();

  /// True once the server is being torn down: a handler that stalls on purpose asks this.
  bool isClosing() const;

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace tamzo::testing
