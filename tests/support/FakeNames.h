#pragma once

#include <string>
#include <vector>

namespace tamzo::testing {

/// A name service of the test's own, for as long as it lives: takes the place of the system's for
/// the names that it knows. One at a time.
class FakeNames {
 public:
  FakeNames();
  ~FakeNames();
  FakeNames(const FakeNames&) = delete;
  FakeNames& operator=(const FakeNames&) = delete;

  /// `name` has these addresses, as digits, in this order; none: there is no such host.
  void add(const std::string& name, std::vector<std::string> addresses = {"127.0.0.1"});
  /// The same, known only after that many milliseconds.
  void addSlow(const std::string& name, int milliseconds,
               std::vector<std::string> addresses = {"127.0.0.1"});
  /// Nobody answers for `name` until the end of this.
  void addSilent(const std::string& name);

  /// The names that were asked for, in order.
  std::vector<std::string> asked() const;
};

}  // namespace tamzo::testing
