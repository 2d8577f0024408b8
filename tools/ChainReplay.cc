#include "tools/ChainReplay.h"

#include <algorithm>
#include <utility>

#include "base/Ascii.h"
#include "base/WhiteSpace.h"
#include "explain/MacroFilling.h"
#include "explain/Words.h"
#include "sdk/HostFetch.h"
#include "sdk/HostInUse.h"
#include "tamzo/net/TamzoUrlReader.h"
#include "tamzo/sdk/TamzoMacroReplacementUtil.h"
#include "xml/Markup.h"

namespace tamzo::command {
namespace {

constexpr std::size_t kMostRedirects = 10;
constexpr int kErrorsFrom = 400;

std::string escaped(std::string_view url) {
  const Text text = TamzoUrlReader::urlFromText(url);
  return text.isNil() ? std::string(url) : std::string(text.view());
}

// What stands between the macros of a tag, as it stands in a URL, and the macros' names.
struct TagPattern {
  std::vector<std::string> literals;  // one more than names
  std::vector<std::string> names;
};

TagPattern patternOf(std::string_view tag) {
  tag = trimWhiteSpace(tag);
  TagPattern pattern;
  std::size_t at = 0;
  for (explain::BracketedName name = explain::findBracketedName(tag, 0); name;
       name = explain::findBracketedName(tag, at)) {
    pattern.literals.push_back(escaped(tag.substr(at, name.begin - at)));
    pattern.names.emplace_back(name.name);
    at = name.end();
  }
  pattern.literals.push_back(escaped(tag.substr(at)));
  return pattern;
}

bool isOfValue(char c) noexcept { return c != '&' && c != '#' && c != '/' && c != '?'; }

// The values of the macros in a URL of that pattern; nothing where it is of another.
std::optional<std::vector<std::string>> match(const TagPattern& pattern, std::string_view url) {
  if (!url.starts_with(pattern.literals.front())) {
    return std::nullopt;
  }
  url.remove_prefix(pattern.literals.front().size());
  std::vector<std::string> values;
  for (std::size_t i = 1; i < pattern.literals.size(); ++i) {
    const std::string& literal = pattern.literals[i];
    const bool isLast = i + 1 == pattern.literals.size();
    const auto* end = std::find_if_not(url.begin(), url.end(), isOfValue);
    const auto longest = static_cast<std::size_t>(end - url.begin());
    std::size_t width = literal.empty() ? longest : url.find(literal);
    if (isLast) {
      width = url.size() < literal.size() ? std::string_view::npos : url.size() - literal.size();
    }
    if (width > longest || url.substr(width, literal.size()) != literal) {
      return std::nullopt;
    }
    values.emplace_back(url.substr(0, width));
    url.remove_prefix(width + literal.size());
  }
  return url.empty() ? std::optional(std::move(values)) : std::nullopt;
}

bool beginsAsVast(std::string_view body) {
  constexpr std::string_view kRoot = "<VAST";
  const std::string_view rest = body.substr(pastPreamble(body));
  return rest.starts_with(kRoot) && endsTagName(rest, kRoot.size());
}

// An address to which a URL redirects, which may be a part of one.
std::string resolved(std::string_view url, std::string_view address) {
  const std::size_t scheme = url.find("://");
  if (address.find("://") != std::string_view::npos || scheme == std::string_view::npos) {
    return std::string(address);
  }
  if (address.starts_with("//")) {
    return std::string(url.substr(0, scheme + 1)) + std::string(address);
  }
  const std::size_t path = std::min(url.find_first_of("/?#", scheme + 3), url.size());
  if (address.starts_with('/')) {
    return std::string(url.substr(0, path)) + std::string(address);
  }
  const std::string_view withoutQuery = url.substr(0, url.find_first_of("?#"));
  if (address.starts_with('?')) {
    return std::string(withoutQuery) + std::string(address);
  }
  const std::size_t folder = withoutQuery.rfind('/');
  return folder <= scheme + 2
             ? std::string(withoutQuery) + "/" + std::string(address)
             : std::string(withoutQuery.substr(0, folder + 1)) + std::string(address);
}

// What an entry that redirects no further gives.
void takeBody(const HarEntry& entry, const FetchRequest& request, FetchResult& result) {
  result.status = entry.status;
  result.contentType = entry.contentType;
  result.milliseconds = entry.milliseconds;
  if (!entry.failure.empty()) {
    result.failure = fetchFailureNamed(entry.failure);
    result.cause = entry.cause;
  } else if (entry.status == 0 || (!entry.body && entry.status < kErrorsFrom)) {
    result.failure = FetchFailure::other;
  } else if (entry.status >= kErrorsFrom) {
    result.failure = FetchFailure::status;
  } else if (entry.body->size() > request.limits.maxBodyBytes) {
    result.failure = FetchFailure::tooLarge;
    result.cause = FetchCause::bodySize;
  } else {
    result.body = entry.body;
    result.bytes = entry.body->size();
    result.failure = entry.body->empty() ? FetchFailure::empty : FetchFailure::none;
  }
}

}  // namespace

ChainReplay::ChainReplay(Har har) : har_(std::move(har)), isUsed_(har_.entries.size(), false) {
  urls_.reserve(har_.entries.size());
  for (const HarEntry& entry : har_.entries) {
    urls_.push_back(escaped(trimWhiteSpace(entry.url)));
  }
}

TamzoHost ChainReplay::hostAround(const TamzoHost& inner) {
  TamzoHost host = inner;
  host.fetch = [this](const FetchRequest& request) { return answer(request); };
  host.replaceMacros = [this, &inner](const Text& text, const MacroValues& from) {
    const HostScope scope(inner);
    return TamzoMacroReplacementUtil::replaceVASTMacros(fill(text), from);
  };
  return host;
}

std::optional<std::string> ChainReplay::firstResponse() const {
  for (const HarEntry& entry : har_.entries) {
    if (entry.body && beginsAsVast(*entry.body)) {
      return entry.url == kInputUrl ? entry.body : entry.url;
    }
  }
  return std::nullopt;
}

// The first that has not answered yet, else the last.
std::size_t ChainReplay::firstUnused(const std::vector<std::size_t>& found) const {
  for (const std::size_t i : found) {
    if (!isUsed_[i]) {
      return i;
    }
  }
  return found.empty() ? kNone : found.back();
}

std::size_t ChainReplay::findByTag(std::string_view tag, std::vector<std::string>* values) const {
  const TagPattern pattern = patternOf(tag);
  std::size_t best = kNone;
  for (std::size_t i = 0; i < urls_.size() && !pattern.names.empty(); ++i) {
    if (auto found = match(pattern, urls_[i])) {
      best = i;
      if (values != nullptr) {
        *values = *std::move(found);
      }
      if (!isUsed_[i]) {
        break;
      }
    }
  }
  return best;
}

// Puts the saved values of what changes with each run into a tag.
Text ChainReplay::fill(const Text& tag) {
  lastTag_ = std::string(tag.view());
  std::vector<std::string> values;
  const std::size_t found = findByTag(tag, &values);
  if (found == kNone || isUsed_[found]) {
    for (const std::string& unasked : har_.unaskedTags) {
      if (auto own = match(patternOf(tag), escaped(unasked))) {
        values = *std::move(own);
        break;
      }
    }
  }
  if (values.empty()) {
    return tag;
  }
  const std::string_view text = tag;
  std::string filled;
  std::size_t at = 0;
  std::size_t i = 0;
  for (explain::BracketedName name = explain::findBracketedName(text, 0); name;
       name = explain::findBracketedName(text, name.end()), ++i) {
    if (name.name == "CACHEBUSTING" || name.name == "TIMESTAMP") {
      filled += text.substr(at, name.begin - at);
      filled += values[i];
      at = name.end();
    }
  }
  return Text(filled += text.substr(at));
}

std::size_t ChainReplay::findAnswer(std::string_view url) const {
  std::vector<std::size_t> found;
  for (std::size_t i = 0; i < urls_.size(); ++i) {
    if (urls_[i] == url) {
      found.push_back(i);
    }
  }
  if (!found.empty()) {
    return firstUnused(found);
  }
  const TagPattern pattern = patternOf(lastTag_);
  if (match(pattern, url)) {
    if (const std::size_t byTag = findByTag(lastTag_, nullptr); byTag != kNone) {
      return byTag;
    }
  }
  const std::string_view host = explain::hostOf(url);
  for (std::size_t i = 0; i < urls_.size(); ++i) {
    if (!isUsed_[i] && !host.empty() && equalsInAnyCase(explain::hostOf(urls_[i]), host)) {
      return i;
    }
  }
  return kNone;
}

FetchResult ChainReplay::answer(const FetchRequest& request) {
  FetchResult result;
  std::string url = escaped(request.url);
  result.finalUrl = url;
  for (;;) {
    const std::size_t found = findAnswer(url);
    if (found == kNone) {
      result.failure = FetchFailure::other;
      return result;
    }
    isUsed_[found] = true;
    const HarEntry& entry = har_.entries[found];
    if (entry.redirectUrl.empty() || !entry.failure.empty()) {
      takeBody(entry, request, result);
      return result;
    }
    if (result.redirects.size() == kMostRedirects) {
      result.failure = FetchFailure::redirects;
      return result;
    }
    url = escaped(resolved(url, entry.redirectUrl));
    result.redirects.push_back(url);
    result.redirectStatuses.push_back(entry.status);
    result.finalUrl = url;
  }
}

}  // namespace tamzo::command
