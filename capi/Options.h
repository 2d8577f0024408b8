#pragma once

#include <limits>
#include <memory>
#include <string>

#include "capi/Handle.h"
#include "tamzo/net/Cancellation.h"
#include "tamzo/tamzo_vast.h"
#include "tamzo/vast/ParseOptions.h"

struct tamzo_vast_cancellation : tamzo::capi::Handle {
  tamzo::Cancellation value;
};

struct tamzo_vast_options : tamzo::capi::Handle {
  tamzo::TamzoHost host;
  double totalSeconds = std::numeric_limits<double>::infinity();
  tamzo::Cancellation cancellation = tamzo::Cancellation::never();
  std::shared_ptr<tamzo::ParseObserver> observer;

  /// Points into these options.
  tamzo::ParseOptions forParse() const {
    return {&host, totalSeconds, cancellation, observer.get()};
  }
};
