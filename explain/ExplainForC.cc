#include <new>
#include <string>
#include <string_view>

#include "capi/Boundary.h"
#include "capi/Objects.h"
#include "capi/Options.h"
#include "explain/Explainer.h"
#include "explain/ExplanationJson.h"
#include "tamzo/tamzo_vast_explain.h"
#include "tamzo/vast/TamzoVastAd.h"

namespace {

// The host's own observer is told too.
class Both final : public tamzo::ParseObserver {
 public:
  Both(tamzo::ParseObserver& first, tamzo::ParseObserver* second) noexcept
      : first_(first), second_(second) {}

  void onHop(const tamzo::Hop& hop) override {
    first_.onHop(hop);
    if (second_ != nullptr) {
      second_->onHop(hop);
    }
  }

 private:
  tamzo::ParseObserver& first_;
  tamzo::ParseObserver* second_;
};

std::string explained(std::string_view response, const tamzo_vast_options* given,
                      tamzo::JsonLayout layout) {
  tamzo::ParseOptions options = given == nullptr ? tamzo::ParseOptions() : given->forParse();
  tamzo::explain::Explainer explainer;
  Both observer(explainer, options.observer);
  options.observer = &observer;
  const auto ad = tamzo::TamzoVastAd::initWithVast(tamzo::Text(response), options);
  if (ad == nullptr) {
    throw std::bad_alloc();
  }
  return tamzo::explain::recordWithExplanation(*ad, explainer.explain(*ad), layout);
}

}  // namespace

tamzo_vast_status tamzo_vast_explain(const void* bytes, size_t length,
                                     const tamzo_vast_options* options, bool is_indented,
                                     tamzo_vast_string** json) {
  TAMZO_MAY_BE_NULL(options);
  return tamzo::capi::give(tamzo::capi::isUnreadable(bytes, length), json, [&] {
    const std::string_view response(length == 0 ? "" : static_cast<const char*>(bytes), length);
    const auto layout = is_indented ? tamzo::JsonLayout::indented : tamzo::JsonLayout::compact;
    *json = new tamzo_vast_string(explained(response, options, layout));
    return TAMZO_VAST_OK;
  });
}
