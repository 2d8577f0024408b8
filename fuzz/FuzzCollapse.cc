// The namespace collapse against a version that tries the pattern at every place in turn. The first
// byte of the input chooses the word, since the search takes shortcuts by its letters.

#include <array>
#include <string>
#include <string_view>

#include "fuzz/Fuzzing.h"
#include "tamzo/vast/TamzoVastAd.h"

using namespace tamzo;
using namespace tamzo::fuzz;

namespace {

using namespace std::string_view_literals;

constexpr std::array kWords = {"xmlns"sv, "xmlns"sv, "xmlns"sv, "x"sv,
                               "sk"sv,    "xsi"sv,   "aab"sv,   "XmlNs"sv};

constexpr std::array kWhiteSpace = {"\t"sv,           "\n"sv,           "\v"sv,
                                    "\f"sv,           "\r"sv,           " "sv,
                                    "\xC2\x85"sv,     "\xC2\xA0"sv,     "\xE1\x9A\x80"sv,
                                    "\xE2\x80\x80"sv, "\xE2\x80\x81"sv, "\xE2\x80\x82"sv,
                                    "\xE2\x80\x83"sv, "\xE2\x80\x84"sv, "\xE2\x80\x85"sv,
                                    "\xE2\x80\x86"sv, "\xE2\x80\x87"sv, "\xE2\x80\x88"sv,
                                    "\xE2\x80\x89"sv, "\xE2\x80\x8A"sv, "\xE2\x80\xA8"sv,
                                    "\xE2\x80\xA9"sv, "\xE2\x80\xAF"sv, "\xE2\x81\x9F"sv,
                                    "\xE3\x80\x80"sv};

std::size_t whiteSpaceLength(std::string_view text) {
  for (const std::string_view space : kWhiteSpace) {
    if (text.starts_with(space)) {
      return space.size();
    }
  }
  return 0;
}

// Bytes of the letter at the front that is `letter` in any case.
std::size_t letterLength(std::string_view text, char letter) {
  const char small = static_cast<char>(letter | 0x20);
  if (text.starts_with(small) || text.starts_with(static_cast<char>(small & ~0x20))) {
    return 1;
  }
  if (small == 's' && text.starts_with("\u017F")) {
    return 2;
  }
  return small == 'k' && text.starts_with("\u212A") ? 3 : 0;
}

// Bytes of a match that begins at the front: the word, "=", the shortest run and a white space.
std::size_t matchLength(std::string_view text, std::string_view word) {
  std::size_t at = 0;
  for (const char letter : word) {
    const std::size_t length = letterLength(text.substr(at), letter);
    if (length == 0) {
      return 0;
    }
    at += length;
  }
  if (!text.substr(at).starts_with('=')) {
    return 0;
  }
  for (++at; at < text.size(); ++at) {
    if (const std::size_t length = whiteSpaceLength(text.substr(at))) {
      return at + length;
    }
  }
  return 0;
}

std::string collapseSlowly(std::string_view word, std::string_view text) {
  std::string out;
  while (!text.empty()) {
    if (const std::size_t length = matchLength(text, word)) {
      out += word;
      text.remove_prefix(length);
    } else {
      out += text.front();
      text.remove_prefix(1);
    }
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) {
    return 0;
  }
  const std::string_view word = kWords[data[0] % kWords.size()];
  const Text text(asText(data + 1, size - 1));
  const Text collapsed = TamzoVastAd::replaceWithPattern(word, text);
  const std::string expected = collapseSlowly(word, text);
  requireEqual(collapsed, expected, "the collapse differs from the slow one");
  // A match is at least a white space longer than what stands for it.
  require(collapsed.isSameObject(text) == (collapsed.view().size() == text.view().size()),
          "a text without a match is not given back as it is");
  require(!collapsed.isNil(), "a text became nil");
  return 0;
}
