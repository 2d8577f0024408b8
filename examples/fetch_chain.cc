// How an app has a say in what a chain of Wrappers fetches: how requests are made, how long all of
// them may take, how they are stopped, and what became of each.

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "expect.h"
#include "tamzo/net/Cancellation.h"
#include "tamzo/net/Fetch.h"
#include "tamzo/sdk/TamzoHost.h"
#include "tamzo/vast/ParseOptions.h"
#include "tamzo/vast/TamzoVastAd.h"

namespace {

void setRequests(tamzo::TamzoHost& host, const std::string& userAgent) {
  host.fetchOptions.userAgent = userAgent;  // the app's own, never from a response
  host.fetchOptions.headers.push_back({"X-App-Key", "42", {"ads.example"}});
  host.fetchOptions.cookies = true;
  host.fetchOptions.publicAddressesOnly = true;
  host.fetchLimits.totalSeconds = 5.0;
}

// What a user waits for: parsed on a thread of its own, and given up when the user goes on.
class AdLoad {
 public:
  AdLoad(std::string response, tamzo::TamzoHost host)
      : host_(std::move(host)), thread_([this, text = std::move(response)] {
          tamzo::ParseOptions options;
          options.host = &host_;
          options.totalSeconds = 8.0;
          options.cancellation = stop_;
          ad_ = tamzo::TamzoVastAd::initWithVast(text, options);
        }) {}

  // Takes no time: every wait of the network ends at once.
  void giveUp() const { stop_.cancel(); }

  std::shared_ptr<tamzo::TamzoVastAd> wait() {
    thread_.join();
    return ad_;
  }

 private:
  tamzo::TamzoHost host_;
  tamzo::Cancellation stop_;
  std::shared_ptr<tamzo::TamzoVastAd> ad_;
  std::thread thread_;
};

// One line for each document of the chain.
class HopLines : public tamzo::ParseObserver {
 public:
  void onHop(const tamzo::Hop& hop) override {
    std::string line = std::to_string(hop.number);
    if (hop.fetch != nullptr) {
      line += " " + hop.fetch->finalUrl;
      line += hop.fetch->failure == tamzo::FetchFailure::none
                  ? " " + std::to_string(hop.fetch->bytes) + " bytes"
                  : " failed: " + std::string(tamzo::fetchFailureName(hop.fetch->failure));
    }
    lines.push_back(std::move(line));
  }

  std::vector<std::string> lines;
};

// A reader of the app's own that knows when to stop: `ask` stands in for the platform's client.
template <typename Client>
tamzo::TamzoHost hostThatFetches(Client& client) {
  tamzo::TamzoHost host;
  host.fetch = [&client](const tamzo::FetchRequest& request) {
    const tamzo::Cancellation::OnCancel stop(request.cancellation, [&client] { client.stop(); });
    tamzo::FetchResult result;
    result.finalUrl = request.url.view();
    result.body = client.get(result.finalUrl, request.deadline.secondsLeft());
    result.bytes = result.body ? result.body->size() : 0;
    result.failure = result.body ? tamzo::FetchFailure::none : tamzo::FetchFailure::other;
    return result;
  };
  return host;
}

struct OneAd {
  std::optional<std::string> get(const std::string& url, double /*seconds*/) const {
    return url == "https://ads.example/next" ? std::optional(body) : std::nullopt;
  }
  void stop() {}

  std::string body = "<VAST version='4.2'><Ad><InLine/></Ad></VAST>";
};

const char* const kWrapper = R"(<VAST version="4.2"><Ad id="w"><Wrapper>
  <VASTAdTagURI>https://ads.example/next</VASTAdTagURI>
</Wrapper></Ad></VAST>)";

}  // namespace

int main() {
  OneAd client;
  HopLines observer;
  tamzo::TamzoHost host = hostThatFetches(client);
  setRequests(host, "Player/1");
  expect(whyRefused(host.fetchOptions).empty(), "the options can be sent");

  tamzo::ParseOptions options;
  options.host = &host;
  options.observer = &observer;
  tamzo::TamzoVastAd::initWithVast(kWrapper, options);
  expect(observer.lines == std::vector<std::string>{"1", "2 https://ads.example/next 45 bytes"},
         "each hop is told");

  AdLoad load(kWrapper, host);
  expect(load.wait()->errorCode() == tamzo::kNoUsableLinear, "the chain was followed");
  options.cancellation = tamzo::Cancellation();
  options.cancellation.cancel();
  const auto stopped = tamzo::TamzoVastAd::initWithVast(kWrapper, options);
  expect(stopped->errorCode() == tamzo::kEmptyContent, "what is cancelled has failed");
  expect(stopped->adID() == "w", "and what was read stays");
  AdLoad late(kWrapper, host);
  late.giveUp();
  late.wait();
}
