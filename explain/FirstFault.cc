#include "explain/FirstFault.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "base/Ascii.h"
#include "base/Utf8.h"
#include "xml/Markup.h"
#include "xml/StartTags.h"

namespace tamzo::explain {
namespace {

constexpr std::size_t kNowhere = std::string_view::npos;

bool beginsName(char c) noexcept {
  return isAsciiLetter(c) || c == '_' || c == ':' || isBeyondAscii(c);
}
bool continuesName(char c) noexcept {
  return beginsName(c) || isAsciiDigit(c) || c == '-' || c == '.';
}

bool isXmlCharacter(std::uint32_t c) noexcept {
  if (c < 0x20U) {
    return c == 0x9U || c == 0xAU || c == 0xDU;
  }
  return c <= 0x10FFFFU && (c < 0xD800U || c > 0xDFFFU) && c != 0xFFFEU && c != 0xFFFFU;
}

// The first character that XML does not know.
std::size_t firstControlCharacter(std::string_view text) noexcept {
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<std::uint8_t>(text[at]);
    const bool isOdd = byte < 0x20U || byte == 0xEFU;
    if (isOdd && !isXmlCharacter(static_cast<std::uint32_t>(characterAt(text, at).value))) {
      return at;
    }
  }
  return kNowhere;
}

bool isDeclaration(std::string_view text) noexcept {
  return text.starts_with("<?xml") && text.size() > 5 && isXmlBlank(text[5]);
}

// What to do about a fault that has no finding of its own.
constexpr std::string_view kSendXml = "answer with a VAST document, also when there is no ad.";
constexpr std::string_view kOneRoot = "send nothing after the end tag of the root.";
constexpr std::string_view kMatchTags =
    "close each element with an end tag of its own name, the innermost first.";
constexpr std::string_view kEscapeLess =
    "write \"<\" in URLs and texts as \"&lt;\", or put them into CDATA.";
constexpr std::string_view kQuoteValues =
    "write each attribute as name=\"value\", in straight quotes, with a blank before it.";
constexpr std::string_view kEndValues =
    "end each value with its quote, and write \"<\" in it as \"&lt;\".";
constexpr std::string_view kCloseTags = "end each tag with \">\" or \"/>\".";
constexpr std::string_view kPlainComments = "write no \"--\" into a comment but its end, \"-->\".";
constexpr std::string_view kEndCdataOnce =
    "end a CDATA section once, and write \"]]>\" outside of one as \"]]&gt;\".";
constexpr std::string_view kPlainDeclaration =
    "begin with <?xml version=\"1.0\" encoding=\"UTF-8\"?>, or leave the declaration out.";
constexpr std::string_view kDeclareOnce =
    "write the XML declaration once, before everything else, or leave it out.";

// Reads the declaration of a document to its end.
class Declaration {
 public:
  explicit Declaration(std::string_view text) noexcept : rest_(text.substr(5)) {}

  bool isInOrder() {
    if (!takeAttribute("version", isVersion)) {
      return false;
    }
    static_cast<void>(takeAttribute("encoding", isEncoding));
    static_cast<void>(takeAttribute("standalone", isYesOrNo));
    skipBlanks();
    return rest_ == "?>";
  }

 private:
  static bool isVersion(std::string_view value) noexcept {
    return value.size() > 2 && value.starts_with("1.") &&
           std::all_of(value.begin() + 2, value.end(), isAsciiDigit);
  }
  static bool isEncoding(std::string_view value) noexcept {
    return !value.empty() && isAsciiLetter(value.front()) &&
           std::all_of(value.begin(), value.end(), [](char c) {
             return isAsciiAlphanumeric(c) || c == '.' || c == '_' || c == '-';
           });
  }
  static bool isYesOrNo(std::string_view value) noexcept { return value == "yes" || value == "no"; }

  bool skipBlanks() noexcept {
    const std::size_t size = rest_.size();
    while (!rest_.empty() && isXmlBlank(rest_.front())) {
      rest_.remove_prefix(1);
    }
    return rest_.size() < size;
  }

