#include "base/JsonDepth.h"

namespace tamzo {
namespace {

constexpr int kMaxNesting = 512;

}  // namespace

bool isShallowJson(std::string_view json) noexcept {
  int depth = 0;
  bool inString = false;
  for (std::size_t at = 0; at < json.size(); ++at) {
    const char c = json[at];
    if (inString) {
      at += c == '\\' ? 1 : 0;
      inString = c != '"';
    } else if (c == '"') {
      inString = true;
    } else if (c == '[' || c == '{') {
      if (++depth > kMaxNesting) {
        return false;
      }
    } else if (c == ']' || c == '}') {
      --depth;
    }
  }
  return true;
}

}  // namespace tamzo
