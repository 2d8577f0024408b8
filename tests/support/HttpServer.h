#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tamzo::testing {

/// One request as it arrived, and the way back to the client.
class Exchange {
 public:
  Exchange(int socket, std::string path, std::string head)
      : socket_(socket), path_(std::move(path)), head_(std::move(head)) {}

  /// The path and query of the request line.
  const std::string& path() const noexcept { return path_; }
  /// The request line and headers, as sent.
  const std::string& head() const noexcept { return head_; }

  /// Sends bytes as they are; false once the client has gone.
  bool send(std::string_view bytes) const;

  /// Sends a whole response with Content-Length.
  void respond(std::string_view body, std::string_view status = "200 OK",
               const std::vector<std::string>& headers = {}) const;

 private:
  int socket_;
  std::string path_;
  std::string head_;
};

/// A real HTTP server on loopback, on a port of its own, for as long as it lives. Each connection
/// is served on a thread of its own and closed after one response; an unknown path answers 404.
class HttpServer {
 public:
  using Handler = std::function<void(const Exchange&)>;

  HttpServer();
  ~HttpServer();
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  /// "http://127.0.0.1:PORT", without a slash at the end.
  std::string url(std::string_view path = "") const;

  /// Serves `path`, query included, from now on.
  void on(const std::string& path, Handler handler);
  /// Serves `path` with that body and status 200.
  void serve(const std::string& path, std::string body);

  /// The paths asked for so far, in order.
  std::vector<std::string> requests() const;

  /// True once the server is being torn down: a handler that stalls on purpose asks this.
  bool isClosing() const;

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace tamzo::testing