  // Takes nothing where it is another one, or not in order.
  bool takeAttribute(std::string_view name, bool (*isValue)(std::string_view)) {
    const std::string_view before = rest_;
    bool isTaken = skipBlanks() && rest_.starts_with(name);
    if (isTaken) {
      rest_.remove_prefix(name.size());
      skipBlanks();
      isTaken = rest_.starts_with('=');
    }
    if (isTaken) {
      rest_.remove_prefix(1);
      skipBlanks();
      const bool isQuoted = rest_.starts_with('"') || rest_.starts_with('\'');
      const std::size_t end = isQuoted ? rest_.find(rest_.front(), 1) : kNowhere;
      isTaken = end != kNowhere && isValue(rest_.substr(1, end - 1));
      rest_.remove_prefix(isTaken ? end + 1 : 0);
    }
    rest_ = isTaken ? rest_ : before;
    return isTaken;
  }

  std::string_view rest_;
};

class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text), controlAt_(firstControlCharacter(text)) {
    at_ = byteOrderMarkOf(text);
  }

  Fault run() {
    readProlog();
    while (!isDone_) {
      readContent();
    }
    // A character that no XML holds counts wherever it stands.
    if (controlAt_ != kNowhere && (fault_.kind == FaultKind::none || controlAt_ <= fault_.at)) {
      fault_ = {FaultKind::controlCharacter,
                controlAt_,
                "",
                static_cast<std::uint32_t>(characterAt(text_, controlAt_).value),
                {},
                ""};
    }
    return std::move(fault_);
  }

 private:
  char peek() const noexcept { return text_[at_]; }
  bool atEnd() const noexcept { return at_ >= text_.size(); }
  std::string_view rest() const noexcept { return text_.substr(at_); }

  void end(FaultKind kind, std::size_t at, std::string_view name = {}) {
    isDone_ = true;
    fault_.kind = kind;
    fault_.at = at;
    fault_.name = name;
  }
  void other(std::size_t at, std::string_view remedy) {
    end(FaultKind::other, at);
    fault_.remedy = remedy;
  }
  void cutOff() {
    end(FaultKind::cutOff, text_.size());
    fault_.open.assign(open_.begin(), open_.end());
  }
  // The text ends in something that stands between tags.
  void cutOffOutsideTag() {
    if (open_.empty()) {
      other(text_.size(), "send the whole document.");
    } else {
      cutOff();
    }
  }

  void skipBlanks() noexcept {
    while (!atEnd() && isXmlBlank(peek())) {
      ++at_;
    }
  }
  std::string_view readName() noexcept {
    const std::size_t begin = at_;
    if (!atEnd() && beginsName(peek())) {
      while (!atEnd() && continuesName(peek())) {
        ++at_;
      }
    }
    return text_.substr(begin, at_ - begin);
  }

  void readProlog();
  void readDocumentType();
  void readContent();
  void readMarkup();
  void readComment();
  void readInstruction();
  void readCdata();
  void readEndTag();
  void readStartTag();
  bool readAttribute(std::vector<std::string_view>& few,
                     std::unordered_set<std::string_view>& many);
  void readValue(char quote);
  void readReference();
  void readNumber(std::size_t ampersand);

  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t controlAt_;
  std::vector<std::string_view> open_;
  std::unordered_set<std::string_view> entities_{"amp", "lt", "gt", "quot", "apos"};
  bool knowsAllEntities_ = true;
  bool hadRoot_ = false;
  bool isDone_ = false;
  Fault fault_;
};

void Scanner::readProlog() {
  const std::size_t begin = at_;
  if (isDeclaration(rest())) {
    at_ = pastFirst(text_, "?>", at_);
    if (!Declaration(text_.substr(begin, at_ - begin)).isInOrder()) {
      return other(begin, kPlainDeclaration);
    }
  }
  while (!isDone_ && !hadRoot_) {
    const std::size_t before = at_;
    skipBlanks();
    if (isDeclaration(rest()) && at_ > begin) {
      return end(FaultKind::blankBeforeDeclaration, at_);
    }
    if (atEnd()) {
      return other(before, kSendXml);
    }
    if (rest().starts_with("<!DOCTYPE")) {
      readDocumentType();
    } else if (peek() == '<') {
      readMarkup();
    } else {
      const std::size_t markup = text_.find('<', at_);
      const bool leads = markup != kNowhere && isDeclaration(text_.substr(markup));
      return leads ? end(FaultKind::blankBeforeDeclaration, markup) : other(at_, kSendXml);
    }
  }
}

