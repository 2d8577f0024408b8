#include "explain/Places.h"

#include <algorithm>
#include <numeric>

#include "base/Utf8.h"

namespace tamzo::explain {
namespace {

constexpr std::size_t kExcerptLength = 160;

std::size_t countCharacters(std::string_view text) noexcept {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), startsCharacter));
}

// Past up to `count` characters of the line that goes on at `at`.
std::size_t forward(std::string_view text, std::size_t at, std::size_t count) noexcept {
  while (at < text.size() && text[at] != '\n' && count > 0) {
    do {
      ++at;
    } while (at < text.size() && !startsCharacter(text[at]));
    --count;
  }
  return at;
}

// The same in the other direction; not past the start of the line.
std::size_t backward(std::string_view text, std::size_t at, std::size_t count,
                     std::size_t lineBegin) noexcept {
  while (at > lineBegin && count > 0) {
    do {
      --at;
    } while (at > lineBegin && !startsCharacter(text[at]));
    --count;
  }
  return at;
}

// Goes over a text once, for offsets in ascending order.
class Walk {
 public:
  explicit Walk(std::string_view text) noexcept
      : text_(text), at_(byteOrderMarkOf(text)), lineBegin_(at_) {}

  void goTo(std::size_t offset) noexcept {
    offset = std::min(offset, text_.size());
    while (at_ < offset) {
      // Not beyond the offset: a line may be as long as the text.
      const std::size_t end =
          at_ + std::min(text_.substr(at_, offset - at_).find('\n'), offset - at_);
      column_ += countCharacters(text_.substr(at_, end - at_));
      at_ = end;
      if (end < offset) {
        ++at_;
        ++line_;
        column_ = 1;
        lineBegin_ = at_;
      }
    }
  }

  std::size_t line() const noexcept { return line_; }

  Place place() const {
    constexpr std::size_t kBefore = kExcerptLength / 2;
    std::size_t begin = backward(text_, at_, kBefore, lineBegin_);
    std::size_t before = countCharacters(text_.substr(begin, at_ - begin));
    std::size_t end = forward(text_, at_, kExcerptLength - before);
    const std::size_t length = before + countCharacters(text_.substr(at_, end - at_));
    // Near the end of a line there is room for more in front.
    const std::size_t wider = backward(text_, begin, kExcerptLength - length, lineBegin_);
    before += countCharacters(text_.substr(wider, begin - wider));
    begin = wider;
    if (end > begin && text_[end - 1] == '\r' && (end == text_.size() || text_[end] == '\n')) {
      --end;
    }
    return {line_, column_, std::string(text_.substr(begin, end - begin)), before};
  }

 private:
  std::string_view text_;
  std::size_t at_;
  std::size_t lineBegin_;
  std::size_t line_ = 1;
  std::size_t column_ = 1;
};

template <typename Result, typename Take>
std::vector<Result> walk(std::string_view text, const std::vector<std::size_t>& offsets,
                         Take take) {
  std::vector<std::size_t> order(offsets.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(),
            [&](std::size_t a, std::size_t b) { return offsets[a] < offsets[b]; });
  std::vector<Result> results(offsets.size());
  Walk at(text);
  for (const std::size_t i : order) {
    at.goTo(offsets[i]);
    results[i] = take(at);
  }
  return results;
}

}  // namespace

std::vector<Place> placesOf(std::string_view text, const std::vector<std::size_t>& offsets) {
  return walk<Place>(text, offsets, [](const Walk& at) { return at.place(); });
}

std::vector<std::size_t> linesOf(std::string_view text, const std::vector<std::size_t>& offsets) {
  return walk<std::size_t>(text, offsets, [](const Walk& at) { return at.line(); });
}

std::string shortened(std::string_view text, std::size_t count) {
  std::size_t at = 0;
  for (; at < text.size() && count > 0; --count) {
    do {
      ++at;
    } while (at < text.size() && !startsCharacter(text[at]));
  }
  std::string shorter(text.substr(0, at));
  return at == text.size() ? shorter : shorter + "\xE2\x80\xA6";
}

std::size_t byteOf(std::string_view text, std::size_t character) noexcept {
  std::size_t at = 0;
  for (; at < text.size() && character > 0; --character) {
    at += characterAt(text, at).bytes;
  }
  return at;
}

std::size_t utf16Length(std::string_view text) noexcept {
  std::size_t length = 0;
  for (std::size_t at = 0; at < text.size();) {
    const Character character = characterAt(text, at);
    length += character.value > U'\uFFFF' ? 2 : 1;
    at += character.bytes;
  }
  return length;
}

}  // namespace tamzo::explain
