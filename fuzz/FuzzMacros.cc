// Macros in a URL against a version that tries every name at every place. The input is lines: one
// for each property that fills a macro, one for the blocked categories, one whose length and first
// bytes are the moment and the random number, and the rest is the text.

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "base/WhiteSpace.h"
#include "fuzz/Fuzzing.h"
#include "tamzo/vast/TamzoVastAd.h"

using namespace tamzo;
using namespace tamzo::fuzz;

namespace {

using Setter = void (TamzoVastAd::*)(Text);
struct Macro {
  const char* name;
  Setter setter;
  bool isList;
};
constexpr std::array kFromRecord = {
    Macro{"SERVERUA", &TamzoVastAd::setServerUA, false},
    Macro{"CLIENTUA", &TamzoVastAd::setClientUA, false},
    Macro{"DEVICEIP", &TamzoVastAd::setDeviceIP, false},
    Macro{"OMIDPARTNER", &TamzoVastAd::setOmidPartner, false},
    Macro{"PLAYERCAPABILITIES", &TamzoVastAd::setPlayerCapability, true},
    Macro{"INVENTORYSTATE", &TamzoVastAd::setInventoryState, true},
    Macro{"GDPRCONSENT", &TamzoVastAd::setGDPRConsentInfo, false},
    Macro{"VASTVERSIONS", &TamzoVastAd::setVastVersions, true},
    Macro{"APIFRAMEWORKS", &TamzoVastAd::setApiFrameworks, true},
    Macro{"VERIFICATIONVENDORS", &TamzoVastAd::setVerificationVendors, true},
    Macro{"EXTENSIONS", &TamzoVastAd::setSupportedExtension, true},
    Macro{"MEDIAMIME", &TamzoVastAd::setMimeType, true},
    Macro{"CLICKTYPE", &TamzoVastAd::setClickType, false},
};

constexpr std::array kUnknown = {
    "ADCATEGORIES",     "ADCOUNT",       "ADPLAYHEAD",       "ADSERVINGID",   "ADTYPE",
    "APPBUNDLE",        "ASSETURI",      "BREAKMAXADLENGTH", "BREAKMAXADS",   "BREAKMAXDURATION",
    "BREAKMINADLENGTH", "BREAKPOSITION", "CLICKPOS",         "CONTENTCAT",    "CONTENTID",
    "CONTENTPLAYHEAD",  "CONTENTURI",    "DEVICEUA",         "DOMAIN",        "DSAPARAMS",
    "DSAPUBRENDER",     "DSAREQUIRED",   "GPPSECTIONID",     "GPPSTRING",     "IFA",
    "IFATYPE",          "LATLONG",       "LIMITADTRACKING",  "MEDIAPLAYHEAD", "PLACEMENTTYPE",
    "PLAYBACKMETHODS",  "PLAYERSIZE",    "PLAYERSTATE",      "PODSEQUENCE",   "STOREID",
    "STOREURL",         "TRANSACTIONID", "UNIVERSALADID"};

std::string encode(std::string_view text) {
  std::string out;
  for (const char c : text) {
    const std::string_view kept =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_.!~*'()";
    char escape[4] = {c, 0, 0, 0};
    if (kept.find(c) == std::string_view::npos) {
      std::snprintf(escape, sizeof escape, "%%%02X",
                    static_cast<unsigned>(static_cast<std::uint8_t>(c)));
    }
    out += escape;
  }
  return out;
}

std::string single(std::string_view value) { return value.empty() ? "-1" : encode(value); }

std::string list(std::string_view value) {
  std::string out;
  while (!value.empty()) {
    const std::string piece = encode(trimWhiteSpace(takeUpTo(value, ',')));
    out += (out.empty() || piece.empty() ? "" : ",") + piece;
  }
  return out.empty() ? "-1" : out;
}

// Of ISO 8601, with milliseconds, by the calendar of <chrono>.
std::string timestamp(std::chrono::system_clock::time_point now) {
  using namespace std::chrono;
  // In milliseconds from the start: a day before the earliest moment is out of range in finer
  // units.
  const auto moment = floor<milliseconds>(now);
  const auto day = floor<days>(moment);
  const year_month_day date(day);
  const hh_mm_ss time(moment - day);
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d.%03d+00:00",
                static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                static_cast<unsigned>(date.day()), static_cast<int>(time.hours().count()),
                static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()),
                static_cast<int>(time.subseconds().count()));
  return encode(text);
}

