#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tamzo/vast/TamzoVastAd.h"
#include "tools/ChainFiles.h"

namespace tamzo::command {

/// Parses the one response that `inputs` names: a file, a text that begins with "http" and is
/// fetched, or standard input for "-" and for none. On a terminal, tells what takes long; `command`
/// is the one whose help tells more. `observer` may be null. The chain is saved, and played from a
/// file, as `files` says. Throws CommandError when something cannot be read or saved.
std::shared_ptr<TamzoVastAd> parseResponse(const std::vector<std::string>& inputs,
                                           const std::string& command, const ChainFiles& files,
                                           ParseObserver* observer = nullptr);

/// A URL as what the parser fetches. Throws CommandError when it is not UTF-8.
Text urlOf(const std::string& url);

/// The exit status that tells whether the ad failed.
int statusOf(const TamzoVastAd& ad);

}  // namespace tamzo::command
