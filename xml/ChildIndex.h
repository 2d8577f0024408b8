#pragma once

#include <libxml/tree.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace tamzo {

/// The child elements of one node by name, for a node that is asked for many of them. Built in one
/// pass; a look-up gives the first child of that name in document order.
class ChildIndex {
 public:
  explicit ChildIndex(const xmlNode* parent);

  /// `hash` is XPath::hashOfName of `name`.
  xmlNode* find(std::string_view name, std::uint32_t hash) const noexcept;

 private:
  static constexpr std::uint32_t kNone = UINT32_MAX;
  struct Entry {
    xmlNode* node;
    std::uint32_t hash;
    std::uint32_t next;
  };

  std::vector<Entry> entries_;
  std::vector<std::uint32_t> buckets_;
};

}  // namespace tamzo
