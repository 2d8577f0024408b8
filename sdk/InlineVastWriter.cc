#include "sdk/InlineVastWriter.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

#include "base/AssignmentSearch.h"
#include "tamzo/xml/NodeList.h"

namespace tamzo {
namespace {

using Elements = std::vector<DDXMLElement>;

std::string escapeAttribute(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\t':
      case '\n':
      case '\r':
        // Written plainly, a reader would take these for blanks.
        escaped += fmt::format("&#{};", static_cast<int>(c));
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

// Where the start tag at the front of `xml` ends: behind its ">".
std::size_t endOfStartTag(std::string_view xml) noexcept {
  for (std::size_t at = 0; at < xml.size(); ++at) {
    if (xml[at] == '"' || xml[at] == '\'') {
      at = std::min(xml.find(xml[at], at + 1), xml.size() - 1);
    } else if (xml[at] == '>') {
      return at + 1;
    }
  }
  return xml.size();
}

struct Tags {
  std::string open;
  std::string close;
};

Tags tagsOf(const DDXMLElement& element) {
  const Text whole = element.XMLStringStandingAlone();
  const std::string_view xml = whole.view();
  std::string_view open = xml.substr(0, endOfStartTag(xml));
  const bool isEmptyTag = open.ends_with("/>");
  open.remove_suffix(isEmptyTag ? 2 : 1);
  return {std::string(open) + ">", fmt::format("</{}>", element.name().view())};
}

Tags tagsNamed(std::string_view name) {
  return {fmt::format("<{}>", name), fmt::format("</{}>", name)};
}

Elements childrenOf(const DDXMLElement& element) {
  Elements children;
  for (DDXMLElement child = element.firstChildElement(); child;
       child = child.nextSiblingElement()) {
    children.push_back(child);
  }
  return children;
}

// Merges one Wrapper chain and one InLine. Each function writes one element of the result.
class Writer {
 public:
  Writer(const Elements& chain, const DDXMLElement& inlineAd) : chain_(chain), inline_(inlineAd) {
    linear_ = inlineAd.firstNodeForXPath("Creatives/Creative/Linear");
    for (const DDXMLElement& wrapper : chain) {
      linears_.push_back(wrapper.firstNodeForXPath("Creatives/Creative/Linear"));
      firstVerifications_.push_back(wrapper.firstNodeForXPath(kExtensionVerifications));
    }
    firstVerifications_.push_back(inlineAd.firstNodeForXPath(kExtensionVerifications));
  }

  void writeInLine() {
    out_ += "<InLine>";
    copyFromChain("Error");
    copyFromChain("Impression");
    copyFromChain("ViewableImpression");
    for (const DDXMLElement& child : childrenOf(inline_)) {
      if (child != verificationsOfAd() && child != extensions() && child != creatives()) {
        copy(child);
      }
    }
    writeVerificationsOfAd();
    writeExtensions();
    writeCreatives();
    out_ += "</InLine>";
  }

  std::string take() { return std::move(out_); }

 private:
  static constexpr XPath kExtensionVerifications = "Extensions/Extension/AdVerifications";

  DDXMLElement verificationsOfAd() const { return inline_.firstNodeForXPath("AdVerifications"); }
  DDXMLElement extensions() const { return inline_.firstNodeForXPath("Extensions"); }
  DDXMLElement creatives() const { return inline_.firstNodeForXPath("Creatives"); }

  void copy(const DDXMLElement& element) { out_ += element.XMLStringStandingAlone().view(); }

  void copyAll(const NodeList& elements) {
    for (const DDXMLElement& element : elements) {
      copy(element);
    }
  }

  void copyFromChain(const XPath& path) {
    for (const DDXMLElement& wrapper : chain_) {
      copyAll(wrapper.nodesForXPath(path));
    }
  }

  void writeVerificationsOfAd() {
    const DDXMLElement own = verificationsOfAd();
    const Tags tags = own ? tagsOf(own) : tagsNamed("AdVerifications");
    out_ += tags.open;
    copyFromChain("AdVerifications/Verification");
    for (const DDXMLElement& child : childrenOf(own)) {
      copy(child);
    }
    out_ += tags.close;
  }

  // A reader takes its providers from the first AdVerifications of all extensions, so those of
  // every document of the chain are gathered in one.
  void writeExtensions() {
    const DDXMLElement own = extensions();
    const Tags tags = own ? tagsOf(own) : tagsNamed("Extensions");
    out_ += tags.open;
    if (std::any_of(firstVerifications_.begin(), firstVerifications_.end(),
                    [](const DDXMLElement& element) { return static_cast<bool>(element); })) {
      out_ += "<Extension type=\"AdVerifications\"><AdVerifications>";
      for (const DDXMLElement& verifications : firstVerifications_) {
        copyAll(verifications.nodesForXPath("Verification"));
      }
      out_ += "</AdVerifications></Extension>";
    }
    for (const DDXMLElement& wrapper : chain_) {
      for (const DDXMLElement& extension : wrapper.nodesForXPath("Extensions/Extension")) {
        writeWithoutGathered(extension);
      }
    }
    for (const DDXMLElement& extension : childrenOf(own)) {
      writeWithoutGathered(extension);
    }
    out_ += tags.close;
  }

  void writeWithoutGathered(const DDXMLElement& extension) {
    const auto isGathered = [this](const DDXMLElement& child) {
      return std::find(firstVerifications_.begin(), firstVerifications_.end(), child) !=
             firstVerifications_.end();
    };
    const Elements children = childrenOf(extension);
    if (std::none_of(children.begin(), children.end(), isGathered)) {
      copy(extension);
      return;
    }
    const Tags tags = tagsOf(extension);
    out_ += tags.open;
    for (const DDXMLElement& child : children) {
      if (!isGathered(child)) {
        copy(child);
      }
    }
    out_ += tags.close;
  }

  void writeCreatives() {
    const DDXMLElement own = creatives();
    const Tags tags = own ? tagsOf(own) : tagsNamed("Creatives");
    out_ += tags.open;
    for (const DDXMLElement& wrapper : chain_) {
      for (const DDXMLElement& companions :
           wrapper.nodesForXPath("Creatives/Creative/CompanionAds")) {
        out_ += "<Creative>";
        copy(companions);
        out_ += "</Creative>";
      }
    }
    for (const DDXMLElement& creative : childrenOf(own)) {
      writeCreative(creative);
    }
    out_ += tags.close;
  }

  void writeCreative(const DDXMLElement& creative) {
    const Elements children = childrenOf(creative);
    if (!linear_ || std::find(children.begin(), children.end(), linear_) == children.end()) {
      copy(creative);
      return;
    }
    const Tags tags = tagsOf(creative);
    out_ += tags.open;
    for (const DDXMLElement& child : children) {
      if (child == linear_) {
        writeLinear();
      } else {
        copy(child);
      }
    }
    out_ += tags.close;
  }

  void writeLinear() {
    const DDXMLElement tracking = linear_.firstNodeForXPath("TrackingEvents");
    const DDXMLElement clicks = linear_.firstNodeForXPath("VideoClicks");
    const DDXMLElement icons = linear_.firstNodeForXPath("Icons");
    const Tags tags = tagsOf(linear_);
    out_ += tags.open;
    writeMerged("TrackingEvents", tracking, {"TrackingEvents/Tracking"});
    writeMerged("VideoClicks", clicks, {"VideoClicks/ClickTracking", "VideoClicks/CustomClick"});
    writeMerged("Icons", icons, {"Icons/Icon"});
    for (const DDXMLElement& child : childrenOf(linear_)) {
      if (child != tracking && child != clicks && child != icons) {
        copy(child);
      }
    }
    out_ += tags.close;
  }

  // The container `own`, or a new one, with what `paths` find in the chain's Linears put first.
  void writeMerged(std::string_view name, const DDXMLElement& own,
                   std::initializer_list<XPath> paths) {
    const Tags tags = own ? tagsOf(own) : tagsNamed(name);
    out_ += tags.open;
    for (const DDXMLElement& linear : linears_) {
      for (const XPath& path : paths) {
        copyAll(linear.nodesForXPath(path));
      }
    }
    for (const DDXMLElement& child : childrenOf(own)) {
      copy(child);
    }
    out_ += tags.close;
  }

  const Elements& chain_;
  DDXMLElement inline_;
  DDXMLElement linear_;
  Elements linears_;
  Elements firstVerifications_;
  std::string out_;
};

// Follows markup from the front to the back and knows what each character is part of.
class MarkupCursor {
 public:
  enum class Where { content, tag, quoted, cdata, comment, instruction };

  Where where() const noexcept { return where_; }

  /// Steps over the first character of `rest`.
  void step(std::string_view rest) noexcept {
    const char c = rest.front();
    switch (where_) {
      case Where::content:
        if (c == '<') {
          where_ = rest.starts_with("<![CDATA[") ? Where::cdata
                   : rest.starts_with("<!--")    ? Where::comment
                   : rest.starts_with("<?")      ? Where::instruction
                                                 : Where::tag;
        }
        break;
      case Where::tag:
        if (c == '"' || c == '\'') {
          quote_ = c;
          where_ = Where::quoted;
        } else if (c == '>') {
          where_ = Where::content;
        }
        break;
      case Where::quoted:
        where_ = c == quote_ ? Where::tag : Where::quoted;
        break;
      case Where::cdata:
        where_ = rest.starts_with("]]>") ? Where::content : Where::cdata;
        break;
      case Where::comment:
        where_ = rest.starts_with("-->") ? Where::content : Where::comment;
        break;
      case Where::instruction:
        where_ = rest.starts_with("?>") ? Where::content : Where::instruction;
        break;
    }
  }

 private:
  Where where_ = Where::content;
  char quote_ = '\0';
};

// "=" in other words of the same meaning, so that no "xmlns" stands right before it.
std::string_view disguisedEquals(MarkupCursor::Where where) noexcept {
  switch (where) {
    case MarkupCursor::Where::cdata:
      return "]]><![CDATA[=";
    case MarkupCursor::Where::content:
    case MarkupCursor::Where::quoted:
      return "&#61;";
    case MarkupCursor::Where::tag:
    case MarkupCursor::Where::comment:
    case MarkupCursor::Where::instruction:
      break;
  }
  return " =";
}

// The parser collapses "xmlns=" in every response before it reads it. Written in other ways of the
// same meaning, declarations and texts of the fetched documents come through unharmed.
std::string withoutXmlnsAssignments(std::string xml) {
  const std::string_view text = xml;
  std::string out;
  std::size_t at = 0;
  MarkupCursor cursor;
  while (const TextMatch match = findAssignment(text, "xmlns", at)) {
    for (; at + 1 < match.end; ++at) {
      cursor.step(text.substr(at));
      out += text[at];
    }
    out += disguisedEquals(cursor.where());
    at = match.end;
  }
  return at == 0 ? xml : out.append(text.substr(at));
}

}  // namespace

std::string writeInlineVast(const std::vector<DDXMLElement>& chain, const DDXMLElement& inlineAd,
                            const Text& version, const Text& adId) {
  std::string out = fmt::format(R"(<VAST version="{}"><Ad)", escapeAttribute(version));
  if (!adId.isNil()) {
    out += fmt::format(R"( id="{}")", escapeAttribute(adId));
  }
  out += '>';
  Writer writer(chain, inlineAd);
  writer.writeInLine();
  return withoutXmlnsAssignments(out + writer.take() + "</Ad></VAST>");
}

}  // namespace tamzo
