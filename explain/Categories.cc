#include "explain/Categories.h"

#include "base/Ascii.h"
#include "base/WhiteSpace.h"

namespace tamzo::explain {
namespace {

// What is left of an entry without white space and letter case.
std::string bareOf(std::string_view text) {
  std::string bare;
  for (std::size_t at = 0; at < text.size();) {
    if (const std::size_t blank = whiteSpaceAt(text, at)) {
      at += blank;
      continue;
    }
    bare += asciiLower(text[at++]);
  }
  return bare;
}

}  // namespace

BlockedEntries::BlockedEntries(const Text& list) {
  std::string_view rest = list;
  for (std::size_t place = 1; !list.isNil(); ++place) {
    const std::size_t comma = rest.find(',');
    const std::string_view entry = rest.substr(0, comma);
    if (places_.emplace(entry, place).second) {
      alike_.emplace(bareOf(entry), entry);
    }
    if (comma == std::string_view::npos) {
      break;
    }
    rest.remove_prefix(comma + 1);
  }
}

std::size_t BlockedEntries::placeOf(std::string_view category) const {
  const auto found = places_.find(category);
  return found == places_.end() ? 0 : found->second;
}

std::string_view BlockedEntries::nearMissOf(std::string_view category) const {
  const std::string bare = bareOf(category);
  const auto found = alike_.find(bare);
  const bool isNear = !bare.empty() && found != alike_.end() && placeOf(category) == 0;
  return isNear ? found->second : std::string_view();
}

NodeList comparedCategories(const SeenHop& hop) {
  const bool isCompared = hop.major == 4 && hop.kind == AdKind::inLine;
  return isCompared ? hop.followed.nodesForXPath("Category") : NodeList();
}

}  // namespace tamzo::explain
