#include "tools/Response.h"

#include "base/Utf8.h"
#include "tamzo/vast/ErrorCodes.h"
#include "tools/CommandError.h"
#include "tools/Input.h"

namespace tamzo::command {
namespace {

// A text that begins with "http" is the parser's to fetch; anything else names a file.
Text responseOf(const std::string& input) {
  if (!input.starts_with("http")) {
    return Text(readInput(input));
  }
  if (!isUtf8(input)) {
    throw CommandError(input + ": is not UTF-8 text");
  }
  return Text(input);
}

}  // namespace

std::shared_ptr<TamzoVastAd> parseResponse(const std::vector<std::string>& inputs) {
  auto ad = TamzoVastAd::initWithVast(responseOf(inputs.empty() ? "-" : inputs.front()));
  if (ad == nullptr) {
    throw CommandError("out of memory");
  }
  return ad;
}

int statusOf(const TamzoVastAd& ad) {
  return ad.errorCode() == kNoError ? kAllPlayable : kSomeFailed;
}

}  // namespace tamzo::command
