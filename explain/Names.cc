#include "explain/Names.h"

#include "explain/Places.h"

namespace tamzo::explain {

std::string Names::inWords() const {
  constexpr std::size_t kLongest = 200;
  std::string words;
  for (const std::string& name : names_) {
    words += words.empty() ? "" : ", ";
    words += name;
    if (words.size() > kLongest) {
      break;
    }
  }
  return words.empty() ? "none" : shortened(words, kLongest);
}

}  // namespace tamzo::explain
