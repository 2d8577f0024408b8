#include "tools/Response.h"

#include <fmt/format.h>

#include <chrono>

#include "base/Utf8.h"
#include "tamzo/vast/ErrorCodes.h"
#include "tools/CommandError.h"
#include "tools/Input.h"
#include "tools/Printable.h"
#include "tools/StandardError.h"

namespace tamzo::command {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kPatience = std::chrono::milliseconds(500);

// What a person sees who waits for the network.
std::string waitingLine(const std::string& input, Clock::duration time, std::size_t columns) {
  const std::string seconds =
      fmt::format("  {} s", std::chrono::duration_cast<std::chrono::seconds>(time).count());
  const std::string what = input.starts_with("http") ? "waiting for " + input
                           : input == "-"            ? "following standard input's tag URL"
                                                     : "following the tag URL of " + input;
  const std::size_t room = columns > seconds.size() ? columns - seconds.size() : 0;
  return cutInTheMiddle(shownOnTerminal(what), room) + seconds;
}

// A text that begins with "http" is the parser's to fetch; anything else names a file.
Text responseOf(const std::string& input) {
  return input.starts_with("http") ? urlOf(input) : Text(readInput(input));
}

}  // namespace

Text urlOf(const std::string& url) {
  if (!isUtf8(url)) {
    throw CommandError(url + ": is not UTF-8 text");
  }
  return Text(url);
}

std::shared_ptr<TamzoVastAd> parseResponse(const std::vector<std::string>& inputs,
                                           const std::string& command) {
  const std::string input = inputs.empty() ? "-" : inputs.front();
  if (input == "-") {
    sayThatInputIsAwaited("a response", command);
  }
  const Text response = responseOf(input);
  const StatusLine waiting(
      [input, begin = Clock::now()](std::size_t columns) {
        return waitingLine(input, Clock::now() - begin, columns);
      },
      kPatience);
  auto ad = TamzoVastAd::initWithVast(response);
  if (ad == nullptr) {
    throw CommandError("out of memory");
  }
  return ad;
}

int statusOf(const TamzoVastAd& ad) {
  return ad.errorCode() == kNoError ? kAllPlayable : kSomeFailed;
}

}  // namespace tamzo::command
