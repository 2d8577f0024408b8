#include "tamzo/sdk/TamzoMacroReplacementUtil.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "base/Ascii.h"
#include "base/PercentEncoding.h"
#include "base/WhiteSpace.h"
#include "sdk/HostInUse.h"
#include "tamzo/sdk/TamzoState.h"

namespace tamzo {
namespace {

// What all macros of one text may stand for together: an ad server chooses both the values and how
// often they are asked for.
constexpr std::size_t kMaxFilledBytes = std::size_t{1} << 20U;

// IAB VAST: the value of a macro that would be shared if it were known.
constexpr std::string_view kUnknown = "-1";

std::string encodeUriComponent(std::string_view text) {
  constexpr std::string_view kKept = "-_.!~*'()";
  std::string encoded;
  encoded.reserve(text.size());
  for (const char c : text) {
    if (isAsciiAlphanumeric(c) || kKept.find(c) != std::string_view::npos) {
      encoded += c;
    } else {
      appendPercentEncoded(encoded, c);
    }
  }
  return encoded;
}

std::string single(const Text& value) {
  return value.hasCharacters() ? encodeUriComponent(value) : std::string(kUnknown);
}

// Each piece is encoded by itself; the commas between them stay bare.
std::string listOf(const Text& value) {
  std::string joined;
  std::string_view rest = value;
  while (!rest.empty()) {
    const std::size_t comma = rest.find(',');
    const std::string_view piece = trimWhiteSpace(rest.substr(0, comma));
    if (!piece.empty()) {
      joined += joined.empty() ? "" : ",";
      joined += encodeUriComponent(piece);
    }
    rest = comma == std::string_view::npos ? std::string_view() : rest.substr(comma + 1);
  }
  return joined.empty() ? std::string(kUnknown) : joined;
}

std::string regulations(const MacroValues& ad) {
  std::string names = ad.isCoppaEnabled() ? "coppa" : "";
  if (ad.GDPRConsentInfo().hasCharacters()) {
    names += names.empty() ? "gdpr" : ",gdpr";
  }
  return listOf(names);
}

std::string timestamp(const HostInUse& host) {
  using std::chrono::milliseconds;
  const auto now = host->now ? host->now() : std::chrono::system_clock::now();
  const auto sinceEpoch = std::chrono::floor<milliseconds>(now.time_since_epoch()).count();
  const auto millis = static_cast<int>(((sinceEpoch % 1000) + 1000) % 1000);
  const auto seconds = static_cast<std::time_t>((sinceEpoch - millis) / 1000);
  std::tm utc{};
  gmtime_r(&seconds, &utc);
  std::array<char, 64> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &utc);
  std::array<char, 16> fraction{};
  std::snprintf(fraction.data(), fraction.size(), ".%03d+00:00", millis);
  return encodeUriComponent(std::string(text.data()) + fraction.data());
}

// Eight digits.
std::string cacheBuster(const HostInUse& host) {
  constexpr std::uint32_t kLeast = 10'000'000;
  constexpr std::uint32_t kCount = 90'000'000;
  if (host->random) {
    return std::to_string(kLeast + host->random(kCount) % kCount);
  }
  thread_local std::mt19937 engine{std::random_device{}()};
  return std::to_string(kLeast +
                        std::uniform_int_distribution<std::uint32_t>(0, kCount - 1)(engine));
}

using Fill = std::string (*)(const MacroValues&, const HostInUse&);

template <const Text& (MacroValues::*property)() const>
std::string fillSingle(const MacroValues& ad, const HostInUse&) {
  return single((ad.*property)());
}

template <const Text& (MacroValues::*property)() const>
std::string fillList(const MacroValues& ad, const HostInUse&) {
  return listOf((ad.*property)());
}

std::string fillZero(const MacroValues&, const HostInUse&) { return "0"; }

const std::unordered_map<std::string_view, Fill>& macros() {
  // Never destroyed: a thread may still parse while the process ends.
  static const auto& table = *new std::unordered_map<std::string_view, Fill>{
      // Filled always.
      {"CACHEBUSTING", [](const MacroValues&, const HostInUse& host) { return cacheBuster(host); }},
      {"TIMESTAMP", [](const MacroValues&, const HostInUse& host) { return timestamp(host); }},
      {"SERVERSIDE", fillZero},  // the client fires
      {"PAGEURL", fillZero},     // an app has no page
      // Filled from the record.
      {"SERVERUA", fillSingle<&MacroValues::serverUA>},
      {"CLIENTUA", fillSingle<&MacroValues::clientUA>},
      {"DEVICEIP", fillSingle<&MacroValues::deviceIP>},
      {"OMIDPARTNER", fillSingle<&MacroValues::omidPartner>},
      {"PLAYERCAPABILITIES", fillList<&MacroValues::playerCapability>},
      {"INVENTORYSTATE", fillList<&MacroValues::inventoryState>},
      {"GDPRCONSENT", fillSingle<&MacroValues::GDPRConsentInfo>},
      {"VASTVERSIONS", fillList<&MacroValues::vastVersions>},
      {"APIFRAMEWORKS", fillList<&MacroValues::apiFrameworks>},
      {"VERIFICATIONVENDORS", fillList<&MacroValues::verificationVendors>},
      {"EXTENSIONS", fillList<&MacroValues::supportedExtension>},
      {"MEDIAMIME", fillList<&MacroValues::mimeType>},
      {"CLICKTYPE", fillSingle<&MacroValues::clickType>},
      {"BLOCKEDADCATEGORIES",
       [](const MacroValues&, const HostInUse&) {
         return listOf(TamzoState::getBlockedAdCategories());
       }},
      {"REGULATIONS", [](const MacroValues& ad, const HostInUse&) { return regulations(ad); }},
  };
  return table;
}

// Listed by the IAB, and nothing here knows them. One text: a table of them would be four times as
// long, which an app carries.
constexpr std::string_view kUnknownMacros =
    " ADCATEGORIES ADCOUNT ADPLAYHEAD ADSERVINGID ADTYPE APPBUNDLE ASSETURI"
    " BREAKMAXADLENGTH BREAKMAXADS BREAKMAXDURATION BREAKMINADLENGTH BREAKPOSITION"
    " CLICKPOS CONTENTCAT CONTENTID CONTENTPLAYHEAD CONTENTURI DEVICEUA DOMAIN DSAPARAMS"
    " DSAPUBRENDER DSAREQUIRED GPPSECTIONID GPPSTRING IFA IFATYPE LATLONG LIMITADTRACKING"
    " MEDIAPLAYHEAD PLACEMENTTYPE PLAYBACKMETHODS PLAYERSIZE PLAYERSTATE PODSEQUENCE"
    " STOREID STOREURL TRANSACTIONID UNIVERSALADID ";

bool isUnknownMacro(std::string_view name) noexcept {
  for (std::size_t at = kUnknownMacros.find(name, 1); !name.empty() && at != std::string_view::npos;
       at = kUnknownMacros.find(name, at + 1)) {
    if (kUnknownMacros[at - 1] == ' ' && kUnknownMacros[at + name.size()] == ' ') {
      return true;
    }
  }
  return false;
}

// Each macro's value is worked out once per text: one cache-buster, one moment.
class Filler {
 public:
  Filler(const MacroValues& ad, const HostInUse& host) noexcept : ad_(ad), host_(host) {}

