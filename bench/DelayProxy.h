#pragma once

#include <atomic>
#include <chrono>
#include <memory>

namespace tamzo::bench {

/// A link of some length between clients and a server on loopback: what goes through arrives half a
/// round trip later, and what a client sends first a whole one later still, as if the handshake of
/// TCP had to come all that way.
class DelayProxy {
 public:
  DelayProxy(int targetPort, std::chrono::milliseconds roundTrip);
  ~DelayProxy();
  DelayProxy(const DelayProxy&) = delete;
  DelayProxy& operator=(const DelayProxy&) = delete;

  /// Where clients connect.
  int port() const noexcept;
  /// The connections so far.
  int connections() const noexcept;
  /// How often a client had to wait for the server to answer, over all connections.
  int turns() const noexcept;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace tamzo::bench
