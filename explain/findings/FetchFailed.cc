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

constexpr std::string_view kOwner = "Whoever runs that server: look why.";

constexpr std::string_view kLookAtProxy =
    "Correct --proxy, or look at the proxy and at what it allows.";

Words wordsForConnection(const FetchResult& fetch, const std::string& host) {
  switch (fetch.cause) {
    case FetchCause::publicAddresses:
      return {host + " has no public address, and --public-only refuses every other.",
              "Whoever made the tag: name a host of the public Internet. To ask this one all the "
              "same, leave --public-only out."};
    case FetchCause::proxy:
      return {"The proxy opens no way to " + host + ".", kLookAtProxy};
    default:
      return {host + " takes no connection.",
              "Whoever runs that server: is it up, and is the port right?"};
  }
}

Words wordsForName(const FetchResult& fetch, const std::string& host) {
  if (fetch.cause == FetchCause::proxy) {
    return {"There is no proxy of the name that was given, so that nobody could ask " + host + ".",
            "Correct --proxy, or what the environment says of a proxy."};
  }
  return {"There is no host named " + host + ", or no name server that knows it.",
          "Whoever made the tag: correct the host. If other names fail too, look at the network "
          "here."};
}

Words wordsForTls(const FetchResult& fetch, const std::string& host) {
  if (fetch.cause == FetchCause::caFile) {
    return {"No secure connection to " + host +
                " could be made: the certificates to trust cannot be used.",
            "Give --ca a file of certificates in PEM."};
  }
  return {"No secure connection to " + host + " could be made.",
          "Whoever runs that server: look at its certificate."};
}

Words wordsForTime(const FetchResult& fetch, const std::string& host) {
  const std::string passed = inSeconds(fetch.milliseconds.total);
  if (fetch.cause == FetchCause::chainTime && fetch.milliseconds.total <= 0.0) {
    return {host + " was not asked: no time for the chain was left.",
            "Try a longer --total-timeout, or call whoever runs the slowest server of the chain."};
  }
  if (fetch.cause == FetchCause::chainTime) {
    return {fmt::format("{} did not answer within {}, all that was left of the time for the chain.",
                        host, passed),
            "Try a longer --total-timeout, or call whoever runs the slowest server of the chain."};
  }
  if (fetch.cause == FetchCause::proxy) {
    return {fmt::format("The proxy opened no way to {} within {}.", host, passed), kLookAtProxy};
  }
  if (fetch.cause == FetchCause::connectTime) {
    return {fmt::format("{} took no connection within {}.", host, passed),
            "Whoever runs that server: is it up, and is the port right? Or try a longer "
            "--timeout."};
  }
  return {fmt::format("{} did not answer within {}.", host, passed),
          "Try a longer --timeout, or call whoever runs that server."};
}

Words wordsForSize(const FetchResult& fetch, const std::string& host) {
  switch (fetch.cause) {
    case FetchCause::headerSize:
      return {"The headers of the answer of " + host + " are larger than allowed.",
              "Whoever runs that server: send smaller headers."};
    case FetchCause::chainSize:
      return {"With the answer of " + host + " the chain is larger than allowed.",
              "Whoever made the tags: send smaller documents, or fewer of them."};
    default:
      return {"The answer of " + host + " is larger than allowed.",
              "Try a larger --max-body, or call whoever runs that server."};
  }
}

Words wordsForProtocol(const FetchResult& fetch, const std::string& host) {
  constexpr int kRedirectsFrom = 300;
  constexpr int kErrorsFrom = 400;
  if (fetch.cause == FetchCause::httpsStaysHttps) {
    return {host + " redirects from https to http, which is refused.",
            "Whoever runs that server: redirect to https."};
  }
  if (fetch.status >= kRedirectsFrom && fetch.status < kErrorsFrom) {
    return {host + " redirects to what is no URL of http or https.",
            "Whoever runs that server: redirect to a URL of http or https."};
  }
  if (fetch.milliseconds.firstByte > 0.0 || fetch.status != 0) {
    return {"The answer of " + host + " is no HTTP that can be read.", kOwner};
  }
  return {"What was asked of " + host + " is no http or https, or its answer is none.",
          "Whoever made the tag: write a URL of http or https."};
}

Words wordsForRest(const FetchResult& fetch, const std::string& host) {
  if (fetch.cause == FetchCause::options) {
    return {host + " was not asked: the options of the request cannot be sent.",
            "Correct the headers, the proxy or the certificates that were given."};
  }
  return {host + " could not be asked, or its answer could not be read.", kOwner};
}

Words wordsFor(const FetchResult& fetch, const std::string& host) {
  switch (fetch.failure) {
    case FetchFailure::dns:
      return wordsForName(fetch, host);
    case FetchFailure::connect:
      return wordsForConnection(fetch, host);
    case FetchFailure::tls:
      return wordsForTls(fetch, host);
    case FetchFailure::timeout:
      return wordsForTime(fetch, host);
    case FetchFailure::tooLarge:
      return wordsForSize(fetch, host);
    case FetchFailure::status:
      return {fmt::format("{} answered {}.", host, fetch.status), kOwner};
    case FetchFailure::redirects:
      return {host + " redirects from one address to the next without end.", kOwner};
    case FetchFailure::protocol:
      return wordsForProtocol(fetch, host);
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
      return wordsForRest(fetch, host);
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
