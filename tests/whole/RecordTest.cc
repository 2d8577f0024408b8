// The record: its properties, what they start as, and what a second parse makes of them.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <type_traits>
#include <vector>

#include "tamzo/vast/RecordJson.h"
#include "tests/support/PropertyNames.h"
#include "tests/support/Responses.h"
#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using RecordTest = SdkTest;

TEST_F(RecordTest, HasSeventyTwoPropertiesOfGivenNames) {
  ASSERT_EQ(kPropertyNames.size(), 72U);
  std::vector<std::string> names;
#define TAMZO_PROPERTY(type, name, setter, when, initial) names.emplace_back(#name);
#include "vast/TamzoVastAdProperties.def"
#undef TAMZO_PROPERTY
  EXPECT_EQ(names, kPropertyNames);
}

TEST_F(RecordTest, SettersAreNamedAfterTheirProperty){
#define TAMZO_PROPERTY(type, name, setter, when, initial)       \
  {                                                             \
    std::string expected = #name;                               \
    expected[0] = static_cast<char>(std::toupper(expected[0])); \
    EXPECT_EQ(#setter, "set" + expected);                       \
  }
#include "vast/TamzoVastAdProperties.def"
#undef TAMZO_PROPERTY
}

TEST_F(RecordTest, PropertiesHaveTheTypesThatTheSdkReads) {
  const TamzoVastAd ad;
  static_assert(std::is_same_v<decltype(ad.errorCode()), std::int32_t>);
  static_assert(std::is_same_v<decltype(ad.viewabilityAction()), std::int32_t>);
  static_assert(std::is_same_v<decltype(ad.skipOffsetMillis()), double>);
  static_assert(std::is_same_v<decltype(ad.bid()), double>);
  static_assert(std::is_same_v<decltype(ad.expires()), double>);
  static_assert(std::is_same_v<decltype(ad.overlayDimensionRatioNode()), float>);
  static_assert(std::is_same_v<decltype(ad.moatViewImpressionStr()), const MutableText&>);
  static_assert(std::is_same_v<decltype(ad.gratificationTime()), const Text&>);
}

bool isZero(const Text& value) { return value.isNil(); }
bool isZero(const MutableText& value) { return value.isNil(); }
bool isZero(const TamzoExtraActions& value) { return value.isNil(); }
template <typename Number, std::enable_if_t<std::is_arithmetic_v<Number>, int> = 0>
bool isZero(const Number& value) {
  return value == Number{};
}
template <typename Pointee>
bool isZero(const std::shared_ptr<Pointee>& value) {
  return value == nullptr;
}

TEST_F(RecordTest, StartsAsNothing) {
  const TamzoVastAd ad;
#define TAMZO_PROPERTY(type, name, setter, when, initial) EXPECT_TRUE(isZero(ad.name())) << #name;
#include "vast/TamzoVastAdProperties.def"
#undef TAMZO_PROPERTY
}

TEST_F(RecordTest, HoldsItsInitialValuesAfterAResponseThatCannotBeRead) {
  const auto ad = TamzoVastAd::initWithVast("no XML");
  const auto json = nlohmann::ordered_json::parse(recordAsJson(*ad));
  const nlohmann::ordered_json initial{
      {"vastTagURI", "no XML"},
      {"skipOffsetMillis", 0.0},
      {"errorCode", 101},
      {"bid", 0.0},
      {"trackers", nlohmann::ordered_json::object()},
      {"trackersOffset", nlohmann::ordered_json::array()},
      {"companionAds", nlohmann::ordered_json::array()},
      {"mediaFiles", nlohmann::ordered_json::array()},
      {"moatVastIds", ""},
      {"moatViewImpressionStr", ""},
      {"viewabilityAction", 0},
      {"extraActions", nlohmann::ordered_json::array()},
      {"isCoppaEnabled", false},
      {"overlayDimensionRatioNode", 0.0},
      {"vastResponseStr", "no XML"},
      {"is360Video", false},
      {"isImaEnabled", false},
      {"measurementProviderList", nlohmann::ordered_json::array()},
      {"canZoom", false},
      {"canOpenExternal", false},
      {"canAutoPlay", false},
      {"canScroll", false},
      {"shouldAskPermission", false},
      {"canReplay", false},
      {"isOMIDEnable", true},
      {"expires", 0.0},
      {"categoryArray", nlohmann::ordered_json::array()},
      {"jsVPaidPresent", false},
      {"flashVPaidPresent", false},
  };
  ASSERT_EQ(json.size(), 72U);
  for (const std::string& name : kPropertyNames) {
    ASSERT_TRUE(json.contains(name)) << name;
    EXPECT_EQ(json[name], initial.contains(name) ? initial[name] : nlohmann::ordered_json())
        << name;
  }
}

// A value of its own for every type, so that a round trip tells something.
template <typename Value>
Value sample() {
  if constexpr (std::is_same_v<Value, bool>) {
    return true;
  } else if constexpr (std::is_arithmetic_v<Value>) {
    return static_cast<Value>(-7);
  } else if constexpr (std::is_same_v<Value, Text>) {
    return Text(std::string("a text of its own"));
  } else if constexpr (std::is_same_v<Value, MutableText>) {
    return MutableText::create();
  } else if constexpr (std::is_same_v<Value, TamzoExtraActions>) {
    return TamzoExtraActions::makeEmptyList();
  } else if constexpr (std::is_same_v<Value, std::shared_ptr<TamzoAdDuration>>) {
    return TamzoAdDuration::initFromString("00:00:10");
  } else if constexpr (std::is_same_v<Value, std::shared_ptr<TamzoVpaidXML>>) {
    return TamzoVpaidXML::initWithVpaidWrapperNode(NodeList());
  } else {
    return std::make_shared<typename Value::element_type>();
  }
}

bool isSame(const Text& a, const Text& b) { return a.isSameObject(b); }
bool isSame(const MutableText& a, const MutableText& b) {
  return a.asText().isSameObject(b.asText());
}
bool isSame(const TamzoExtraActions& a, const TamzoExtraActions& b) {
  return a.list() == b.list() && a.value() == b.value();
}
template <typename Value>
bool isSame(const Value& a, const Value& b) {
  return a == b;
}

TEST_F(RecordTest, SettersKeepTheVeryObject) {
  TamzoVastAd ad;
#define TAMZO_PROPERTY(type, name, setter, when, initial)           \
  {                                                                 \
    const auto value = sample<type>();                              \
    ad.setter(value);                                               \
    EXPECT_TRUE(isSame(ad.name(), value)) << #name;                 \
    EXPECT_FALSE(isZero(ad.name())) << #name;                       \
    ad.setter({});                                                  \
    EXPECT_TRUE(isZero(ad.name())) << #name << " may be nil again"; \
  }
#include "vast/TamzoVastAdProperties.def"
#undef TAMZO_PROPERTY
}

TEST_F(RecordTest, AContainerIsSharedWithWhoeverSetIt) {
  TamzoVastAd ad;
  const auto categories = makeList<Text>();
  ad.setCategoryArray(categories);
  categories->emplace_back("IAB1");
  EXPECT_EQ(ad.categoryArray()->size(), 1U);
  MutableText moat = MutableText::create();
  ad.setMoatViewImpressionStr(moat);
  moat.appendString("x");
  EXPECT_EQ(ad.moatViewImpressionStr().view(), "x");
}

// The containers of a parse are made anew; all else stays as it is until something writes to it.
TEST_F(RecordTest, ASecondParseResetsWhatBelongsToOne) {
  const std::vector<std::string> reset{"vastTagURI",  "skipOffsetMillis", "errorCode",
                                       "trackers",    "companionAds",     "mediaFiles",
                                       "moatVastIds", "vastResponseStr"};
  TamzoVastAd ad;
#define TAMZO_PROPERTY(type, name, setter, when, initial) ad.setter(sample<type>());
#include "vast/TamzoVastAdProperties.def"
#undef TAMZO_PROPERTY
  ad.setIsImaEnabled(false);
  TamzoVastAd before;
#define TAMZO_PROPERTY(type, name, setter, when, initial) before.setter(ad.name());
#include "vast/TamzoVastAdProperties.def"
#undef TAMZO_PROPERTY
  ad.parseVast("no XML");
  // Not XML at all, so that nothing but the reset has been written to.
#define TAMZO_PROPERTY(type, name, setter, when, initial)                \
  EXPECT_EQ(isSame(ad.name(), before.name()),                            \
            std::find(reset.begin(), reset.end(), #name) == reset.end()) \
      << #name;
#include "vast/TamzoVastAdProperties.def"
#undef TAMZO_PROPERTY
  EXPECT_EQ(ad.vastTagURI(), Text("no XML"));
  EXPECT_EQ(ad.vastResponseStr(), Text("no XML"));
  EXPECT_EQ(ad.skipOffsetMillis(), 0.0);
  EXPECT_EQ(ad.moatVastIds(), Text(""));
  EXPECT_EQ(ad.errorCode(), kNotXml);
  EXPECT_EQ(ad.trackers()->size(), 0U);
  EXPECT_TRUE(ad.companionAds()->empty());
  EXPECT_TRUE(ad.mediaFiles()->empty());
}

TEST_F(RecordTest, ASecondParseMayReadTheRecordsOwnText) {
  const std::string response = "<VAST version='3.0'><Ad id='1'/></VAST>";
  const auto ad = TamzoVastAd::initWithVast(response);
  ad->parseVast(ad->vastResponseStr());
  EXPECT_EQ(ad->vastResponseStr(), Text(response));
  ad->parseVast(ad->vastTagURI());
  EXPECT_EQ(ad->errorCode(), kNoWrapperOrInLine);
}

TEST_F(RecordTest, ListsOfTheInitialiserGatherOverParses) {
  const std::string response =
      inlineAd("4.0", "<Category>IAB1</Category>", "<Icons><Icon program='p'/></Icons>" + kVideo);
  const auto ad = TamzoVastAd::initWithVast(response);
  ASSERT_EQ(ad->categoryArray()->size(), 1U);
  ad->parseVast(response);
  EXPECT_EQ(ad->categoryArray()->size(), 2U);
  EXPECT_EQ(ad->extraActions().list()->size(), 1U) << "one program";
  EXPECT_EQ(ad->mediaFiles()->size(), 1U);
}

TEST_F(RecordTest, ASurveyIsNotReadAndNoNodesChangeNothing) {
  const auto ad = freshRecord();
  const std::string before = recordAsJson(*ad);
  collectLog();
  ad->updateSurvey(rootOf("<I><Survey>https://s.example/</Survey></I>"));
  for (const NodeList& nodes : {NodeList(), NodeList::makeEmpty()}) {
    ad->updateSurvey(nodes);
  }
  EXPECT_EQ(recordAsJson(*ad), before);
  EXPECT_TRUE(log().empty());
}

TEST_F(RecordTest, FlashIsNeverFound) {
  const auto ad = TamzoVastAd::initWithVast(
      inlineAd("2.0", "",
               "<MediaFiles><MediaFile type='application/x-shockwave-flash' apiFramework='VPAID'>u"
               "</MediaFile><MediaFile type='video/mp4'>u</MediaFile></MediaFiles>"));
  EXPECT_EQ(ad->errorCode(), 0);
  EXPECT_FALSE(ad->flashVPaidPresent());
  EXPECT_FALSE(ad->jsVPaidPresent());
}

TEST_F(RecordTest, AnOldCategoryBlocksALaterAd) {
  blockCategories("IAB7");
  const auto ad = TamzoVastAd::initWithVast(inlineAd("4.0", "<Category>IAB7</Category>"));
  ASSERT_EQ(ad->errorCode(), kCategoryBlocked);
  ad->parseVast(inlineAd("4.0", "<Category>IAB1</Category>"));
  EXPECT_EQ(ad->errorCode(), kCategoryBlocked);
  ad->setCategoryArray(nullptr);
  ad->parseVast(inlineAd("4.0", "<Category>IAB1</Category>"));
  EXPECT_NE(ad->errorCode(), kCategoryBlocked);
}

// What a host may take for harmless, and what must not compile.
TEST_F(RecordTest, IsNotCopiedAndATextIsNoFlag) {
  static_assert(!std::is_copy_constructible_v<TamzoVastAd>);
  static_assert(!std::is_copy_assignable_v<TamzoVastAd>);
  static_assert(!std::is_move_constructible_v<TamzoVastAd>);
  const auto takes = [](auto& ad, auto value) {
    return requires { ad.setIsImaEnabled(value); };
  };
  TamzoVastAd ad;
  EXPECT_TRUE(takes(ad, true));
  EXPECT_FALSE(takes(ad, "false"));
  EXPECT_FALSE(takes(ad, static_cast<void*>(nullptr)));
}

}  // namespace
}  // namespace tamzo::testing
