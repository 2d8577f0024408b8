#include <fmt/format.h>

#include "base/Ascii.h"
#include "base/WhiteSpace.h"
#include "explain/Rules.h"
#include "explain/Words.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {
namespace {

struct TagKind {
  std::string_view name;
  std::string_view words;
};

// "ftp://host", "data:text/xml", but not the port in "host:8080/path".
bool hasScheme(std::string_view tag) noexcept {
  std::size_t at = 0;
  while (at < tag.size() &&
         (isAsciiLetter(tag[at]) || (at > 0 && (isAsciiDigit(tag[at]) || tag[at] == '+' ||
                                                tag[at] == '-' || tag[at] == '.')))) {
    ++at;
  }
  const std::string_view rest = tag.substr(at);
  return at > 0 && rest.starts_with(':') && rest.size() > 1 && !isAsciiDigit(rest[1]);
}

bool isPath(std::string_view tag) noexcept {
  if (tag.starts_with('/') || tag.starts_with("./") || tag.starts_with("../") ||
      tag.starts_with('?')) {
    return true;
  }
  const std::string_view path = tag.substr(0, tag.find_first_of("?#"));
  return path.find_first_of(" \t\r\n[]{}<>$%|\"'") == std::string_view::npos &&
         path.find_first_of("./") != std::string_view::npos;
}

TagKind kindOf(std::string_view tag) {
  const std::string_view trimmed = withoutLeadingWhiteSpace(tag);
  if (trimmed.starts_with("http")) {
    return {"leading-blank", "begins with white space"};
  }
  if (beginsLike(trimmed, "http")) {
    return {"letter-case", "does not begin with \"http\" in small letters"};
  }
  if (trimmed.starts_with("//")) {
    return {"protocol-relative", "has no \"https:\" in front"};
  }
  if (hasScheme(trimmed)) {
    return {"other-scheme", "is neither http nor https"};
  }
  return isPath(trimmed) ? TagKind{"relative", "is a path without a host"}
                         : TagKind{"other", "is no URL"};
}

}  // namespace

void findTagNotFetched(const Chain& chain, Findings& findings) {
  if (chain.errorCode() != kNotXml || chain.last().source != HopSource::tag ||
      chain.hops().size() < 2) {
    return;
  }
  const SeenHop& wrapper = chain.hops()[chain.hops().size() - 2];
  const std::string_view tag = chain.last().document;
  const TagKind kind = kindOf(tag);
  findings.add(wrapper.number)
      .at(wrapper.followed.firstNodeForXPath("VASTAdTagURI"))
      .say(fmt::format("The Wrapper's tag {} {}, so it was not fetched.",
                       quoted(trimWhiteSpace(tag)), kind.words),
           "Whoever made the Wrapper: write a whole URL that begins with \"http\", with nothing "
           "in front.")
      .with("kind", kind.name);
}

}  // namespace tamzo::explain
