#include "xml/ChildIndex.h"

#include <bit>

#include "tamzo/xml/XPath.h"
#include "xml/XmlTree.h"

namespace tamzo {

// Children are entered from the last to the first, each at the head of its bucket, so that every
// chain ends up in document order without a search: building costs the same whatever the names.
ChildIndex::ChildIndex(const xmlNode* parent) {
  std::size_t count = 0;
  for (const xmlNode* child = parent->children; child != nullptr; child = child->next) {
    count += child->type == XML_ELEMENT_NODE ? 1 : 0;
  }
  entries_.reserve(count);
  buckets_.assign(std::bit_ceil(count * 2 + 1), kNone);
  for (xmlNode* child = parent->last; child != nullptr; child = child->prev) {
    if (child->type != XML_ELEMENT_NODE || child->ns != nullptr) {
      continue;
    }
    const std::uint32_t hash = XPath::hashOfName(asChars(child->name));
    std::uint32_t& bucket = buckets_[hash & (buckets_.size() - 1)];
    entries_.push_back({child, hash, bucket});
    bucket = static_cast<std::uint32_t>(entries_.size() - 1);
  }
}

xmlNode* ChildIndex::find(std::string_view name, std::uint32_t hash) const noexcept {
  std::uint32_t at = buckets_[hash & (buckets_.size() - 1)];
  while (at != kNone) {
    const Entry& entry = entries_[at];
    if (entry.hash == hash && isElementNamed(entry.node, name)) {
      return entry.node;
    }
    at = entry.next;
  }
  return nullptr;
}

}  // namespace tamzo
