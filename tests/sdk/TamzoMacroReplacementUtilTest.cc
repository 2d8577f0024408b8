// The IAB macros of a tag URL.

#include <gtest/gtest.h>

#include <chrono>
#include <regex>

#include "tests/support/SdkFixture.h"

namespace tamzo::testing {
namespace {

class MacroTest : public SdkTest {
 protected:
  std::shared_ptr<TamzoVastAd> ad_ = TamzoVastAd::initWithVast("");

  std::string fill(const Text& text) const {
    return std::string(TamzoMacroReplacementUtil::replaceVASTMacros(text, *ad_).view());
  }
  static void setClock(std::chrono::milliseconds sinceEpoch) {
    MacroHooks hooks;
    hooks.now = [sinceEpoch] { return std::chrono::system_clock::time_point(sinceEpoch); };
    fillMacrosWith(std::move(hooks));
  }
};

using Setter = void (TamzoVastAd::*)(Text);

struct PropertyRow {
  const char* macro;
  Setter set;
  bool isList;
};
constexpr PropertyRow kProperties[] = {
    {"SERVERUA", &TamzoVastAd::setServerUA, false},
    {"CLIENTUA", &TamzoVastAd::setClientUA, false},
    {"DEVICEIP", &TamzoVastAd::setDeviceIP, false},
    {"OMIDPARTNER", &TamzoVastAd::setOmidPartner, false},
    {"GDPRCONSENT", &TamzoVastAd::setGDPRConsentInfo, false},
    {"CLICKTYPE", &TamzoVastAd::setClickType, false},
    {"PLAYERCAPABILITIES", &TamzoVastAd::setPlayerCapability, true},
    {"INVENTORYSTATE", &TamzoVastAd::setInventoryState, true},
    {"VASTVERSIONS", &TamzoVastAd::setVastVersions, true},
    {"APIFRAMEWORKS", &TamzoVastAd::setApiFrameworks, true},
    {"VERIFICATIONVENDORS", &TamzoVastAd::setVerificationVendors, true},
    {"EXTENSIONS", &TamzoVastAd::setSupportedExtension, true},
    {"MEDIAMIME", &TamzoVastAd::setMimeType, true},
};

std::string bracketed(const std::string& name) { return "[" + name + "]"; }

// ---- Values of the record ----------------------------------------------------------------------

TEST_F(MacroTest, PropertiesFillTheirMacros) {
  for (const PropertyRow& row : kProperties) {
    const std::string macro = bracketed(row.macro);
    EXPECT_EQ(fill(macro), "-1") << row.macro << ", nil";
    (*ad_.*row.set)("");
    EXPECT_EQ(fill(macro), "-1") << row.macro << ", empty";
    (*ad_.*row.set)("-2");
    EXPECT_EQ(fill(macro), "-2") << row.macro << ", forbidden by the host's policy";
    (*ad_.*row.set)("Name/1.0 (+a@b.c)");
    EXPECT_EQ(fill(macro), "Name%2F1.0%20(%2Ba%40b.c)") << row.macro;
    (*ad_.*row.set)("a/b, c=d ,,\te\xC2\xA0");
    EXPECT_EQ(fill(macro), row.isList ? "a%2Fb,c%3Dd,e" : "a%2Fb%2C%20c%3Dd%20%2C%2C%09e%C2%A0")
        << row.macro;
    (*ad_.*row.set)(" , ,");
    EXPECT_EQ(fill(macro), row.isList ? "-1" : "%20%2C%20%2C") << row.macro << ", no piece";
    (*ad_.*row.set)(Text());
  }
}

TEST_F(MacroTest, EncodingIsThatOfEncodeURIComponent) {
  std::string all;
  std::string expected;
  for (int byte = 1; byte < 0x80; ++byte) {
    const char c = static_cast<char>(byte);
    const bool isKept =
        std::isalnum(byte) != 0 || std::string("-_.!~*'()").find(c) != std::string::npos;
    char encoded[4];
    std::snprintf(encoded, sizeof(encoded), "%%%02X", static_cast<unsigned>(byte));
    all += c;
    expected += isKept ? std::string(1, c) : std::string(encoded);
  }
  ad_->setServerUA(all + "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
  EXPECT_EQ(fill("[SERVERUA]"), expected + "%C3%A9%E2%82%AC%F0%9F%98%80");
  ad_->setServerUA("%2F");
  EXPECT_EQ(fill("[SERVERUA]"), "%252F") << "encoded once more";
  ad_->setDeviceIP("2001:db8::1");
  EXPECT_EQ(fill("[DEVICEIP]"), "2001%3Adb8%3A%3A1");
}

TEST_F(MacroTest, BlockedCategoriesComeFromTheState) {
  EXPECT_EQ(fill("[BLOCKEDADCATEGORIES]"), "-1");
  blockCategories("IAB25-1, IAB26,");
  EXPECT_EQ(fill("[BLOCKEDADCATEGORIES]"), "IAB25-1,IAB26");
  blockCategories("");
  EXPECT_EQ(fill("[BLOCKEDADCATEGORIES]"), "-1");
}

TEST_F(MacroTest, RegulationsFollowCoppaAndConsent) {
  const struct {
    bool coppa;
    Text consent;
    const char* expected;
  } rows[] = {{false, Text(), "-1"}, {false, "", "-1"},     {true, Text(), "coppa"},
              {true, "", "coppa"},   {false, "BO", "gdpr"}, {true, "BO", "coppa,gdpr"}};
  for (const auto& row : rows) {
    ad_->setIsCoppaEnabled(row.coppa);
    ad_->setGDPRConsentInfo(row.consent);
    EXPECT_EQ(fill("[REGULATIONS]"), row.expected) << row.coppa << " " << row.consent;
  }
}

// ---- Values that do not come from the record ---------------------------------------------------

TEST_F(MacroTest, FixedAndUnknownMacros) {
  EXPECT_EQ(fill("[SERVERSIDE][PAGEURL]"), "00");
  // Everything that might tempt one to fill a macro from the wrong place.
  ad_->setUniversalIDValue("v");
  ad_->setUnivversalIDRegistry("r");
  ad_->categoryArray()->emplace_back("IAB1");
  ad_->setTrackId("t");
  ad_->setAdID("a");
  for (const char* name :
       {"ADCATEGORIES",  "ADCOUNT",          "ADPLAYHEAD",       "ADSERVINGID",
        "ADTYPE",        "APPBUNDLE",        "ASSETURI",         "BREAKMAXADLENGTH",
        "BREAKMAXADS",   "BREAKMAXDURATION", "BREAKMINADLENGTH", "BREAKPOSITION",
        "CLICKPOS",      "CONTENTCAT",       "CONTENTID",        "CONTENTPLAYHEAD",
        "CONTENTURI",    "DEVICEUA",         "DOMAIN",           "DSAPARAMS",
        "DSAPUBRENDER",  "DSAREQUIRED",      "GPPSECTIONID",     "GPPSTRING",
        "IFA",           "IFATYPE",          "LATLONG",          "LIMITADTRACKING",
        "MEDIAPLAYHEAD", "PLACEMENTTYPE",    "PLAYBACKMETHODS",  "PLAYERSIZE",
        "PLAYERSTATE",   "PODSEQUENCE",      "STOREID",          "STOREURL",
        "TRANSACTIONID", "UNIVERSALADID"}) {
    EXPECT_EQ(fill("x" + bracketed(name) + "y"), "x-1y") << name;
  }
}

TEST_F(MacroTest, TheTimestampIsUtcWithMilliseconds) {
  using std::chrono::milliseconds;
  const struct {
    std::int64_t millis;
    const char* expected;
  } rows[] = {
      {1768637707127, "2026-01-17T08%3A15%3A07.127%2B00%3A00"},
      {0, "1970-01-01T00%3A00%3A00.000%2B00%3A00"},
      {-1, "1969-12-31T23%3A59%3A59.999%2B00%3A00"},
      {951782400005, "2000-02-29T00%3A00%3A00.005%2B00%3A00"},
  };
  for (const auto& row : rows) {
    setClock(milliseconds(row.millis));
    EXPECT_EQ(fill("[TIMESTAMP]"), row.expected) << row.millis;
  }
}

TEST_F(MacroTest, TheDefaultClockIsTheSystems) {
  const auto before = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  const std::string filled = fill("[TIMESTAMP]");
  const auto after = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  EXPECT_TRUE(std::regex_match(
      filled, std::regex(R"(\d{4}-\d\d-\d\dT\d\d%3A\d\d%3A\d\d\.\d{3}%2B00%3A00)")))
      << filled;
  std::tm utc{};
  utc.tm_year = std::stoi(filled.substr(0, 4)) - 1900;
  utc.tm_mon = std::stoi(filled.substr(5, 2)) - 1;
  utc.tm_mday = std::stoi(filled.substr(8, 2));
  utc.tm_hour = std::stoi(filled.substr(11, 2));
  utc.tm_min = std::stoi(filled.substr(16, 2));
  utc.tm_sec = std::stoi(filled.substr(21, 2));
  EXPECT_GE(timegm(&utc), before);
  EXPECT_LE(timegm(&utc), after);
}

TEST_F(MacroTest, TheCacheBusterHasEightDigits) {
  std::uint32_t bound = 0;
  std::uint32_t drawn = 0;
  int draws = 0;
  MacroHooks hooks;
  hooks.random = [&](std::uint32_t given) {
    bound = given;
    ++draws;
    return drawn;
  };
  fillMacrosWith(hooks);
  EXPECT_EQ(fill("[CACHEBUSTING]"), "10000000");
  EXPECT_EQ(bound, 90'000'000U);
  drawn = bound - 1;
  EXPECT_EQ(fill("[CACHEBUSTING]"), "99999999");
  draws = 0;
  drawn = 5;
  EXPECT_EQ(fill("[CACHEBUSTING]&[CACHEBUSTING]"), "10000005&10000005") << "one number a URL";
  EXPECT_EQ(draws, 1);
  drawn = 0xFFFFFFFF;  // a host that does not keep to the bound
  EXPECT_EQ(fill("[CACHEBUSTING]").size(), 8U);

  fillMacrosWith({});
  std::string first;
  bool differs = false;
  for (int i = 0; i < 20; ++i) {
    const std::string number = fill("[CACHEBUSTING]");
    EXPECT_TRUE(std::regex_match(number, std::regex("[1-9][0-9]{7}"))) << number;
    first = first.empty() ? number : first;
    differs = differs || number != first;
  }
  EXPECT_TRUE(differs);
}

// ---- What is a macro ---------------------------------------------------------------------------

TEST_F(MacroTest, OnlyAKnownNameInBracketsIsReplaced) {
  ad_->setServerUA("U");
  for (const char* text : {"",
                           "no macro",
                           "[TAMZO_SESSION_ID]",
                           "[foo]",
                           "[timestamp]",
                           "[ServerUa]",
                           "%%SERVERUA%%",
                           "%5BSERVERUA%5D",
                           "[ERRORCODE]",
                           "[REASON]",
                           "[ SERVERUA]",
                           "[SERVERUA ]",
                           "[SERVERUA",
                           "SERVERUA]",
                           "[]",
                           "[",
                           "]",
                           "][",
                           "[SERVERUAX]",
                           "{SERVERUA}",
                           "[SERVER UA]",
                           "[IFA1]",
                           "[\xC3\x89]",
                           "http://[::1]/"}) {
    EXPECT_EQ(fill(text), text);
  }
  EXPECT_TRUE(TamzoMacroReplacementUtil::replaceVASTMacros(Text(), *ad_).isNil());
  const struct {
    const char* text;
    const char* expected;
  } rows[] = {
      {"[SERVERUA]", "U"},
      {"a[SERVERUA]b[SERVERUA]c", "aUbUc"},
      {"[[SERVERUA]]", "[U]"},
      {"[[SERVERUA]", "[U"},
      {"[SERVERUA[SERVERUA]", "[SERVERUAU"},
      {"[foo[SERVERUA]]", "[fooU]"},
      {"[ERRORCODE][SERVERUA]", "[ERRORCODE]U"},
      {"http://t/?a=[SERVERUA]&b=[IFA]#[PAGEURL]", "http://t/?a=U&b=-1#0"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(fill(row.text), row.expected) << row.text;
  }
}

TEST_F(MacroTest, WhatIsPutInIsNotLookedAtAgain) {
  ad_->setServerUA("[IFA]");
  EXPECT_EQ(fill("[SERVERUA]"), "%5BIFA%5D");
  ad_->setServerUA("IFA");
  EXPECT_EQ(fill("[[SERVERUA]]"), "[IFA]");
}

TEST_F(MacroTest, ATextWithoutMacrosIsTheSameObject) {
  const Text text = std::string("http://t.example/");
  EXPECT_TRUE(TamzoMacroReplacementUtil::replaceVASTMacros(text, *ad_).isSameObject(text));
}

TEST_F(MacroTest, ManyBracketsTakeLinearTime) {
  const std::string open(2'000'000, '[');
  EXPECT_EQ(fill(open), open);
  std::string names;
  for (int i = 0; i < 200'000; ++i) {
    names += "[AAAAAAA";
  }
  EXPECT_EQ(fill(names), names);
}

TEST_F(MacroTest, AMacroEndsInsideItsText) {
  const Text longer("[SERVERSIDE]");
  const Text open = longer.part(longer.view().substr(0, 11));
  EXPECT_TRUE(TamzoMacroReplacementUtil::replaceVASTMacros(open, *ad_).isSameObject(open))
      << "the bracket behind it is another's";
}

TEST_F(MacroTest, LongValuesAreNotFilledInWithoutEnd) {
  ad_->setSupportedExtension(std::string(400'000, 'x'));
  std::string macros;
  for (int i = 0; i < 100'000; ++i) {
    macros += "[EXTENSIONS][SERVERSIDE]";
  }
  const std::string filled = fill(macros);
  EXPECT_LT(filled.size(), macros.size() + (1U << 20U));
  EXPECT_TRUE(filled.starts_with(std::string(400'000, 'x') + "0" + std::string(400'000, 'x') +
                                 "0[EXTENSIONS]0"))
      << "what still fits is filled";
}

TEST_F(MacroTest, ValuesAreFilledInUpToAMebibyte) {
  const std::string half(std::size_t{1} << 19U, 'x');
  ad_->setSupportedExtension(half);
  EXPECT_EQ(fill("[EXTENSIONS][EXTENSIONS][SERVERSIDE]"), half + half + "[SERVERSIDE]");
}

// ---- In the chain ------------------------------------------------------------------------------

TEST_F(MacroTest, ATagUrlIsFilledFromEarlierDocumentsOfTheChain) {
  const auto wrapper = [](const std::string& version, const std::string& next,
                          const std::string& agent) {
    return "<VAST version='" + version + "'><Ad><Wrapper><VASTAdTagURI>http://t.example/" + next +
           "?ua=[SERVERUA]</VASTAdTagURI><Extensions><Extension><Tamzo><ServerUA>" + agent +
           "</ServerUA></Tamzo></Extension></Extensions></Wrapper></Ad></VAST>";
  };
  for (const std::string version : {"2.0", "3.0", "4.0"}) {
    std::vector<std::string> asked;
    readUrlsWith([&](const Text& url) -> std::optional<std::string> {
      asked.emplace_back(url.view());
      return asked.size() == 1 ? std::optional(wrapper(version, "2", "second")) : std::nullopt;
    });
    TamzoVastAd::initWithVast(wrapper(version, "1", "first"));
    EXPECT_EQ(asked,
              (std::vector<std::string>{"http://t.example/1?ua=-1", "http://t.example/2?ua=first"}))
        << version;
  }
}

TEST_F(MacroTest, AHostMayReplaceTheWholeFunction) {
  MacroHooks hooks;
  hooks.replace = [](const Text& text, const TamzoVastAd& ad) {
    return Text(std::string(text.view()) + "|" + std::to_string(ad.errorCode()));
  };
  fillMacrosWith(hooks);
  EXPECT_EQ(fill("[IFA]"), "[IFA]|100");
  EXPECT_EQ(fill(""), "|100");
  fillMacrosWith({});
  EXPECT_EQ(fill("[IFA]"), "-1");
}

}  // namespace
}  // namespace tamzo::testing
