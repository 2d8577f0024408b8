#include "tools/Response.h"

#include <fmt/format.h>

#include <chrono>
#include <optional>
#include <utility>

#include "base/Utf8.h"
#include "tamzo/vast/ErrorCodes.h"
#include "tools/ChainRecorder.h"
#include "tools/ChainReplay.h"
#include "tools/CommandError.h"
#include "tools/Input.h"
#include "tools/Output.h"
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

ChainReplay readReplay(const std::string& path) {
  std::string text = readInput(path);
  try {
    return ChainReplay(readHar(std::move(text)));
  } catch (const CommandError& error) {
    throw CommandError(path + ": " + error.what());
  }
}

Text firstResponseOf(const ChainReplay& replay, const std::string& path) {
  auto response = replay.firstResponse();
  if (!response) {
    throw CommandError(path + ": holds no VAST document");
  }
  return Text(*std::move(response));
}

/// The host of one parse: that of the process, answered from a file, saved to another.
class ChainHost {
 public:
  explicit ChainHost(const ChainFiles& files)
      : savePath_(files.savePath), ofProcess_(*TamzoHost::get()) {
    if (!files.replayPath.empty()) {
      replay_.emplace(readReplay(files.replayPath));
      replayed_ = replay_->hostAround(ofProcess_);
    }
    if (!savePath_.empty()) {
      recorded_ = recorder_.hostAround(replay_ ? replayed_ : ofProcess_);
    }
  }
  ChainHost(const ChainHost&) = delete;
  ChainHost& operator=(const ChainHost&) = delete;

  const ChainReplay* replay() const { return replay_ ? &*replay_ : nullptr; }
  const TamzoHost& host() const {
    return !savePath_.empty() ? recorded_ : replay_ ? replayed_ : ofProcess_;
  }

  void save(const Text& response) {
    if (savePath_.empty()) {
      return;
    }
    if (!response.view().starts_with("http")) {
      recorder_.noteInput(response);
    }
    Output output(savePath_);
    output.write(writeHar(recorder_.take()));
    output.finish();
  }

 private:
  std::string savePath_;
  TamzoHost ofProcess_;
  std::optional<ChainReplay> replay_;
  TamzoHost replayed_;
  ChainRecorder recorder_;
  TamzoHost recorded_;
};

}  // namespace

Text urlOf(const std::string& url) {
  if (!isUtf8(url)) {
    throw CommandError(url + ": is not UTF-8 text");
  }
  return Text(url);
}

std::shared_ptr<TamzoVastAd> parseResponse(const std::vector<std::string>& inputs,
                                           const std::string& command, const ChainFiles& files,
                                           ParseObserver* observer) {
  const std::string input = inputs.empty() ? "-" : inputs.front();
  ChainHost chain(files);
  const bool isFromReplay = inputs.empty() && chain.replay() != nullptr;
  if (input == "-" && !isFromReplay) {
    sayThatInputIsAwaited("a response", command);
  }
  const Text response =
      isFromReplay ? firstResponseOf(*chain.replay(), files.replayPath) : responseOf(input);
  const StatusLine waiting(
      [input, begin = Clock::now()](std::size_t columns) {
        return waitingLine(input, Clock::now() - begin, columns);
      },
      kPatience);
  tamzo::ParseOptions options;
  options.observer = observer;
  options.host = &chain.host();
  auto ad = TamzoVastAd::initWithVast(response, options);
  if (ad == nullptr) {
    throw CommandError("out of memory");
  }
  chain.save(response);
  return ad;
}

int statusOf(const TamzoVastAd& ad) {
  return ad.errorCode() == kNoError ? kAllPlayable : kSomeFailed;
}

}  // namespace tamzo::command
