#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "sdk/HostInUse.h"
#include "tamzo/net/Deadline.h"
#include "tamzo/net/Fetch.h"
#include "tamzo/vast/ParseOptions.h"
#include "tamzo/vast/TamzoVastAd.h"

namespace tamzo {

/// What one parse goes by, and the document that it is at. Its host is the one in use while it
/// lives.
struct TamzoVastAd::Chain {
  /// `from` is the response before any clean-up.
  Chain(const Text& from, const ParseOptions& with);
  Chain(const Chain&) = delete;
  Chain& operator=(const Chain&) = delete;

  /// Begins with the next document.
  void startHop(HopSource source, const Text& vastTagURI);
  /// Tells the observer of the document that was begun last, once.
  void tell(const TamzoVastAd& record);

  /// Fetches the document begun last, within what the chain has left. `document` is its text then;
  /// nil when it failed.
  void fetchDocument(const Text& from, const Text& escapedUrl);

  /// The document of a text, within what the chain has left; null when it is none.
  std::shared_ptr<DDXMLDocument> read(const Text& xml);

  const Text& response;
  const ParseOptions& options;
  std::shared_ptr<const TamzoHost> ofProcess;
  const TamzoHost& host;
  HostScope scope;
  Deadline deadline;
  FetchCookies cookies;
  /// Of all bodies so far.
  std::size_t bytes = 0;
  /// Of all documents so far.
  std::size_t nodes = 0;
  /// As the last Wrapper has it, macros unfilled.
  Text tag;

  /// The document begun last, counted from 1, as the observer is told of it.
  std::int32_t number = 0;
  HopSource source = HopSource::input;
  Text tagOfHop;
  Text url;
  Text document;
  std::optional<FetchResult> fetch;
  std::shared_ptr<DDXMLDocument> parsed;
  bool isToBeTold = false;
  /// What ended the parse; nil where nothing was thrown.
  Text exception;

 private:
  FetchRequest requestFor(const Text& escapedUrl);
};

}  // namespace tamzo