  /// The value of the macro of that name; null when there is no such macro.
  const std::string* find(std::string_view name) {
    if (const auto known = values_.find(name); known != values_.end()) {
      return &known->second;
    }
    if (const auto macro = macros().find(name); macro != macros().end()) {
      return &values_.emplace(macro->first, macro->second(ad_, host_)).first->second;
    }
    return isUnknownMacro(name) ? &unknown_ : nullptr;
  }

 private:
  const MacroValues& ad_;
  const HostInUse& host_;
  std::unordered_map<std::string_view, std::string> values_;
  const std::string unknown_{kUnknown};
};

// The name runs to the first character that no macro's name has.
std::size_t endOfName(std::string_view text, std::size_t begin) noexcept {
  while (begin < text.size() && text[begin] >= 'A' && text[begin] <= 'Z') {
    ++begin;
  }
  return begin;
}

std::size_t findBracket(std::string_view text, std::size_t from) noexcept {
  return from < text.size() && text[from] == '[' ? from : text.find('[', from);
}

// The very same text where it holds no macro.
Text replaceAll(const Text& given, Filler& filler) {
  const std::string_view text = given;
  std::string out;
  std::size_t copied = 0;
  std::size_t end = 0;
  std::size_t filled = 0;
  for (std::size_t open = text.find('['); open != std::string_view::npos;
       open = findBracket(text, end)) {
    end = endOfName(text, open + 1);
    const bool isBracketed = end < text.size() && text[end] == ']';
    const std::string* value =
        isBracketed ? filler.find(text.substr(open + 1, end - open - 1)) : nullptr;
    if (value != nullptr && filled + value->size() <= kMaxFilledBytes) {
      filled += value->size();
      out += text.substr(copied, open - copied);
      out += *value;
      copied = end + 1;
    }
  }
  return copied == 0 ? given : Text(std::move(out += text.substr(copied)));
}

}  // namespace

Text TamzoMacroReplacementUtil::replaceVASTMacros(const Text& text, const MacroValues& fromVast) {
  const HostInUse host;
  if (host->replaceMacros) {
    return host->replaceMacros(text, fromVast);
  }
  Filler filler(fromVast, host);
  return replaceAll(text, filler);
}

}  // namespace tamzo
