#include "explain/CleanUp.h"

#include <algorithm>
#include <unordered_set>

#include "base/Ascii.h"
#include "explain/TagText.h"
#include "tamzo/vast/TamzoVastAd.h"
#include "xml/StartTags.h"

namespace tamzo::explain {
namespace {

constexpr std::string_view kWord = "xmlns";
constexpr std::size_t kLongestTag = 2000;

// The clean-up knows no letter case.
bool endsInWord(std::string_view name) noexcept {
  return name.size() >= kWord.size() &&
         std::equal(kWord.rbegin(), kWord.rend(), name.rbegin(),
                    [](char a, char b) { return a == asciiLower(b); });
}

bool startsName(char c) noexcept { return isAsciiLetter(c) || c == '_' || isBeyondAscii(c); }

// Whether an even number of both quotes stands in it, so that it ends outside of a value when it
// begins there.
bool isBalanced(std::string_view text) noexcept {
  char quote = '\0';
  for (const char c : text) {
    if (quote == '\0' && (c == '"' || c == '\'')) {
      quote = c;
    } else if (c == quote) {
      quote = '\0';
    }
  }
  return quote == '\0';
}

}  // namespace

CleanUp::CleanUp(Text received) : received_(std::move(received)) {
  cleaned_ = TamzoVastAd().replaceWithPattern(kWord, received_);
  const std::string_view text = received_;
  std::size_t shift = 0;
  for (Collapse found = findCollapse(text, kWord, 0); found;
       found = findCollapse(text, kWord, found.end)) {
    collapses_.push_back(found);
    cleanedAt_.push_back(found.begin - shift);
    shift += found.end - found.begin - kWord.size();
  }
}

std::size_t CleanUp::toReceived(std::size_t at) const noexcept {
  const auto next = std::upper_bound(cleanedAt_.begin(), cleanedAt_.end(), at);
  if (next == cleanedAt_.begin() || at == std::string_view::npos) {
    return at;
  }
  const auto i = static_cast<std::size_t>(next - cleanedAt_.begin()) - 1;
  const std::size_t past = cleanedAt_[i] + kWord.size();
  return at < past ? collapses_[i].begin : collapses_[i].end + (at - past);
}

std::size_t CleanUp::toCleaned(std::size_t at) const noexcept {
  const auto next = std::upper_bound(collapses_.begin(), collapses_.end(), at,
                                     [](std::size_t a, const Collapse& c) { return a < c.begin; });
  if (next == collapses_.begin()) {
    return at;
  }
  const auto i = static_cast<std::size_t>(next - collapses_.begin()) - 1;
  return at < collapses_[i].end ? cleanedAt_[i]
                                : cleanedAt_[i] + kWord.size() + (at - collapses_[i].end);
}

// Calls `visit` with each collapse, the piece of the received text that it begins in and, where
// that is a start tag, its attributes, until it returns false.
template <typename Visit>
void CleanUp::visitPieces(Visit visit) const {
  const std::string_view text = received_;
  MarkupPiece piece;
  TagText tag;
  for (const Collapse& collapse : collapses_) {
    const bool isInSame = collapse.begin < piece.end;
    while (piece.end <= collapse.begin) {
      piece = markupPieceAt(text, piece.end);
    }
    if (!isInSame) {
      const bool isTag = piece.kind == MarkupPiece::Kind::startTag;
      tag = isTag ? readTag(text, piece.begin) : TagText();
    }
    if (!visit(collapse, piece, tag)) {
      return;
    }
  }
}

// Of a collapse in a start tag that keeps its end.
CleanUp::Effect CleanUp::effectOf(const Collapse& collapse, const TagText& tag) const {
  const std::string_view text = received_;
  const auto next = std::upper_bound(
      tag.attributes.begin(), tag.attributes.end(), collapse.begin,
      [](std::size_t at, const AttributeText& attribute) { return at < attribute.nameAt; });
  if (next == tag.attributes.begin() || collapse.begin >= std::prev(next)->end) {
    return Effect::brokeMarkup;
  }
  const AttributeText& holder = *std::prev(next);
  const bool isInValue = collapse.begin >= holder.nameAt + holder.name.size();
  if (isInValue) {
    return collapse.end < holder.end ? Effect::harmless : Effect::brokeMarkup;
  }
  const bool isWhole = isBalanced(text.substr(collapse.begin, collapse.end - collapse.begin));
  const bool isGlued = collapse.end < text.size() && startsName(text[collapse.end]);
  return isWhole && isGlued ? Effect::harmless : Effect::brokeMarkup;
}

CollapseFault CleanUp::findFault() const {
  using Kind = MarkupPiece::Kind;
  CollapseFault fault;
  bool isFound = false;
  visitPieces([&](const Collapse& collapse, const MarkupPiece& piece, const TagText& tag) {
    const bool tookEnd = collapse.end >= piece.end;
    Effect effect = tookEnd ? Effect::brokeMarkup : Effect::harmless;
    if (piece.kind == Kind::startTag) {
      effect = tookEnd ? Effect::tookTagEnd : effectOf(collapse, tag);
    } else if (piece.kind == Kind::text) {
      effect = collapse.end > piece.end ? Effect::brokeMarkup : Effect::harmless;
    }
    if (effect == Effect::harmless) {
      return true;
    }
    isFound = true;
    fault.at = collapse.begin;
    fault.tookTagEnd = effect == Effect::tookTagEnd;
    if (fault.tookTagEnd) {
      const std::string_view rest = cleaned_.view().substr(toCleaned(piece.begin));
      const std::size_t end = std::min(rest.find('>'), rest.size() - 1) + 1;
      fault.read = rest.substr(0, std::min(end, kLongestTag));
    }
    return false;
  });
  if (!isFound && changes()) {
    fault.at = collapses_.front().begin;
  }
  return fault;
}

// The attributes of a received tag that the tag as read has not, `xmlns` aside.
std::vector<std::string> CleanUp::takenFrom(const TagText& before, std::size_t tagAt) const {
  const TagText after = readTag(cleaned_, toCleaned(tagAt));
  std::unordered_set<std::string_view> kept;
  for (const AttributeText& attribute : after.attributes) {
    kept.insert(attribute.name);
  }
  std::vector<std::string> taken;
  for (const AttributeText& attribute : before.attributes) {
    if (!kept.contains(attribute.name) && !endsInWord(attribute.name)) {
      taken.emplace_back(attribute.name);
    }
  }
  return taken;
}

std::optional<TakenAttributes> CleanUp::findTaken() const {
  TakenAttributes taken;
  std::unordered_set<std::string> known;
  std::size_t lastTag = std::string_view::npos;
  visitPieces([&](const Collapse& collapse, const MarkupPiece& piece, const TagText& tag) {
    if (piece.kind == MarkupPiece::Kind::startTag && piece.begin != lastTag) {
      lastTag = piece.begin;
      for (std::string& name : takenFrom(tag, piece.begin)) {
        if (known.insert(name).second) {
          taken.at = taken.names.empty() ? collapse.begin : taken.at;
          taken.names.push_back(std::move(name));
        }
      }
    }
    return true;
  });
  return taken.names.empty() ? std::nullopt : std::optional(std::move(taken));
}

std::optional<std::size_t> CleanUp::findVersionTaken() const {
  const std::size_t root = findRoot(received_);
  if (root == std::string_view::npos || !changes()) {
    return std::nullopt;
  }
  const TagText before = readTag(received_, root);
  const AttributeText* version = findAttribute(before, "version");
  const TagText after = readTag(cleaned_, toCleaned(root));
  if (version == nullptr || version->value.empty() || findAttribute(after, "version") != nullptr) {
    return std::nullopt;
  }
  // The last one before the attribute took it.
  std::size_t at = 0;
  for (const Collapse& collapse : collapses_) {
    if (collapse.begin >= root && collapse.begin < version->nameAt) {
      at = collapse.begin;
    }
  }
  return at;
}

std::string CleanUp::withoutDefaultNamespaces() const {
  const std::string_view text = received_;
  std::string without;
  without.reserve(text.size());
  std::size_t copied = 0;
  visitPieces([&](const Collapse& collapse, const MarkupPiece& piece, const TagText& tag) {
    if (piece.kind != MarkupPiece::Kind::startTag || collapse.begin < copied) {
      return true;
    }
    const auto found = std::lower_bound(
        tag.attributes.begin(), tag.attributes.end(), collapse.begin,
        [](const AttributeText& attribute, std::size_t at) { return attribute.nameAt < at; });
    if (found != tag.attributes.end() && found->nameAt == collapse.begin) {
      without += text.substr(copied, found->nameAt - copied);
      copied = found->end;
    }
    return true;
  });
  without += text.substr(copied);
  return without;
}

}  // namespace tamzo::explain
