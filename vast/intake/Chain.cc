#include "vast/intake/Chain.h"

#include <algorithm>
#include <utility>

#include "base/Utf8.h"
#include "net/FailedFetch.h"
#include "sdk/HostFetch.h"
#include "xml/XmlParser.h"

namespace tamzo {

TamzoVastAd::Chain::Chain(const Text& from, const ParseOptions& with)
    : response(from),
      options(with),
      ofProcess(with.host == nullptr ? TamzoHost::get() : nullptr),
      host(with.host == nullptr ? *ofProcess : *with.host),
      scope(host),
      deadline(
          Deadline::in(with.totalSeconds).orSooner(Deadline::in(host.fetchLimits.chainSeconds))) {}

void TamzoVastAd::Chain::startHop(HopSource from, const Text& vastTagURI) {
  ++number;
  source = from;
  tagOfHop = number == 1 ? Text() : tag;
  url = Text();
  document = from == HopSource::tag ? vastTagURI : from == HopSource::input ? response : Text();
  fetch.reset();
  parsed.reset();
  isToBeTold = true;
}

void TamzoVastAd::Chain::tell(const TamzoVastAd& record) {
  if (std::exchange(isToBeTold, false) && options.observer != nullptr) {
    options.observer->onHop({number, source, tagOfHop, url, fetch ? &*fetch : nullptr, document,
                             parsed.get(), record.errorCode(), record, exception});
  }
}

std::shared_ptr<DDXMLDocument> TamzoVastAd::Chain::read(const Text& xml) {
  XmlParser parser;
  if (number > 1) {
    const std::size_t most = host.fetchLimits.maxChainNodes;
    parser.setMaxNodes(most - std::min(nodes, most));
  }
  auto read = parser.parseDocument(xml);
  nodes += parser.nodes();
  return read;
}

FetchRequest TamzoVastAd::Chain::requestFor(const Text& escapedUrl) {
  FetchRequest request;
  request.url = escapedUrl;
  request.limits = host.fetchLimits;
  const std::size_t mostBytes = std::max(request.limits.maxChainBytes, request.limits.maxBodyBytes);
  request.limits.maxBodyBytes =
      std::min(request.limits.maxBodyBytes, mostBytes - std::min(bytes, mostBytes));
  request.deadline = deadline;
  request.cancellation = options.cancellation;
  request.options = FetchOptions(host.fetchOptions);
  request.hop = number;
  request.cookies = &cookies;
  return request;
}

void TamzoVastAd::Chain::fetchDocument(const Text& from, const Text& escapedUrl) {
  source = HopSource::url;
  url = from;
  document = Text();
  // So it stands where a host's reader throws.
  fetch = failedFetch(escapedUrl, FetchFailure::other);
  const FetchRequest request = requestFor(escapedUrl);
  fetch = fetchByHost(host, request);
  bytes += fetch->bytes;
  const bool isShortened = request.limits.maxBodyBytes < host.fetchLimits.maxBodyBytes;
  if (fetch->cause == FetchCause::bodySize && isShortened) {
    fetch->cause = FetchCause::chainSize;
  }
  if (!fetch->body) {
    return;
  }
  if (!isUtf8(*fetch->body)) {
    fetch->failure = FetchFailure::notUtf8;
    return;
  }
  document = Text(std::move(*fetch->body));
  fetch->body.reset();
}

}  // namespace tamzo
