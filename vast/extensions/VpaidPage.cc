// The page that plays a JavaScript VPAID unit in a web view.

#include "tamzo/vast/TamzoVastAd.h"

#include <algorithm>
#include <exception>
#include <string>
#include <string_view>
#include <utility>

#include "base/WhiteSpace.h"
#include "sdk/HostInUse.h"
#include "tamzo/sdk/TamzoAssetsManager.h"
#include "tamzo/sdk/TamzoState.h"

namespace tamzo {
namespace {

// Values may hold placeholders of other values, and a template one again and again, so that a page
// can grow far beyond what it is made of. One that is longer than so many times all of that
// together is no page any more, nor is one of this length.
constexpr std::size_t kMostTimesInputs = 16;
constexpr std::size_t kMaxPageBytes = std::size_t{128} << 20U;

/// A text whose placeholders are filled one after another, until it is too long.
class PageText {
 public:
  PageText(std::string text, std::size_t mostBytes) noexcept
      : text_(std::move(text)), mostBytes_(mostBytes) {}

  void replaceAll(std::string_view what, std::string_view with) {
    if (isTooLong_) {
      return;
    }
    std::string out;
    std::string_view rest = text_;
    for (std::size_t at = rest.find(what); at != std::string_view::npos; at = rest.find(what)) {
      out += rest.substr(0, at);
      out += with;
      rest.remove_prefix(at + what.size());
      if (out.size() + rest.size() > mostBytes_) {
        isTooLong_ = true;
        return;
      }
    }
    text_ = std::move(out += rest);
  }

  bool isTooLong() const noexcept { return isTooLong_; }
  std::string take() noexcept { return std::move(text_); }

 private:
  std::string text_;
  std::size_t mostBytes_;
  bool isTooLong_ = false;
};

}  // namespace

Text TamzoVastAd::getVideoWAPView() { return getVideoWAPView(*TamzoHost::get()); }

Text TamzoVastAd::getVideoWAPView(const TamzoHost& host) {
  const HostScope scope(host);
  try {
    return fillVideoWAPView();
  } catch (const std::exception&) {
    return Text::literal("");
  }
}

Text TamzoVastAd::fillVideoWAPView() {
  if (!vastTagURI().hasCharacters()) {
    return Text::literal("");
  }
  const Text pageTemplate = TamzoAssetsManager::getVpaidWrapperData();
  if (!pageTemplate.hasCharacters()) {
    return Text::literal("");
  }
  const auto orElse = [](const Text& text, std::string_view fallback) {
    return text.hasCharacters() ? text.view() : fallback;
  };
  const bool isUrl = vastTagURI().view().starts_with("http");
  const Text session = TamzoState::getSessionId();
  const Text data = analyticsData();
  const Text key = analyticsKey();
  const std::size_t inputs = pageTemplate.view().size() + vastTagURI().view().size() +
                             session.view().size() + data.view().size() + key.view().size();
  const std::size_t most = std::min(kMostTimesInputs * inputs, kMaxPageBytes);

  PageText filledTag(std::string(vastTagURI().view()), most);
  filledTag.replaceAll("[TAMZO_SESSION_ID]", session);
  const std::string tag = isUrl ? filledTag.take() : removeNewlines(filledTag.take());
  // One after the other: what a value brings of a later placeholder is filled too.
  PageText page(std::string(pageTemplate.view()), most);
  page.replaceAll("{{IS_TAG_A_URL}}", isUrl ? "true" : "false");
  page.replaceAll("{{VAST_TAG}}", tag);
  page.replaceAll("{{MOAT_DATA}}", orElse(data, "{}"));
  page.replaceAll("{{MOAT_PARTNER_CODE}}", orElse(key, ""));
  if (filledTag.isTooLong() || page.isTooLong()) {
    return Text::literal("");
  }
  setVPaidHTML(Text(page.take()));
  return vPaidHTML();
}

}  // namespace tamzo
