#pragma once

#include <memory>
#include <vector>

namespace tamzo {

/// A shared, growable list that may be nil (a null pointer), which is not the same as empty.
/// Copying the handle shares the list: who appends to one appends for all who hold it.
///
/// No locks: one thread may change a list while no other reads it.
template <typename T>
using List = std::shared_ptr<std::vector<T>>;

/// A new empty list, which is not nil.
template <typename T>
List<T> makeList() {
  return std::make_shared<std::vector<T>>();
}

}  // namespace tamzo
