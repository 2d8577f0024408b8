#pragma once

#include <cstddef>
#include <cstdint>
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
  std::optional<std::size_t> find(std::string_view key) const;
  /// Enters the key, or changes its position. Nothing is changed when memory runs out.
  void set(std::string_view key, std::size_t position);

 private:
  struct Entry {
    std::string_view key;
    std::size_t position;
  };
  // An entry by its number in `entries_`, and as much of its hash as finds the slot again in a
  // larger table.
  struct Slot {
    std::uint32_t hash;
    std::uint32_t entry;
  };
  static constexpr std::uint32_t kFree = UINT32_MAX;

  const Entry* findEntry(std::string_view key, std::uint32_t hash) const noexcept;
  static void enter(std::vector<Slot>& slots, Slot slot) noexcept;
  void growTable();

  std::vector<Entry> entries_;
  std::vector<Slot> slots_;  // empty while there are few entries
};

}  // namespace tamzo
