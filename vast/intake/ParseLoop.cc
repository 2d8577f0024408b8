// The entry, and the loop that follows Wrappers.

#include "tamzo/vast/TamzoVastAd.h"

#include <exception>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "base/Numbers.h"
#include "base/Utf8.h"
#include "base/WhiteSpace.h"
#include "sdk/HostInUse.h"
#include "tamzo/net/TamzoUrlReader.h"
#include "tamzo/sdk/TamzoLogger.h"

namespace tamzo {
namespace {

constexpr std::size_t kPrefixLength = 4;
constexpr std::int32_t kLastPassToGoOn = 5;
constexpr std::int32_t kWrapperLimitPass = 5;

enum class From { never, init, parse };

// Told apart from memory that the parser itself has not got, which is no failed read.
struct HostOutOfMemory : std::exception {
  const char* what() const noexcept override { return "the host's reader ran out of memory"; }
};

// Nothing without a URL, which no reader is asked for.
std::optional<std::string> readBody(const Text& url) {
  const HostInUse host;
  if (url.isNil()) {
    return std::nullopt;
  }
  if (!host->readUrl) {
    return TamzoUrlReader::read(url, host->fetchLimits);
  }
  try {
    return host->readUrl(url);
  } catch (const std::bad_alloc&) {
    throw HostOutOfMemory();
  }
}

// The first four characters equal "http"; throws for a text that has fewer than four.
bool isUrl(const Text& tag) {
  if (isShorterThan(tag, kPrefixLength)) {
    throw std::out_of_range("the tag has fewer than 4 characters");
  }
  return tag.view().starts_with("http");
}

}  // namespace

std::shared_ptr<TamzoVastAd> TamzoVastAd::initWithVast(const Text& vast) {
  return initWithVast(vast, *TamzoHost::get());
}

std::shared_ptr<TamzoVastAd> TamzoVastAd::initWithVast(const Text& vast, const TamzoHost& host) {
  const HostScope scope(host);
  std::shared_ptr<TamzoVastAd> ad;
  try {
    ad = std::make_shared<TamzoVastAd>();
    const Text& response = vast;
#define TAMZO_PROPERTY(type, name, setter, when, initial) \
  if constexpr (From::when == From::init) ad->setter(initial);
#include "vast/TamzoVastAdProperties.def"
#undef TAMZO_PROPERTY
    static_cast<void>(response);
    ad->parse(replaceWithPattern("xmlns", vast));
  } catch (const std::exception& exception) {
    // Memory ran out before the loop, whose guard answers for everything after.
    if (ad != nullptr) {
      ad->fail(exception);
    }
  }
  return ad;
}

void TamzoVastAd::parseVast(const Text& vast) { parseVast(vast, *TamzoHost::get()); }

void TamzoVastAd::parseVast(const Text& vast, const TamzoHost& host) {
  const HostScope scope(host);
  try {
    parse(vast);
  } catch (const std::exception& exception) {
    fail(exception);
  }
}

void TamzoVastAd::parse(const Text& vast) {
  // A copy: `vast` may be one of the properties that are reset.
  const Text response = vast;  // NOLINT(performance-unnecessary-copy-initialization)
#define TAMZO_PROPERTY(type, name, setter, when, initial) \
  if constexpr (From::when == From::parse) setter(initial);
#include "vast/TamzoVastAdProperties.def"
#undef TAMZO_PROPERTY
  try {
    followChain();
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

void TamzoVastAd::followChain() {
  std::int32_t count = 0;
  bool done = false;
  do {
    if (isImaEnabled()) {
      break;
    }
    ++count;
    const Text xml = isUrl(vastTagURI()) ? readTagURI() : vastTagURI();
    if (!xml.hasCharacters()) {
      TAMZO_LOG("empty vast string content!");
      setErrorCode(kEmptyContent);
      break;
    }
    const auto document = DDXMLDocument::initWithXMLString(xml, 0);
    if (document == nullptr) {
      TAMZO_LOG("XML is not VAST");
      setErrorCode(kNotXml);
      break;
    }
    TAMZO_LOG("VAST element is present");
    const Text version = getVastVersion(*document);
    setVpaidVastVersion(version);
    if (!version.hasCharacters()) {
      TAMZO_LOG("VAST version is absent");
      setErrorCode(kBadVersion);
      break;
    }
    TAMZO_LOG("VAST version is %@", version);
    done = process(count, integerValue(version), *document);
  } while (count <= kLastPassToGoOn && !done && errorCode() == kNoError);

  // Exactly the fifth pass, and no other: a chain that ends there well counts as too long, one
  // that ran all six passes does not.
  if (count == kWrapperLimitPass && errorCode() == kNoError) {
    setErrorCode(kWrapperLimit);
  }
}

// The body behind the URL in `vastTagURI`, which is trimmed on the way; nil when it cannot be
// fetched or is not UTF-8, "" when a host's reader threw.
Text TamzoVastAd::readTagURI() {
  Text xml = Text::literal("");
  try {
    if (isTamzoDebugEnabled) {
      TamzoLogger::printLog(TamzoLogger::format("vastTagURI = %@", {vastTagURI()}));
    }
    setVastTagURI(vastTagURI().part(trimWhiteSpace(vastTagURI())));
    const Text url = TamzoUrlReader::urlFromText(vastTagURI());
    if (isTamzoDebugEnabled) {
      TamzoLogger::printLog(TamzoLogger::format("url formed from vastTagURI = %@", {url}));
    }
    auto body = readBody(url);
    xml = body && isUtf8(*body) ? Text(std::move(*body)) : Text();
  } catch (const std::bad_alloc&) {
    throw;  // no failure of the fetch
  } catch (const std::exception& exception) {
    TAMZO_LOG("error: %@", Text(exception.what()));
  }
  return xml;
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
