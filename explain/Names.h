#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "tamzo/xml/DDXMLElement.h"

namespace tamzo::explain {

/// Names in the order in which they were first met, each once.
class Names {
 public:
  void add(std::string_view name) {
    if (known_.emplace(name).second) {
      names_.emplace_back(name);
    }
  }
  void addChildrenOf(const DDXMLElement& element) {
    for (auto child = element.firstChildElement(); child; child = child.nextSiblingElement()) {
      add(child.name());
    }
  }
  const std::vector<std::string>& list() const noexcept { return names_; }
  /// "none", or all of them with commas.
  std::string inWords() const;

 private:
  std::unordered_set<std::string> known_;
  std::vector<std::string> names_;
};

}  // namespace tamzo::explain
