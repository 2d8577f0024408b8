#include "tamzo/vast/ErrorCodes.h"

#include <algorithm>
#include <array>

namespace tamzo {
namespace {

constexpr std::array<VastError, 10> kErrors{{
    {kNoError, "success", "nothing failed"},
    {kException, "exception",
     "reading failed half-way: a tag URL or response of fewer than 4 characters, a Tracking "
     "without an event name, memory that ran out"},
    {kNotXml, "not XML", "the text is not well-formed XML, or is shaped to exhaust a parser"},
    {kBadVersion, "bad version", "the root is not VAST, or its version is absent or not 2, 3 or 4"},
    {kCategoryBlocked, "category blocked", "the ad has a category that the app blocks"},
    {kNoWrapperOrInLine, "no Wrapper or InLine", "the Ad holds neither of the two"},
    {kEmptyContent, "empty content",
     "a tag URL gave nothing: the fetch failed, timed out or was too large, or its body is empty "
     "or not UTF-8"},
    {kWrapperLimit, "wrapper limit", "the chain of Wrappers ended on its fifth document"},
    {kNoAd, "no ad", "the VAST document holds no Ad"},
    {kNoUsableLinear, "no usable Linear",
     "the first Linear of the InLine has no MP4 file and no JavaScript VPAID unit"},
}};

}  // namespace

std::span<const VastError> vastErrors() noexcept { return kErrors; }

const VastError* findVastError(std::int32_t code) noexcept {
  const auto* found = std::find_if(kErrors.begin(), kErrors.end(),
                                   [code](const VastError& error) { return error.code == code; });
  return found == kErrors.end() ? nullptr : found;
}

}  // namespace tamzo