void Scanner::readDocumentType() {
  const MarkupPiece piece = markupPieceAt(text_, at_);
  const std::string_view type = text_.substr(piece.begin, piece.end - piece.begin);
  const std::string_view outer = type.substr(0, type.find('['));
  knowsAllEntities_ = outer.find("SYSTEM") == kNowhere && outer.find("PUBLIC") == kNowhere;
  constexpr std::string_view kEntity = "<!ENTITY";
  for (std::size_t found = type.find(kEntity); found != kNowhere;
       found = type.find(kEntity, found + 1)) {
    const std::size_t begin = type.find_first_not_of(" \t\r\n", found + kEntity.size());
    const std::size_t past = type.find_first_of(" \t\r\n>", begin);
    if (begin != kNowhere && past != kNowhere) {
      entities_.insert(type.substr(begin, past - begin));
    }
  }
  at_ = piece.end;
}

void Scanner::readContent() {
  while (!isDone_) {
    if (atEnd()) {
      if (!open_.empty()) {
        cutOff();
      }
      isDone_ = true;
      return;
    }
    if (open_.empty()) {
      skipBlanks();
      if (!atEnd() && peek() != '<') {
        return other(at_, kOneRoot);
      }
      if (atEnd()) {
        continue;
      }
    }
    if (peek() == '<') {
      readMarkup();
    } else if (peek() == '&') {
      readReference();
    } else {
      const std::size_t next = std::min(text_.find_first_of("<&", at_), text_.size());
      const std::size_t stray = text_.substr(at_, next - at_).find("]]>");
      if (stray != kNowhere) {
        return other(at_ + stray, kEndCdataOnce);
      }
      at_ = next;
    }
  }
}

void Scanner::readMarkup() {
  const std::string_view here = rest();
  if (here.starts_with("<!--")) {
    readComment();
  } else if (here.starts_with("<![CDATA[") && !open_.empty()) {
    readCdata();
  } else if (here.starts_with("<?")) {
    readInstruction();
  } else if (here.starts_with("</")) {
    readEndTag();
  } else if (here.starts_with("<!")) {
    const bool isBegun = std::string_view("<!--").starts_with(here) ||
                         std::string_view("<![CDATA[").starts_with(here);
    return isBegun ? cutOffOutsideTag() : other(at_, hadRoot_ && open_.empty() ? kOneRoot : "");
  } else if (here.size() == 1) {
    cutOff();
  } else if (hadRoot_ && open_.empty()) {
    other(at_, kOneRoot);
  } else if (!beginsName(here[1])) {
    other(at_, kEscapeLess);
  } else {
    readStartTag();
  }
}

void Scanner::readComment() {
  const std::size_t dashes = text_.find("--", at_ + 4);
  if (dashes == kNowhere || dashes + 2 == text_.size()) {
    return cutOffOutsideTag();
  }
  if (text_[dashes + 2] != '>') {
    return other(dashes, kPlainComments);
  }
  at_ = dashes + 3;
}

void Scanner::readInstruction() {
  if (isDeclaration(rest())) {
    return other(at_, kDeclareOnce);
  }
  const std::size_t close = text_.find("?>", at_ + 2);
  if (close == kNowhere) {
    return cutOffOutsideTag();
  }
  at_ = close + 2;
}

void Scanner::readCdata() {
  const std::size_t close = text_.find("]]>", at_ + 9);
  if (close == kNowhere) {
    return cutOff();
  }
  at_ = close + 3;
}

void Scanner::readEndTag() {
  const std::size_t begin = at_;
  at_ += 2;
  const std::string_view name = readName();
  if (atEnd()) {
    return open_.empty() ? other(begin, kMatchTags) : cutOff();
  }
  skipBlanks();
  if (open_.empty() || name != open_.back()) {
    return other(begin, kMatchTags);
  }
  if (atEnd()) {
    return cutOff();
  }
  if (peek() != '>') {
    return other(at_, kCloseTags);
  }
  ++at_;
  open_.pop_back();
}

