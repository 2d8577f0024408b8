#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "xml/Export.h"

namespace tamzo {

/// Finds the position that was last entered for a key. A few keys are compared one by one; more
/// are hashed, with a hash that an ad server cannot aim at, so that no set of keys is slow.
///
/// Holds views: the characters of a key must outlive the index.
class TAMZO_EXPORT KeyIndex {
 public:
  KeyIndex() noexcept;
  KeyIndex(KeyIndex&&) noexcept;
  KeyIndex& operator=(KeyIndex&&) noexcept;
  ~KeyIndex();

  std::optional<std::size_t> find(std::string_view key) const;
  /// Enters the key, or changes its position.
  void set(std::string_view key, std::size_t position);

 private:
  struct Entry {
    std::string_view key;
    std::size_t position;
  };
  struct Hashed;

  std::vector<Entry> few_;
  std::unique_ptr<Hashed> hashed_;
};

}  // namespace tamzo
