#pragma once

#include <exception>
#include <vector>

#include "explain/Explanation.h"
#include "explain/SeenHop.h"
#include "explain/TrackerTally.h"
#include "tamzo/vast/ParseOptions.h"
#include "tamzo/vast/TamzoVastAd.h"

namespace tamzo::explain {

/// Watches one parse and says afterwards why its response did or did not become an ad. Changes
/// nothing of the record, and lets no failure of its own reach the parse.
///
///     tamzo::explain::Explainer explainer;
///     tamzo::ParseOptions options;
///     options.observer = &explainer;
///     const auto ad = tamzo::TamzoVastAd::initWithVast(response, options);
///     const auto explanation = explainer.explain(*ad);
///
/// Of one parse and one thread.
class Explainer final : public ParseObserver {
 public:
  void onHop(const Hop& hop) override;

  /// Of the record that the parse ended with. Called once. Throws std::bad_alloc, and what a hook
  /// of the host threw while it watched, where that was no std::exception.
  Explanation explain(const TamzoVastAd& ad);

 private:
  void note(const Hop& hop);

  std::vector<SeenHop> hops_;
  TrackerTally trackers_;
  std::size_t companions_ = 0;
  std::size_t verifications_ = 0;
  Text exception_;
  std::exception_ptr failure_;
};

}  // namespace tamzo::explain
