#include "base/WhiteSpace.h"
#include "explain/Rules.h"
#include "explain/TagText.h"
#include "explain/Words.h"
#include "tamzo/vast/ErrorCodes.h"
#include "xml/Markup.h"

namespace tamzo::explain {
namespace {

constexpr std::size_t kLongestTitle = 4096;

bool beginsTag(std::string_view text, std::string_view name) noexcept {
  return beginsLike(text, name) && endsTagName(text, name.size());
}

bool isHtml(std::string_view text) noexcept {
  if (beginsLike(text, "<!doctype")) {
    const std::string_view type = withoutLeadingWhiteSpace(text.substr(9));
    return type.size() < text.size() - 9 && beginsTag(type, "html");
  }
  return beginsTag(text, "<html") || beginsTag(text, "<head") || beginsTag(text, "<body");
}

std::size_t findLike(std::string_view text, std::string_view piece, std::size_t from) noexcept {
  for (std::size_t at = text.find('<', from); at != std::string_view::npos;
       at = text.find('<', at + 1)) {
    if (beginsLike(text.substr(at), piece)) {
      return at;
    }
  }
  return std::string_view::npos;
}

Text titleOf(std::string_view text) {
  for (std::size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<', at + 1)) {
    const std::string_view rest = text.substr(at);
    if (rest.starts_with("<!--")) {
      at = pastRemark(text, at) - 1;
    } else if (beginsTag(rest, "<title")) {
      const std::size_t begin = rest.find('>');
      const std::size_t end =
          begin == std::string_view::npos ? begin : findLike(rest, "</title", begin);
      return end == std::string_view::npos
                 ? Text()
                 : Text(decoded(trimWhiteSpace(rest.substr(begin + 1, end - begin - 1))
                                    .substr(0, kLongestTitle)));
    }
  }
  return {};
}

}  // namespace

void findHtmlPage(const Chain& chain, Findings& findings) {
  const SeenHop& hop = chain.last();
  const std::string_view text = hop.document;
  const bool isOfCode = chain.errorCode() == kNotXml || chain.errorCode() == kBadVersion;
  if (!isOfCode || hop.source == HopSource::tag || !isHtml(text.substr(pastPreamble(text)))) {
    return;
  }
  const Text title = titleOf(text);
  findings.add(hop.number)
      .say(title.hasCharacters()
               ? "The response is a web page, " + quoted(title) + ", and no VAST document."
               : "The response is a web page and no VAST document.",
           "Whoever runs the server: look up why it shows a page here, such as an error, a login "
           "or a wrong address.")
      .with("title", title);
}

}  // namespace tamzo::explain
