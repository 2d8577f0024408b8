#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "explain/Explainer.h"
#include "explain/ExplanationJson.h"
#include "tests/support/Responses.h"
#include "tests/support/SdkFixture.h"

namespace tamzo::testing {

using Lines = std::vector<std::string>;
using nlohmann::ordered_json;

/// Parses with answers of its own in place of the network, and explains.
class ExplainTest : public SdkTest {
 protected:
  ExplainTest() {
    changeHost([this](TamzoHost& host) {
      host.fetch = [this](const FetchRequest& request) { return answer(request); };
    });
  }

  /// What is answered for that URL; any other answers 404.
  void serve(const std::string& url, FetchResult result) {
    result.finalUrl = result.finalUrl.empty() ? url : result.finalUrl;
    result.status = result.status == 0 ? 200 : result.status;
    result.bytes = result.body ? result.body->size() : 0;
    answers_[url] = std::move(result);
  }
  void serve(const std::string& url, const std::string& body) {
    FetchResult result;
    result.body = body;
    serve(url, std::move(result));
  }

  explain::Explanation explainResponse(const std::string& response) {
    explain::Explainer explainer;
    ParseOptions options;
    options.observer = &explainer;
    ad_ = TamzoVastAd::initWithVast(Text(response), options);
    return explainer.explain(*ad_);
  }

  ordered_json explainAsJson(const std::string& response) {
    return ordered_json::parse(explain::explanationAsJson(explainResponse(response)));
  }

  /// Each finding on a line: id, hop, place, details.
  Lines findings(const std::string& response) { return linesOf(explainResponse(response)); }

  static Lines linesOf(const explain::Explanation& explanation) {
    Lines lines;
    for (const explain::Finding& finding : explanation.findings) {
      std::string line(finding.id);
      line += " " + (finding.hop ? std::to_string(*finding.hop) : std::string("-"));
      line += finding.place ? " " + std::to_string(finding.place->line) + ":" +
                                  std::to_string(finding.place->column)
                            : "";
      for (const explain::Detail& detail : finding.details) {
        line += " " + std::string(detail.key) + "=" + detail.json;
      }
      lines.push_back(line);
    }
    return lines;
  }

  const TamzoVastAd& ad() const { return *ad_; }

 private:
  FetchResult answer(const FetchRequest& request) const {
    const auto found = answers_.find(std::string(request.url.view()));
    if (found != answers_.end()) {
      return found->second;
    }
    FetchResult result;
    result.failure = FetchFailure::status;
    result.status = 404;
    result.finalUrl = request.url.view();
    return result;
  }

  std::map<std::string, FetchResult> answers_;
  std::shared_ptr<TamzoVastAd> ad_;
};

}  // namespace tamzo::testing
