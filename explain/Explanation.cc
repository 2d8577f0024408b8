#include "explain/Explanation.h"

#include <algorithm>

namespace tamzo::explain {

std::string_view nameOf(Severity severity) noexcept {
  switch (severity) {
    case Severity::error:
      return "error";
    case Severity::warning:
      return "warning";
    default:
      return "note";
  }
}

std::string_view nameOf(Verdict verdict) noexcept {
  switch (verdict) {
    case Verdict::playable:
      return "playable";
    case Verdict::failed:
      return "failed";
    default:
      return "nothing-to-play";
  }
}

std::string_view nameOf(AdKind kind) noexcept {
  switch (kind) {
    case AdKind::wrapper:
      return "wrapper";
    case AdKind::inLine:
      return "inline";
    default:
      return "none";
  }
}

std::string_view nameOf(HopSource source) noexcept {
  switch (source) {
    case HopSource::input:
      return "input";
    case HopSource::url:
      return "url";
    default:
      return "tag";
  }
}

const Finding* errorOf(const Explanation& explanation) noexcept {
  const bool hasError =
      !explanation.findings.empty() && explanation.findings.front().severity == Severity::error;
  return hasError ? &explanation.findings.front() : nullptr;
}

std::string_view detailOf(const Finding& finding, std::string_view key) noexcept {
  const auto found = std::find_if(finding.details.begin(), finding.details.end(),
                                  [key](const Detail& detail) { return detail.key == key; });
  return found == finding.details.end() ? std::string_view() : found->json;
}

}  // namespace tamzo::explain
