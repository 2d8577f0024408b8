#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tamzo/net/Fetch.h"

namespace tamzo::command {

/// One request and its answer.
struct HarEntry {
  std::string url;
  int status = 0;                   ///< 0: there was no answer
  std::string redirectUrl;          ///< where it redirects to; "" where it does not
  std::optional<std::string> body;  ///< nothing where none was saved
  std::optional<std::string> contentType;
  std::string failure;  ///< why the fetch failed, as fetchFailureName(); "" otherwise
  FetchCause cause = FetchCause::none;  ///< what exactly it failed at
  FetchTimes milliseconds;
};

/// What of a HAR file counts here.
struct Har {
  std::vector<HarEntry> entries;
  /// Tags of Wrappers as they were filled, where nothing was asked for them.
  std::vector<std::string> unaskedTags;
};

/// The URL of a response that was given as text.
inline constexpr const char* kInputUrl = "about:input";

/// Reads HAR 1.2 of whatever maker: base64 and fields that nobody knows included. Requests that ask
/// for no body, such as those that a browser sends ahead, are passed over. Throws CommandError,
/// which does not name the file.
Har readHar(std::string text);

/// HAR 1.2.
std::string writeHar(const Har& har);

/// The failure of that name; `other` for a name that nobody knows.
FetchFailure fetchFailureNamed(const std::string& name) noexcept;

std::string encodeBase64(std::string_view bytes);
/// Nothing where it is none. White space counts for nothing.
std::optional<std::string> decodeBase64(std::string_view text);

}  // namespace tamzo::command
