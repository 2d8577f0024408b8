#pragma once

#include <cstddef>

#include "tamzo/base/Text.h"

namespace tamzo {

/// Logs the growing markup for Moat, whole each time. A document may let it grow a hundred thousand
/// times; so a long one is logged when it has doubled, and at the end, which is linear in all.
class MoatLog {
 public:
  /// The markup has grown.
  void noteGrowth(const MutableText& markup);
  /// It grows no more for now.
  void catchUp(const MutableText& markup);

 private:
  void write(const MutableText& markup);

  std::size_t logged_ = 0;
  bool isBehind_ = false;
};

}  // namespace tamzo
