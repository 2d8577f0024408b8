#include "tamzo/base/KeyIndex.h"

#include <algorithm>

namespace tamzo {
namespace {

// Up to here comparing is faster than a map: names mostly differ in length or at the front.
constexpr std::size_t kFew = 48;

}  // namespace

std::optional<std::size_t> KeyIndex::find(std::string_view key) const {
  const auto isKey = [key](const auto& entry) { return entry.first == key; };
  if (const auto few = std::find_if(few_.begin(), few_.end(), isKey); few != few_.end()) {
    return few->second;
  }
  const auto many = many_.find(key);
  return many == many_.end() ? std::nullopt : std::optional(many->second);
}

void KeyIndex::set(std::string_view key, std::size_t position) {
  const auto isKey = [key](const auto& entry) { return entry.first == key; };
  if (const auto few = std::find_if(few_.begin(), few_.end(), isKey); few != few_.end()) {
    few->second = position;
  } else if (few_.size() < kFew) {
    few_.emplace_back(key, position);
  } else {
    many_.insert_or_assign(key, position);
  }
}

}  // namespace tamzo
