#pragma once

#include <memory>
#include <vector>

namespace tamzo {

/// A shared, growable list that may be nil (a null pointer). Copying the handle shares the list.
template <typename T>
using List = std::shared_ptr<std::vector<T>>;

/// A new empty list.
template <typename T>
List<T> makeList() {
  return std::make_shared<std::vector<T>>();
}

}  // namespace tamzo
