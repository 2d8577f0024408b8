#pragma once

#include <libxml/tree.h>

#include <cstddef>
#include <unordered_map>

namespace tamzo {

/// How much text the entities of one document stand for when all that they refer to is written out.
class EntitySizes {
 public:
  /// `maxNesting`: how many entities may refer to each other in a row.
  explicit EntitySizes(int maxNesting) noexcept : maxNesting_(maxNesting) {}

  /// Bytes that `entity` of `doc` stands for; more than `most` where they are more, or where it is
  /// nested too deeply or refers to itself. Takes time linear in the text that it is declared with,
  /// and next to none when it is asked for again with the same `most`. Throws std::bad_alloc.
  std::size_t of(const xmlDoc* doc, const xmlEntity* entity, std::size_t most) {
    return sizeOf(doc, entity, most, 0);
  }

 private:
  std::size_t sizeOf(const xmlDoc* doc, const xmlEntity* entity, std::size_t most, int nesting);

  int maxNesting_;
  std::unordered_map<const xmlEntity*, std::size_t> known_;
};

}  // namespace tamzo
