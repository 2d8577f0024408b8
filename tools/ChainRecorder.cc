#include "tools/ChainRecorder.h"

#include <algorithm>
#include <utility>

#include "base/WhiteSpace.h"
#include "sdk/HostFetch.h"
#include "sdk/HostInUse.h"
#include "tamzo/net/TamzoUrlReader.h"
#include "tamzo/sdk/TamzoMacroReplacementUtil.h"

namespace tamzo::command {
namespace {

// What tells by itself why the fetch failed need not be said.
bool isToldByAnswer(const FetchResult& result) {
  return result.failure == FetchFailure::none ||
         (result.failure == FetchFailure::status && result.status != 0) ||
         (result.failure == FetchFailure::empty && result.status != 0) ||
         (result.failure == FetchFailure::notUtf8 && result.body);
}

}  // namespace

TamzoHost ChainRecorder::hostAround(const TamzoHost& inner) {
  TamzoHost host = inner;
  host.fetch = [this, &inner](const FetchRequest& request) {
    FetchResult result = fetchByHost(inner, request);
    note(request, result);
    return result;
  };
  host.replaceMacros = [this, &inner](const Text& text, const MacroValues& from) {
    const HostScope scope(inner);
    Text filled = TamzoMacroReplacementUtil::replaceVASTMacros(text, from);
    filledTags_.emplace_back(trimWhiteSpace(filled));
    return filled;
  };
  return host;
}

void ChainRecorder::noteInput(const Text& response) {
  HarEntry entry;
  entry.url = kInputUrl;
  entry.status = 200;
  entry.body = std::string(response.view());
  entry.contentType = "application/xml";
  har_.entries.insert(har_.entries.begin(), std::move(entry));
}

void ChainRecorder::note(const FetchRequest& request, const FetchResult& result) {
  HarEntry entry;
  entry.url = std::string(request.url.view());
  asked_.push_back(entry.url);
  for (std::size_t i = 0; i < result.redirects.size(); ++i) {
    constexpr int kFound = 302;
    entry.status = i < result.redirectStatuses.size() ? result.redirectStatuses[i] : kFound;
    entry.redirectUrl = result.redirects[i];
    entry.body = "";
    har_.entries.push_back(entry);
    entry = HarEntry();
    entry.url = result.redirects[i];
  }
  // A host's simple reader knows of no status.
  const bool isUnknown = result.status == 0 && result.failure == FetchFailure::none;
  entry.status = isUnknown ? 200 : result.status;
  entry.contentType = result.contentType;
  entry.milliseconds = result.milliseconds;
  entry.body = result.body;
  if (!isToldByAnswer(result)) {
    entry.failure = fetchFailureName(result.failure);
    entry.cause = result.cause;
    entry.body.reset();
  }
  har_.entries.push_back(std::move(entry));
}

Har ChainRecorder::take() {
  for (std::string& tag : filledTags_) {
    const Text escaped = TamzoUrlReader::urlFromText(tag);
    if (std::find(asked_.begin(), asked_.end(), escaped.view()) == asked_.end()) {
      har_.unaskedTags.push_back(std::move(tag));
    }
  }
  return std::move(har_);
}

}  // namespace tamzo::command
