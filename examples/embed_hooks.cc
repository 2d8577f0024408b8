// How an app puts its own pieces in place of the SDK's defaults: what reads URLs, where log lines
// go, which categories are blocked, the session, the clock of macros, and the page template.

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "expect.h"
#include "tamzo/sdk/TamzoHost.h"
#include "tamzo/sdk/TamzoLogger.h"
#include "tamzo/vast/TamzoVastAd.h"

namespace {

// A table stands in for the platform's HTTP client here.
using Bodies = std::map<std::string, std::string, std::less<>>;

tamzo::TamzoHost hostThatReads(Bodies bodies) {
  tamzo::TamzoHost host;
  host.readUrl = [bodies =
                      std::move(bodies)](const tamzo::Text& url) -> std::optional<std::string> {
    const auto found = bodies.find(url.view());
    if (found == bodies.end()) {
      return std::nullopt;  // a failed read: the ad ends with error 301
    }
    return found->second;
  };
  return host;
}

class LogLines {
 public:
  void add(std::string_view line) {
    const std::lock_guard lock(mutex_);  // lines may come from several threads at once
    lines_.emplace_back(line);
  }
  std::size_t count() const {
    const std::lock_guard lock(mutex_);
    return lines_.size();
  }

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> lines_;
};

void logTo(LogLines& lines, tamzo::TamzoHost& host) {
  host.writeLog = [&lines](std::string_view line) { lines.add(line); };
  tamzo::isTamzoDebugEnabled = true;
}

void setState(tamzo::TamzoHost& host) {
  host.blockedAdCategories = [] { return tamzo::Text::literal("IAB7-39,IAB25-3"); };
  host.sessionId = [] { return tamzo::Text::literal("session-42"); };
}

void fixMacros(tamzo::TamzoHost& host) {
  host.now = [] { return std::chrono::system_clock::time_point(std::chrono::seconds(0)); };
  host.random = [](std::uint32_t bound) { return bound / 2; };
}

void useOwnTemplate(tamzo::TamzoHost& host) {
  host.vpaidWrapperTemplate = [] {
    return tamzo::Text::literal("<p>session [{{VAST_TAG}}] url {{IS_TAG_A_URL}}</p>");
  };
}

// For the whole process: every parse that begins from now on uses it. One member is changed in a
// copy.
void setForTheProcess(tamzo::TamzoHost host) {
  tamzo::TamzoHost::set(std::move(host));
  tamzo::TamzoHost changed = *tamzo::TamzoHost::get();
  changed.fetchLimits.totalSeconds = 8.0;
  tamzo::TamzoHost::set(std::move(changed));
}

// For one parse alone: two components of an app need not share a host.
std::shared_ptr<tamzo::TamzoVastAd> parseWith(const tamzo::TamzoHost& host,
                                              const tamzo::Text& response) {
  return tamzo::TamzoVastAd::initWithVast(response, host);
}

// What was set refers to objects of this program, so the defaults are put back before they go.
void takeHostBack() {
  tamzo::isTamzoDebugEnabled = false;
  tamzo::TamzoHost::set({});
}

const char* const kWrapper = R"(<VAST version="4.2"><Ad id="w"><Wrapper>
  <VASTAdTagURI>https://ads.example/next?t=[TIMESTAMP]&amp;s=[TAMZO_SESSION_ID]</VASTAdTagURI>
</Wrapper></Ad></VAST>)";

const char* const kGamblingAd = R"(<VAST version="4.2"><Ad><InLine>
  <Category authority="iabtechlab.com">IAB7-39</Category>
</InLine></Ad></VAST>)";

}  // namespace

int main() {
  const std::string next =
      "https://ads.example/next?t=1970-01-01T00%3A00%3A00.000%2B00%3A00&s=%5BTAMZO_SESSION_ID%5D";
  LogLines lines;
  tamzo::TamzoHost host = hostThatReads({{next, kGamblingAd}});
  logTo(lines, host);
  setState(host);
  fixMacros(host);
  useOwnTemplate(host);
  setForTheProcess(host);

  const auto blocked = tamzo::TamzoVastAd::initWithVast(kWrapper);
  expect(blocked->errorCode() == tamzo::kCategoryBlocked, "the Wrapper's ad was read and blocked");
  expect(lines.count() > 0, "the sink was given lines");

  const auto page = blocked->getVideoWAPView();
  expect(page.view().find("&s=session-42]") != std::string_view::npos, "the session is filled in");
  expect(page.view().find("url true") != std::string_view::npos, "the tag is a URL");

  const auto unread = parseWith(hostThatReads({}), kWrapper);
  expect(unread->errorCode() == tamzo::kEmptyContent, "a read that fails ends with 301");
  takeHostBack();
}
