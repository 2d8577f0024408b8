#include "tamzo/sdk/TamzoMacroReplacementUtil.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "base/HookSlot.h"
#include "base/PercentEncoding.h"
#include "base/WhiteSpace.h"
#include "tamzo/sdk/TamzoState.h"
#include "tamzo/vast/TamzoVastAd.h"

namespace tamzo {
namespace {

using Hooks = TamzoMacroReplacementUtil::Hooks;

HookSlot<Hooks>& hooksSlot() {
  static HookSlot<Hooks> slot;
  return slot;
}

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

std::string regulations(const TamzoVastAd& ad) {
  std::string names = ad.isCoppaEnabled() ? "coppa" : "";
  if (ad.GDPRConsentInfo().hasCharacters()) {
    names += names.empty() ? "gdpr" : ",gdpr";
  }
  return listOf(names);
}

std::string timestamp(const Hooks& hooks) {
  using std::chrono::milliseconds;
  const auto now = hooks.now ? hooks.now() : std::chrono::system_clock::now();
  const auto sinceEpoch = std::chrono::floor<milliseconds>(now.time_since_epoch()).count();
  const auto millis = static_cast<int>(((sinceEpoch % 1000) + 1000) % 1000);
  const auto seconds = static_cast<std::time_t>((sinceEpoch - millis) / 1000);
  std::tm utc{};
  gmtime_r(&seconds, &utc);
  std::array<char, 64> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &utc);
  return encodeUriComponent(fmt::format("{}.{:03}+00:00", text.data(), millis));
}

// Eight digits.
std::string cacheBuster(const Hooks& hooks) {
  constexpr std::uint32_t kLeast = 10'000'000;
  constexpr std::uint32_t kCount = 90'000'000;
  if (hooks.random) {
    return std::to_string(kLeast + hooks.random(kCount) % kCount);
  }
  thread_local std::mt19937 engine{std::random_device{}()};
  return std::to_string(kLeast +
                        std::uniform_int_distribution<std::uint32_t>(0, kCount - 1)(engine));
}

using Fill = std::string (*)(const TamzoVastAd&, const Hooks&);

template <const Text& (TamzoVastAd::*property)() const>
std::string fillSingle(const TamzoVastAd& ad, const Hooks&) {
  return single((ad.*property)());
}

template <const Text& (TamzoVastAd::*property)() const>
std::string fillList(const TamzoVastAd& ad, const Hooks&) {
  return listOf((ad.*property)());
}

std::string fillUnknown(const TamzoVastAd&, const Hooks&) { return std::string(kUnknown); }
std::string fillZero(const TamzoVastAd&, const Hooks&) { return "0"; }

const std::unordered_map<std::string_view, Fill>& macros() {
  static const std::unordered_map<std::string_view, Fill> table = {
      // Filled always.
      {"CACHEBUSTING", [](const TamzoVastAd&, const Hooks& hooks) { return cacheBuster(hooks); }},
      {"TIMESTAMP", [](const TamzoVastAd&, const Hooks& hooks) { return timestamp(hooks); }},
      {"SERVERSIDE", fillZero},  // the client fires
      {"PAGEURL", fillZero},     // an app has no page
      // Filled from the record.
      {"SERVERUA", fillSingle<&TamzoVastAd::serverUA>},
      {"CLIENTUA", fillSingle<&TamzoVastAd::clientUA>},
      {"DEVICEIP", fillSingle<&TamzoVastAd::deviceIP>},
      {"OMIDPARTNER", fillSingle<&TamzoVastAd::omidPartner>},
      {"PLAYERCAPABILITIES", fillList<&TamzoVastAd::playerCapability>},
      {"INVENTORYSTATE", fillList<&TamzoVastAd::inventoryState>},
      {"GDPRCONSENT", fillSingle<&TamzoVastAd::GDPRConsentInfo>},
      {"VASTVERSIONS", fillList<&TamzoVastAd::vastVersions>},
      {"APIFRAMEWORKS", fillList<&TamzoVastAd::apiFrameworks>},
      {"VERIFICATIONVENDORS", fillList<&TamzoVastAd::verificationVendors>},
      {"EXTENSIONS", fillList<&TamzoVastAd::supportedExtension>},
      {"MEDIAMIME", fillList<&TamzoVastAd::mimeType>},
      {"CLICKTYPE", fillSingle<&TamzoVastAd::clickType>},
      {"BLOCKEDADCATEGORIES",
       [](const TamzoVastAd&, const Hooks&) {
         return listOf(TamzoState::getBlockedAdCategories());
       }},
      {"REGULATIONS", [](const TamzoVastAd& ad, const Hooks&) { return regulations(ad); }},
      // Listed by the IAB, and nothing here knows them.
      {"ADCATEGORIES", fillUnknown},
      {"ADCOUNT", fillUnknown},
      {"ADPLAYHEAD", fillUnknown},
      {"ADSERVINGID", fillUnknown},
      {"ADTYPE", fillUnknown},
      {"APPBUNDLE", fillUnknown},
      {"ASSETURI", fillUnknown},
      {"BREAKMAXADLENGTH", fillUnknown},
      {"BREAKMAXADS", fillUnknown},
      {"BREAKMAXDURATION", fillUnknown},
      {"BREAKMINADLENGTH", fillUnknown},
      {"BREAKPOSITION", fillUnknown},
      {"CLICKPOS", fillUnknown},
      {"CONTENTCAT", fillUnknown},
      {"CONTENTID", fillUnknown},
      {"CONTENTPLAYHEAD", fillUnknown},
      {"CONTENTURI", fillUnknown},
      {"DEVICEUA", fillUnknown},
      {"DOMAIN", fillUnknown},
      {"DSAPARAMS", fillUnknown},
      {"DSAPUBRENDER", fillUnknown},
      {"DSAREQUIRED", fillUnknown},
      {"GPPSECTIONID", fillUnknown},
      {"GPPSTRING", fillUnknown},
      {"IFA", fillUnknown},
      {"IFATYPE", fillUnknown},
      {"LATLONG", fillUnknown},
      {"LIMITADTRACKING", fillUnknown},
      {"MEDIAPLAYHEAD", fillUnknown},
      {"PLACEMENTTYPE", fillUnknown},
      {"PLAYBACKMETHODS", fillUnknown},
      {"PLAYERSIZE", fillUnknown},
      {"PLAYERSTATE", fillUnknown},
      {"PODSEQUENCE", fillUnknown},
      {"STOREID", fillUnknown},
      {"STOREURL", fillUnknown},
      {"TRANSACTIONID", fillUnknown},
      {"UNIVERSALADID", fillUnknown},
  };
  return table;
}

// Each macro's value is worked out once per text: one cache-buster, one moment.
class Filler {
 public:
  Filler(const TamzoVastAd& ad, const Hooks& hooks) noexcept : ad_(ad), hooks_(hooks) {}

  /// The value of the macro of that name; null when there is no such macro.
  const std::string* find(std::string_view name) {
    if (const auto known = values_.find(name); known != values_.end()) {
      return &known->second;
    }
    const auto macro = macros().find(name);
    return macro == macros().end()
               ? nullptr
               : &values_.emplace(macro->first, macro->second(ad_, hooks_)).first->second;
  }

 private:
  const TamzoVastAd& ad_;
  const Hooks& hooks_;
  std::unordered_map<std::string_view, std::string> values_;
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

void TamzoMacroReplacementUtil::setHooks(Hooks hooks) { hooksSlot().set(std::move(hooks)); }

Text TamzoMacroReplacementUtil::replaceVASTMacros(const Text& text, const TamzoVastAd& fromVast) {
  const auto hooks = hooksSlot().get();
  if (hooks->replace) {
    return hooks->replace(text, fromVast);
  }
  Filler filler(fromVast, *hooks);
  return replaceAll(text, filler);
}

}  // namespace tamzo
