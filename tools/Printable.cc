#include "tools/Printable.h"

#include <fmt/format.h>
#include <unicode/uchar.h>

#include <cstdint>
#include <iterator>

#include "base/Utf8.h"

namespace tamzo::command {
namespace {

UChar32 codeOf(Character character) { return static_cast<UChar32>(character.value); }

bool isShown(UChar32 code) {
  constexpr UChar32 kEmptyBraille = 0x2800;
  constexpr std::uint32_t kHidden = U_GC_C_MASK | U_GC_Z_MASK;
  const bool isHidden = (U_MASK(u_charType(code)) & kHidden) != 0;
  return code == ' ' || (!isHidden && code != kEmptyBraille &&
                         u_hasBinaryProperty(code, UCHAR_DEFAULT_IGNORABLE_CODE_POINT) == 0);
}

/// Runs through a text, and writes what is not shown as it stands in the way of JSON.
class Escaping {
 public:
  explicit Escaping(std::string_view text) : text_(text) { out_.reserve(text.size()); }

  // `isKept(code)` tells what else stays, and may write something in its place.
  template <typename IsKept>
  std::string escape(const IsKept& isKept) {
    for (std::size_t at = 0; at < text_.size();) {
      const std::size_t plain = endOfPlain(at);
      out_.append(text_, at, plain - at);
      at = plain;
      if (at < text_.size()) {
        at += escapeOne(at, isKept);
      }
    }
    return std::move(out_);
  }

  std::string& out() { return out_; }

 private:
  std::size_t endOfPlain(std::size_t at) const {
    while (at < text_.size() && text_[at] >= ' ' && text_[at] < '\x7F') {
      ++at;
    }
    return at;
  }

  template <typename IsKept>
  std::size_t escapeOne(std::size_t at, const IsKept& isKept) {
    const Utf8Sequence sequence = utf8SequenceAt(text_, at);
    if (!sequence.isCharacter) {
      for (std::size_t i = 0; i < sequence.bytes; ++i) {
        write("\\x{:02x}", static_cast<std::uint8_t>(text_[at + i]));
      }
      return sequence.bytes;
    }
    const UChar32 code = codeOf(characterAt(text_, at));
    if (isShown(code)) {
      out_.append(text_, at, sequence.bytes);
    } else if (!isKept(code)) {
      writeEscaped(static_cast<std::uint32_t>(code));
    }
    return sequence.bytes;
  }

  void writeEscaped(std::uint32_t code) {
    constexpr std::uint32_t kFirstPair = 0x10000;
    if (code < kFirstPair) {
      write("\\u{:04x}", code);
      return;
    }
    write("\\u{:04x}", 0xD7C0 + (code >> 10U));
    write("\\u{:04x}", 0xDC00 + (code & 0x3FFU));
  }

  template <typename Number>
  void write(fmt::format_string<Number> format, Number number) {
    fmt::format_to(std::back_inserter(out_), format, std::move(number));
  }

  std::string_view text_;
  std::string out_;
};

std::size_t widthOf(UChar32 code) {
  if ((U_MASK(u_charType(code)) & (U_GC_MN_MASK | U_GC_ME_MASK)) != 0) {
    return 0;
  }
  const int width = u_getIntPropertyValue(code, UCHAR_EAST_ASIAN_WIDTH);
  return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

// Where the longest beginning of at most so many columns ends.
std::size_t endOfColumns(std::string_view text, std::size_t columns) {
  std::size_t at = 0;
  for (std::size_t taken = 0; at < text.size();) {
    const Character character = characterAt(text, at);
    taken += widthOf(codeOf(character));
    if (taken > columns) {
      break;
    }
    at += character.bytes;
  }
  return at;
}

}  // namespace

std::string printable(std::string_view text) {
  std::string out;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<std::uint8_t>(text[at]);
    const bool isC1 =
        byte == 0xC2 && at + 1 < text.size() && static_cast<std::uint8_t>(text[at + 1]) < 0xA0;
    if (isC1) {
      out += fmt::format("\\u{:04x}", static_cast<std::uint8_t>(text[++at]));
    } else if (byte < 0x20 || byte == 0x7F) {
      out += fmt::format("\\u{:04x}", byte);
    } else {
      out += text[at];
    }
  }
  return out;
}

std::string shownOnTerminal(std::string_view text) {
  return Escaping(text).escape([](UChar32) { return false; });
}

std::string linesShownOnTerminal(std::string_view text, std::string_view indent) {
  Escaping escaping(text);
  return escaping.escape([&](UChar32 code) {
    if (code == '\n') {
      escaping.out().append("\n").append(indent);
    } else if (code == '\t') {
      escaping.out().append("    ");
    }
    return code == '\n' || code == '\t';
  });
}

std::string jsonShownOnTerminal(std::string_view json) {
  Escaping escaping(json);
  return escaping.escape([&](UChar32 code) {
    const bool isBetweenValues = code == '\n' || code == '\t' || code == '\r';
    if (isBetweenValues) {
      escaping.out() += code == '\n' ? '\n' : ' ';
    }
    return isBetweenValues;
  });
}

std::size_t columnsOf(std::string_view text) {
  std::size_t columns = 0;
  for (std::size_t at = 0; at < text.size();) {
    const Character character = characterAt(text, at);
    columns += widthOf(codeOf(character));
    at += character.bytes;
  }
  return columns;
}

std::string cutInTheMiddle(std::string_view text, std::size_t columns) {
  constexpr std::string_view kCut = "...";
  const std::size_t whole = columnsOf(text);
  if (whole <= columns) {
    return std::string(text);
  }
  if (columns <= kCut.size()) {
    return std::string(kCut.substr(0, columns));
  }
  const std::size_t kept = columns - kCut.size();
  std::size_t tail = endOfColumns(text, whole - kept / 2);
  std::size_t taken = columnsOf(text.substr(tail));
  // A wide character that the cut would halve goes, and no mark is left without its character.
  while (tail < text.size()) {
    const Character character = characterAt(text, tail);
    const std::size_t width = widthOf(codeOf(character));
    if (taken <= kept / 2 && width > 0) {
      break;
    }
    taken -= width;
    tail += character.bytes;
  }
  return std::string(text.substr(0, endOfColumns(text, kept - kept / 2)))
      .append(kCut)
      .append(text.substr(tail));
}

}  // namespace tamzo::command
