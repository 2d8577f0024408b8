#include "xml/AssignmentEscape.h"

#include <algorithm>

#include "base/AssignmentSearch.h"
#include "xml/Markup.h"

namespace tamzo {
namespace {

constexpr std::string_view kCdata = "<![CDATA[";

// "=" in other words, by where it stands.
constexpr std::string_view kInText = "&#61;";
constexpr std::string_view kInMarkup = " =";
constexpr std::string_view kInCdata = "]]><![CDATA[=";

/// Takes markup piece by piece. An assignment never reaches from one into the next, since what
/// parts them is neither a letter nor "=".
class Writer {
 public:
  Writer(std::string_view xml, std::string_view word) : xml_(xml), word_(word) {
    out_.reserve(xml.size() + xml.size() / 16);
  }

  std::string writeAll() {
    while (at_ < xml_.size()) {
      const std::string_view rest = xml_.substr(at_);
      const std::size_t pastRemarkHere = pastRemark(xml_, at_);
      if (!rest.starts_with('<')) {
        writeUpTo(std::min(xml_.find('<', at_), xml_.size()), kInText);
      } else if (rest.starts_with(kCdata)) {
        writeUpTo(pastFirst(xml_, "]]>", at_ + kCdata.size()), kInCdata);
      } else if (pastRemarkHere != at_) {
        writeUpTo(pastRemarkHere, kInMarkup);
      } else {
        writeTag();
      }
    }
    return std::move(out_);
  }

 private:
  void writeTag() {
    const std::size_t end = pastTag(xml_, at_, [](char) {});
    while (at_ < end) {
      const char c = xml_[at_];
      if (c == '"' || c == '\'') {
        writeUpTo(pastFirst(xml_, std::string_view(&c, 1), at_ + 1), kInText);
      } else {
        writeUpTo(std::min(xml_.find_first_of("\"'", at_), end), kInMarkup);
      }
    }
  }

  void writeUpTo(std::size_t end, std::string_view equals) {
    std::string_view piece = xml_.substr(at_, end - at_);
    while (const TextMatch match = findAssignment(piece, word_, 0)) {
      out_.append(piece.substr(0, match.end - 1)).append(equals);
      piece.remove_prefix(match.end);
    }
    out_ += piece;
    at_ = end;
  }

  std::string_view xml_;
  std::string_view word_;
  std::size_t at_ = 0;
  std::string out_;
};

}  // namespace

std::string withoutAssignments(std::string xml, std::string_view word) {
  return findAssignment(xml, word, 0) ? Writer(xml, word).writeAll() : xml;
}

}  // namespace tamzo
