#include <fmt/format.h>

#include "explain/Rules.h"
#include "explain/Words.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {
namespace {

struct Words {
  std::string message;
  std::string_view advice;
};

Words wordsFor(const FetchResult& fetch, const std::string& host) {
  constexpr std::string_view kOwner = "Whoever runs that server: look why.";
  switch (fetch.failure) {
    case FetchFailure::dns:
      return {"There is no host named " + host + ", or no name server that knows it.",
              "Whoever made the tag: correct the host. If other names fail too, look at the "
              "network here."};
    case FetchFailure::connect:
      return {host + " takes no connection.",
              "Whoever runs that server: is it up, and is the "
              "port right?"};
    case FetchFailure::tls:
      return {"No secure connection to " + host + " could be made.",
              "Whoever runs that server: look at its certificate."};
    case FetchFailure::timeout:
      return {
          fmt::format("{} did not answer within {}.", host, inSeconds(fetch.milliseconds.total)),
          "Try a longer --timeout, or call whoever runs that server."};
    case FetchFailure::tooLarge:
      return {"The answer of " + host + " is larger than allowed.",
              "Try a larger --max-body, or call whoever runs that server."};
    case FetchFailure::status:
      return {fmt::format("{} answered {}.", host, fetch.status), kOwner};
    case FetchFailure::redirects:
      return {host + " redirects from one address to the next without end.", kOwner};
    case FetchFailure::protocol:
      return {"What was asked of " + host + " is no http or https, or its answer is none.",
              "Whoever made the tag: write a URL of http or https."};
    case FetchFailure::cutOff:
      return {host + " ended the connection before its answer was whole.", kOwner};
    case FetchFailure::notUtf8:
      return {"The answer of " + host + " is not UTF-8 text.",
              "Whoever runs that server: send UTF-8."};
    case FetchFailure::empty:
      return {fmt::format("{} answered {} with an empty body.", host, fetch.status),
              "Whoever runs that server: answer with a VAST document, also when there is no ad."};
    case FetchFailure::cancelled:
      return {"Asking " + host + " was cancelled.", "Nobody needs to change anything."};
    default:
      return {host + " could not be asked, or its answer could not be read.", kOwner};
  }
}

}  // namespace

void findFetchFailed(const Chain& chain, Findings& findings) {
  const SeenHop& hop = chain.last();
  if (chain.errorCode() != kEmptyContent) {
    return;
  }
  const FetchResult fetch = hop.fetch.value_or(FetchResult());
  const std::string url = fetch.finalUrl.empty() ? std::string(hop.url.view()) : fetch.finalUrl;
  const std::string_view host = hostOf(url);
  const bool hasFailed = fetch.failure != FetchFailure::none;
  Words words = wordsFor(fetch, hostInWords(url));
  findings.add(hop.number)
      .say(std::move(words.message), words.advice)
      .with("failure", fetchFailureName(hasFailed ? fetch.failure : FetchFailure::other))
      .withJson("status", fetch.status == 0 ? "null" : std::to_string(fetch.status))
      .with("host", host.empty() ? Text() : Text(host));
}

}  // namespace tamzo::explain