void Scanner::readStartTag() {
  hadRoot_ = true;
  ++at_;
  const std::string_view name = readName();
  std::vector<std::string_view> few;
  std::unordered_set<std::string_view> many;
  while (!isDone_) {
    const std::size_t before = at_;
    skipBlanks();
    if (atEnd()) {
      return cutOff();
    }
    if (peek() == '>') {
      ++at_;
      open_.push_back(name);
      return;
    }
    if (peek() == '/') {
      ++at_;
      if (atEnd()) {
        return cutOff();
      }
      if (peek() != '>') {
        return other(at_ - 1, kCloseTags);
      }
      ++at_;
      return;
    }
    if (before == at_ || !readAttribute(few, many)) {
      return isDone_ ? void() : other(before, kQuoteValues);
    }
  }
}

// False where none begins.
bool Scanner::readAttribute(std::vector<std::string_view>& few,
                            std::unordered_set<std::string_view>& many) {
  constexpr std::size_t kFew = 16;
  const std::size_t begin = at_;
  const std::string_view name = readName();
  skipBlanks();
  if (atEnd()) {
    cutOff();
    return false;
  }
  if (name.empty() || peek() != '=') {
    other(begin, kQuoteValues);
    return false;
  }
  bool isNew = true;
  if (few.size() < kFew) {
    isNew = std::find(few.begin(), few.end(), name) == few.end();
    few.push_back(name);
  } else {
    many.insert(few.begin(), few.end());
    isNew = many.insert(name).second;
  }
  if (!isNew) {
    end(FaultKind::duplicateAttribute, begin, name);
    return false;
  }
  ++at_;
  skipBlanks();
  if (atEnd()) {
    cutOff();
  } else if (peek() != '"' && peek() != '\'') {
    other(at_, kQuoteValues);
  } else {
    const char quote = text_[at_++];
    readValue(quote);
  }
  return !isDone_;
}

void Scanner::readValue(char quote) {
  while (!isDone_) {
    if (atEnd()) {
      return cutOff();
    }
    const char c = peek();
    if (c == quote) {
      ++at_;
      return;
    }
    if (c == '<') {
      return other(at_, kEndValues);
    }
    if (c == '&') {
      readReference();
    } else {
      ++at_;
    }
  }
}

void Scanner::readReference() {
  const std::size_t ampersand = at_++;
  if (!atEnd() && peek() == '#') {
    return readNumber(ampersand);
  }
  const std::string_view name = readName();
  if (atEnd()) {
    return cutOff();
  }
  if (name.empty() || peek() != ';') {
    return end(FaultKind::unescapedAmpersand, ampersand);
  }
  ++at_;
  if (knowsAllEntities_ && !entities_.contains(name)) {
    end(FaultKind::undefinedEntity, ampersand, name);
  }
}

void Scanner::readNumber(std::size_t ampersand) {
  constexpr std::uint32_t kTooLarge = 0x110000U;
  ++at_;
  const bool isHex = !atEnd() && peek() == 'x';
  at_ += isHex ? 1 : 0;
  const std::size_t digits = at_;
  std::uint32_t value = 0;
  for (; !atEnd(); ++at_) {
    const char c = peek();
    const auto lower = static_cast<char>(c | 0x20);
    const bool isHexLetter = isHex && lower >= 'a' && lower <= 'f';
    if (!isAsciiDigit(c) && !isHexLetter) {
      break;
    }
    const auto digit = static_cast<std::uint32_t>(isAsciiDigit(c) ? c - '0' : lower - 'a' + 10);
    value = std::min(value * (isHex ? 16U : 10U) + digit, kTooLarge);
  }
  if (atEnd()) {
    return cutOff();
  }
  if (at_ == digits || peek() != ';') {
    return end(FaultKind::unescapedAmpersand, ampersand);
  }
  ++at_;
  if (!isXmlCharacter(value)) {
    end(FaultKind::controlCharacter, ampersand);
    fault_.codePoint = value;
  }
}

}  // namespace

Fault findFirstFault(std::string_view text) { return Scanner(text).run(); }

}  // namespace tamzo::explain
