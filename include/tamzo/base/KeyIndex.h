#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace tamzo {

/// Finds the position that was last entered for a key. A few keys, as most ads have, are compared
/// one by one; more stand in a map, so that no set of keys that an ad server sends is slow.
///
/// Holds views: the characters of a key must outlive the index.
class KeyIndex {
 public:
  /// Nothing for a key that was never entered.
  std::optional<std::size_t> find(std::string_view key) const;

  /// Enters the key, or changes its position. Nothing is changed when memory runs out.
  void set(std::string_view key, std::size_t position);

 private:
  std::vector<std::pair<std::string_view, std::size_t>> few_;
  std::map<std::string_view, std::size_t> many_;
};

}  // namespace tamzo