std::string replaceSlowly(std::string_view text, const std::map<std::string, std::string>& values) {
  std::string out;
  while (!text.empty()) {
    std::size_t taken = 1;
    std::string put(1, text.front());
    for (const auto& [name, value] : values) {
      if (text.front() == '[' && text.starts_with("[" + name + "]")) {
        taken = name.size() + 2;
        put = value;
      }
    }
    out += put;
    text.remove_prefix(taken);
  }
  return out;
}

template <typename Number>
Number numberFrom(std::string_view bytes) {
  Number number = 0;
  std::memcpy(&number, bytes.data(), std::min(bytes.size(), sizeof number));
  return number;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view rest = asText(data, size);
  TamzoVastAd ad;
  std::map<std::string, std::string> values;
  bool hasConsent = false;
  for (const Macro& macro : kFromRecord) {
    const std::string_view line = takeUpTo(rest, '\n');
    (ad.*macro.setter)(Text(line));
    values[macro.name] = macro.isList ? list(line) : single(line);
    hasConsent = hasConsent || (std::string_view(macro.name) == "GDPRCONSENT" && !line.empty());
  }
  const Text blocked(takeUpTo(rest, '\n'));
  testing::HostState state;
  state.blockedAdCategories = [blocked] { return blocked; };
  testing::useState(std::move(state));
  values["BLOCKEDADCATEGORIES"] = list(blocked);

  const std::string_view numbers = takeUpTo(rest, '\n');
  ad.setIsCoppaEnabled(numbers.size() % 2 == 1);
  values["REGULATIONS"] =
      ad.isCoppaEnabled() ? (hasConsent ? "coppa,gdpr" : "coppa") : (hasConsent ? "gdpr" : "-1");
  const auto drawn = numberFrom<std::uint32_t>(numbers);
  // Nanoseconds whatever the clock counts, so that every library gets the same 585 years.
  const std::chrono::system_clock::time_point now{
      std::chrono::duration_cast<std::chrono::system_clock::duration>(
          std::chrono::nanoseconds(numberFrom<std::int64_t>(numbers)))};
  testing::MacroHooks hooks;
  hooks.now = [now] { return now; };
  hooks.random = [drawn](std::uint32_t bound) { return drawn % bound; };
  testing::fillMacrosWith(std::move(hooks));
  values["CACHEBUSTING"] = std::to_string(10'000'000U + drawn % 90'000'000U);
  values["TIMESTAMP"] = timestamp(now);
  values["SERVERSIDE"] = "0";
  values["PAGEURL"] = "0";
  for (const char* name : kUnknown) {
    values[name] = "-1";
  }

  const Text text(rest);
  const Text replaced = TamzoMacroReplacementUtil::replaceVASTMacros(text, ad);
  requireEqual(replaced, replaceSlowly(rest, values), "macro replacement");
  require(!replaced.isNil(), "a text became nil");

  // A URL made of any text may be fetched: it holds nothing that would have to be encoded.
  const Text url = TamzoUrlReader::urlFromText(replaced);
  require(url.isNil() == !replaced.hasCharacters(), "no URL from a text");
  for (const char c : url.view()) {
    require(c > ' ' && c < '\x7F', "a URL holds a character that needs encoding");
  }
  requireEqual(TamzoUrlReader::urlFromText(url), url, "a URL is encoded twice");
  return 0;
}
