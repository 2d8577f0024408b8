#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "tamzo/base/Export.h"

namespace tamzo {

/// The values of TamzoVastAd::errorCode(), which are IAB VAST error codes. A parse stops at the
/// first failure; what it read before that stays in the record.
enum VastErrorCode : std::int32_t {
  /// Nothing failed, which does not say that there is something to play: ask mediaFiles() and
  /// jsVPaidPresent(). A chain of six Wrappers ends so and has nothing; so does an ad that leaves
  /// playing to another component (isImaEnabled()).
  kNoError = 0,

  /// An exception inside the parse: a response or tag URL of fewer than 4 characters, a Tracking
  /// element without an event name, a function of the host that threw, memory that ran out. The log
  /// has its message and the call stack.
  kException = 100,

  /// The text is not well-formed XML, or is shaped to cost a parser more than its size. Often one
  /// that is well-formed until `xmlns="..."` at the end of a tag is taken away with the ">" behind
  /// it: see TamzoVastAd::replaceWithPattern().
  kNotXml = 101,

  /// The root element is not VAST, also where it is VAST in a namespace; or its version is absent
  /// or
  /// not 2, 3 or 4 (4.1 and 4.2 count as 4).
  kBadVersion = 102,

  /// One of the InLine's categories is blocked by the app: TamzoState::getBlockedAdCategories().
  /// VAST 4 only.
  kCategoryBlocked = 205,

  /// The document has an Ad that holds neither a Wrapper nor an InLine.
  kNoWrapperOrInLine = 300,

  /// A tag URL gave nothing: the fetch failed, took too long or brought too much, or its body is
  /// empty or no UTF-8.
  kEmptyContent = 301,

  /// The chain ended on its fifth document, an InLine or not: that counts as too long. A chain of
  /// six
  /// does not.
  kWrapperLimit = 302,

  /// The VAST document holds no Ad, as when the ad server has none to give.
  kNoAd = 303,

  /// The first Linear of the InLine has no MP4 file and no JavaScript VPAID unit, or there is no
  /// Linear at all. Companions and impressions are read all the same.
  kNoUsableLinear = 405,
};

/// What a code means, for people.
struct VastError {
  std::int32_t code;       ///< one of VastErrorCode
  std::string_view name;   ///< a few words, such as "not XML"
  std::string_view cause;  ///< what happened, in a sentence without a full stop
};

/// Every code that a parse can end with, 0 included, in ascending order. May be called from any
/// thread.
TAMZO_EXPORT std::span<const VastError> vastErrors() noexcept;

/// The entry of that code; null for a code that no parse ends with. May be called from any thread.
TAMZO_EXPORT const VastError* findVastError(std::int32_t code) noexcept;

}  // namespace tamzo
