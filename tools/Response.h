#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tamzo/vast/TamzoVastAd.h"

namespace tamzo::command {

/// Parses the one response that `inputs` names: a file, a text that begins with "http" and is
/// fetched, or standard input for "-" and for none. On a terminal, tells what takes long; `command`
/// is the one whose help tells more. Throws CommandError when it cannot be read.
std::shared_ptr<TamzoVastAd> parseResponse(const std::vector<std::string>& inputs,
                                           const std::string& command);

/// A URL as what the parser fetches. Throws CommandError when it is not UTF-8.
Text urlOf(const std::string& url);

/// The exit status that tells whether the ad can be played.
int statusOf(const TamzoVastAd& ad);

}  // namespace tamzo::command
