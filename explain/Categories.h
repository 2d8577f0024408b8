#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

#include "explain/SeenHop.h"

namespace tamzo::explain {

/// The entries of a list of blocked categories, as the parser takes them: as they stand between
/// commas, empty ones included. Views into the list, which must outlive this.
class BlockedEntries {
 public:
  /// Of nil there are none.
  explicit BlockedEntries(const Text& list);

  /// The first place of an entry, from 1; 0 where it is none.
  std::size_t placeOf(std::string_view category) const;
  /// The entry that differs from a category in white space or letter case only; empty where there
  /// is none, or where the category is one of the entries.
  std::string_view nearMissOf(std::string_view category) const;

 private:
  std::unordered_map<std::string_view, std::size_t> places_;
  std::unordered_map<std::string, std::string_view> alike_;
};

/// The categories that the parser compares; none of a document where it does not.
NodeList comparedCategories(const SeenHop& hop);

}  // namespace tamzo::explain
