// The entry, and the loop that follows Wrappers.

#include "tamzo/vast/TamzoVastAd.h"

#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include "base/Numbers.h"
#include "base/Utf8.h"
#include "base/WhiteSpace.h"
#include "tamzo/net/TamzoUrlReader.h"
#include "tamzo/sdk/TamzoLogger.h"
#include "vast/intake/Chain.h"

namespace tamzo {
namespace {

constexpr std::size_t kPrefixLength = 4;
constexpr std::int32_t kLastPassToGoOn = 5;
constexpr std::int32_t kWrapperLimitPass = 5;

enum class From { never, init, parse };

// The first four characters equal "http"; throws for a text that has fewer than four.
bool isUrl(const Text& tag) {
  if (isShorterThan(tag, kPrefixLength)) {
    throw std::out_of_range("the tag has fewer than 4 characters");
  }
  return tag.view().starts_with("http");
}

// Puts a value in place, and what was there back in the end.
template <typename T>
class Restored {
 public:
  Restored(T& place, T value) : place_(place), before_(std::exchange(place, value)) {}
  ~Restored() { place_ = before_; }
  Restored(const Restored&) = delete;
  Restored& operator=(const Restored&) = delete;

 private:
  T& place_;
  T before_;
};

ParseOptions optionsOf(const TamzoHost& host) noexcept {
  ParseOptions options;
  options.host = &host;
  return options;
}

}  // namespace

std::shared_ptr<TamzoVastAd> TamzoVastAd::initWithVast(const Text& vast) {
  return initWithVast(vast, ParseOptions());
}

std::shared_ptr<TamzoVastAd> TamzoVastAd::initWithVast(const Text& vast, const TamzoHost& host) {
  return initWithVast(vast, optionsOf(host));
}

std::shared_ptr<TamzoVastAd> TamzoVastAd::initWithVast(const Text& vast,
                                                       const ParseOptions& options) {
  Chain chain(vast, options);
  std::shared_ptr<TamzoVastAd> ad;
  try {
    ad = std::make_shared<TamzoVastAd>();
    const Text& response = vast;
#define TAMZO_PROPERTY(type, name, setter, when, initial) \
  if constexpr (From::when == From::init) ad->setter(initial);
#include "vast/TamzoVastAdProperties.def"
#undef TAMZO_PROPERTY
    static_cast<void>(response);
    ad->parse(replaceWithPattern("xmlns", vast), chain);
  } catch (const std::exception& exception) {
    // Memory ran out before the loop, whose guard answers for everything after.
    if (ad != nullptr) {
      ad->fail(exception);
    }
  }
  return ad;
}

void TamzoVastAd::parseVast(const Text& vast) { parseVast(vast, ParseOptions()); }

void TamzoVastAd::parseVast(const Text& vast, const TamzoHost& host) {
  parseVast(vast, optionsOf(host));
}

void TamzoVastAd::parseVast(const Text& vast, const ParseOptions& options) {
  // A copy: `vast` may be one of the properties that are reset.
  const Text response = vast;  // NOLINT(performance-unnecessary-copy-initialization)
  Chain chain(response, options);
  try {
    parse(response, chain);
  } catch (const std::exception& exception) {
    fail(exception);
  }
}

void TamzoVastAd::parse(const Text& response, Chain& chain) {
#define TAMZO_PROPERTY(type, name, setter, when, initial) \
  if constexpr (From::when == From::parse) setter(initial);
#include "vast/TamzoVastAdProperties.def"
#undef TAMZO_PROPERTY
  const Restored<Chain*> outer(chain_, &chain);
  try {
    followChain(chain);
  } catch (const std::exception& exception) {
    fail(exception);
    chain.exception = Text(exception.what());
  }
  try {
    chain.tell(*this);
  } catch (const std::exception& exception) {
    fail(exception);
  }
}

// Logging comes last and may itself fail: the code stands whatever becomes of the line.
void TamzoVastAd::fail(const std::exception& exception) {
  setErrorCode(kException);
  try {
    TAMZO_LOG("%@", Text(std::string(exception.what()) + "\n" + TamzoLogger::callStackSymbols()));
  } catch (const std::exception&) {
    return;
  }
}

void TamzoVastAd::followChain(Chain& chain) {
  bool done = false;
  do {
    if (isImaEnabled()) {
      break;
    }
    const bool isFetched = startHop(chain);
    done = readDocument(isFetched ? readTagURI(chain) : vastTagURI(), chain);
  } while (chain.number <= kLastPassToGoOn && !done && errorCode() == kNoError);

  // Exactly the fifth pass, and no other: a chain that ends there well counts as too long, one
  // that ran all six passes does not.
  if (chain.number == kWrapperLimitPass && errorCode() == kNoError) {
    setErrorCode(kWrapperLimit);
  }
}

// True when the next document is to be fetched. A tag that is too short, for which this throws, is
// no document of the chain; a response is one whatever it holds.
bool TamzoVastAd::startHop(Chain& chain) {
  const bool isResponse = chain.number == 0;
  if (isResponse) {
    chain.startHop(HopSource::input, vastTagURI());
  }
  const bool isFetched = isUrl(vastTagURI());
  if (!isResponse) {
    chain.tell(*this);
    chain.startHop(isFetched ? HopSource::url : HopSource::tag, vastTagURI());
  }
  return isFetched;
}

bool TamzoVastAd::readDocument(const Text& xml, Chain& chain) {
  if (!xml.hasCharacters()) {
    TAMZO_LOG("empty vast string content!");
    setErrorCode(kEmptyContent);
    return true;
  }
  chain.parsed = chain.read(xml);
  if (chain.parsed == nullptr) {
    TAMZO_LOG("XML is not VAST");
    setErrorCode(kNotXml);
    return true;
  }
  const auto document =
      chain.options.observer == nullptr ? std::exchange(chain.parsed, nullptr) : chain.parsed;
  TAMZO_LOG("VAST element is present");
  const Text version = getVastVersion(*document);
  setVpaidVastVersion(version);
  if (!version.hasCharacters()) {
    TAMZO_LOG("VAST version is absent");
    setErrorCode(kBadVersion);
    return true;
  }
  TAMZO_LOG("VAST version is %@", version);
  return process(chain.number, integerValue(version), *document);
}

// The body behind the URL in `vastTagURI`, which is trimmed on the way; nil when it cannot be
// fetched or is not UTF-8, "" when a host's reader threw.
Text TamzoVastAd::readTagURI(Chain& chain) {
  try {
    if (isTamzoDebugEnabled) {
      TamzoLogger::printLog(TamzoLogger::format("vastTagURI = %@", {vastTagURI()}));
    }
    setVastTagURI(vastTagURI().part(trimWhiteSpace(vastTagURI())));
    const Text url = TamzoUrlReader::urlFromText(vastTagURI());
    if (isTamzoDebugEnabled) {
      TamzoLogger::printLog(TamzoLogger::format("url formed from vastTagURI = %@", {url}));
    }
    chain.fetchDocument(vastTagURI(), url);
    return chain.document;
  } catch (const std::bad_alloc&) {
    throw;  // no failure of the fetch
  } catch (const std::exception& exception) {
    TAMZO_LOG("error: %@", Text(exception.what()));
    return Text::literal("");
  }
}

// As it stands in the Wrapper, before macros are filled.
void TamzoVastAd::noteTag() {
  if (chain_ != nullptr) {
    chain_->tag = vastTagURI();
  }
}

bool TamzoVastAd::process(std::int32_t pass, std::int32_t version, const DDXMLDocument& document) {
  switch (version) {
    case 2:
      return processVASTVersion2(pass, document);
    case 3:
      return processVASTVersion3(pass, document);
    case 4:
      return processVASTVersion4(pass, document);
    default:
      TAMZO_LOG("VAST version is incompatible");
      setErrorCode(kBadVersion);
      return true;
  }
}

}  // namespace tamzo
