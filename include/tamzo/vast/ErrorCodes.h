#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "tamzo/base/Export.h"

namespace tamzo {

/// The values of TamzoVastAd::errorCode(), which are IAB VAST error codes.
enum VastErrorCode : std::int32_t {
  kNoError = 0,
  kException = 100,
  kNotXml = 101,
  kBadVersion = 102,
  kCategoryBlocked = 205,
  kNoWrapperOrInLine = 300,
  kEmptyContent = 301,
  kWrapperLimit = 302,
  kNoAd = 303,
  kNoUsableLinear = 405,
};

struct VastError {
  std::int32_t code;
  std::string_view name;
  std::string_view cause;
};

/// Every code that a parse can end with, 0 included, in ascending order.
TAMZO_EXPORT std::span<const VastError> vastErrors() noexcept;

/// The entry of that code; null for a code that no parse ends with.
TAMZO_EXPORT const VastError* findVastError(std::int32_t code) noexcept;

}  // namespace tamzo
