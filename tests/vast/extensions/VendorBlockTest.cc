// The settings of the vendor block, one row after another, and the document that lists them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

#include "tamzo/vast/RecordJson.h"
#include "tests/support/Paths.h"
#include "tests/support/SdkFixture.h"
#include "vast/extensions/VendorBlock.h"

namespace tamzo::testing {
namespace {

using nlohmann::ordered_json;

using VendorSettingsTest = SdkTest;

NodeList vendorBlock(const std::string& content) {
  return NodeList::of(parseDocument("<Tamzo>" + content + "</Tamzo>")->rootElement());
}

std::shared_ptr<TamzoVastAd> recordOf(const std::string& content) {
  auto ad = TamzoVastAd::initWithVast("");
  ad->updateTamzoExtensions(vendorBlock(content));
  return ad;
}

std::string element(const std::string& name, const std::string& content) {
  return "<" + name + ">" + content + "</" + name + ">";
}

std::string property(const TamzoVastAd& ad, const std::string& name) {
  return ordered_json::parse(recordAsJson(ad)).at(name).dump();
}

// ---- The document ------------------------------------------------------------------------------

// A row of docs/vendor-block.md, without the remarks that follow a semicolon.
struct BlockRow {
  std::string element;
  std::string property;
  std::string reading;
  std::string absence;

  bool operator==(const BlockRow&) const = default;
  friend void PrintTo(const BlockRow& row, std::ostream* out) {
    *out << row.element << " | " << row.property << " | " << row.reading << " | " << row.absence;
  }
};

std::string takeCell(std::string& line) {
  const std::size_t end = line.find(" | ");
  std::string cell = line.substr(0, std::min(end, line.find(';')));
  line.erase(0, std::min(line.size(), end + 3));
  std::erase(cell, '`');
  return cell;
}

std::vector<BlockRow> readDocument() {
  std::ifstream document(std::string(testing::kDocs) + "/vendor-block.md");
  std::vector<BlockRow> rows;
  std::string line;
  while (std::getline(document, line) && !line.starts_with("| element |")) {
  }
  std::getline(document, line);  // the rule below the heading
  while (std::getline(document, line) && line.starts_with("| ")) {
    line = line.substr(2, line.rfind(" |") - 2);
    rows.push_back({takeCell(line), takeCell(line), takeCell(line), takeCell(line)});
  }
  return rows;
}

TEST_F(VendorSettingsTest, TheDocumentListsTheTableRowByRow) {
  // In the order of VendorReading; what a setting is reset to, for those that are.
  const std::pair<const char*, const char*> words[] = {{"text", R"("")"},
                                                       {"integer", "0"},
                                                       {"flag", "NO"},
                                                       {"number", "0"},
                                                       {"number, single precision", "0"},
                                                       {"JSON", ""},
                                                       {"skip offset", ""},
                                                       {"URL", ""},
                                                       {"list of TamzoCard", "an empty list"},
                                                       {"list of TamzoHotspot360Info", ""},
                                                       {"flags", ""}};
  std::vector<BlockRow> table;
  for (const VendorSetting& row : vendorSettings()) {
    const auto& [reading, reset] = words[static_cast<std::size_t>(row.reading)];
    const char* absences[] = {reset, "kept", "kept, also when empty"};
    table.push_back({std::string(row.element), std::string(row.property), reading,
                     absences[static_cast<std::size_t>(row.absence)]});
  }
  EXPECT_THAT(readDocument(), ::testing::ElementsAreArray(table));
}

// ---- Rows that are texts as they stand ---------------------------------------------------------

// Taken from the document, so that no row of the parser's own table vouches for itself.
std::vector<BlockRow> textRows() {
  std::vector<BlockRow> rows = readDocument();
  std::erase_if(rows,
                [](const BlockRow& row) { return row.reading != "text" || row.absence == "kept"; });
  EXPECT_EQ(rows.size(), 32U);
  return rows;
}
TEST_F(VendorSettingsTest, TextsAreTakenAsTheyStand) {
  for (const BlockRow& row : textRows()) {
    const auto ad = recordOf(element(row.element, " a &amp; <b>b</b><![CDATA[<c>]]>\n"));
    EXPECT_EQ(property(*ad, row.property), R"(" a & b<c>\n")") << row.element;
  }
}

TEST_F(VendorSettingsTest, AnAbsentTextIsEmptyAndNotNil) {
  EXPECT_EQ(property(*TamzoVastAd::initWithVast(""), "trackId"), "null");
  const auto ad = recordOf("");
  for (const BlockRow& row : textRows()) {
    EXPECT_EQ(property(*ad, row.property), R"("")") << row.element;
  }
}

TEST_F(VendorSettingsTest, ALaterBlockOverwritesEveryText) {
  for (const BlockRow& row : textRows()) {
    const auto ad = recordOf(element(row.element, "first"));
    ad->updateTamzoExtensions(vendorBlock(element(row.element, "second")));
    EXPECT_EQ(property(*ad, row.property), R"("second")") << row.element;
    ad->updateTamzoExtensions(vendorBlock("<Other>x</Other>"));
    EXPECT_EQ(property(*ad, row.property), R"("")") << row.element;
  }
}

TEST_F(VendorSettingsTest, OnlyTheFirstDirectChildOfThatVeryNameCounts) {
  for (const BlockRow& row : textRows()) {
    std::string otherCase = row.element;
    otherCase[0] = static_cast<char>(otherCase[0] ^ 0x20);
    const auto ad =
        recordOf(element(otherCase, "case") + element("Deeper", element(row.element, "deeper")) +
                 element(row.element, "1") + element(row.element, "2"));
    EXPECT_EQ(property(*ad, row.property), R"("1")") << row.element;
  }
}

TEST_F(VendorSettingsTest, EachTextFeedsItsOwnPropertyOnly) {
  std::string content;
  for (const BlockRow& row : textRows()) {
    content += element(row.element, row.property);
  }
  const ordered_json record = ordered_json::parse(recordAsJson(*recordOf(content)));
  for (const BlockRow& row : textRows()) {
    EXPECT_EQ(record.at(row.property), row.property) << row.element;
  }
}

// ---- Numbers and flags ---------------------------------------------------------------------

// Texts that no number begins; the last one has a Unicode minus.
constexpr const char* kNoNumbers[] = {"",    "abc", "+-3", "--3", "- 3",  "0x1F",
                                      "inf", "nan", ".",   "-",   "x1e5", "\xE2\x88\x92\x35"};

TEST_F(VendorSettingsTest, ViewabilityActionIsAnInteger) {
  constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
  constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
  const std::pair<const char*, std::int32_t> rows[] = {
      {"7", 7},
      {" 7abc", 7},
      {"-3", -3},
      {"+4", 4},
      {"1e999", 1},
      {"2.9", 2},
      {"007", 7},
      {"\n\t8", 8},
      {"2147483647", kMax},
      {"2147483648", kMax},
      {"-2147483648", kMin},
      {"-9999999999", kMin},
      {"1234567890123456789012345678901234567890", kMax}};
  for (const auto& [text, value] : rows) {
    EXPECT_EQ(recordOf(element("ViewabilityAction", text))->viewabilityAction(), value) << text;
  }
  const auto ad = recordOf("<ViewabilityAction>7</ViewabilityAction>");
  ad->updateTamzoExtensions(vendorBlock(""));
  EXPECT_EQ(ad->viewabilityAction(), 0) << "absent from a later block";
}

TEST_F(VendorSettingsTest, TheBidIsADouble) {
  const std::pair<const char*, double> rows[] = {
      {"1.25", 1.25},
      {" 7abc", 7.0},
      {"-0.5", -0.5},
      {"+.5", 0.5},
      {"5.", 5.0},
      {"1e3", 1000.0},
      {"1e", 1.0},
      {"1e+", 1.0},
      {"1,5", 1.0},
      {"1e999", HUGE_VAL},
      {"-1e999", -HUGE_VAL},
      {"1e-999", 0.0},
      {"1234567890123456789012345678901234567890", 1234567890123456789012345678901234567890.0}};
  for (const auto& [text, value] : rows) {
    EXPECT_EQ(recordOf(element("vc", text))->bid(), value) << text;
  }
  const auto ad = recordOf("<vc>2</vc>");
  ad->updateTamzoExtensions(vendorBlock("<VC>3</VC>"));
  EXPECT_EQ(ad->bid(), 0.0) << "absent from a later block";
}

TEST_F(VendorSettingsTest, WhatIsNoNumberReadsAsZero) {
  for (const char* text : kNoNumbers) {
    const auto ad = recordOf(element("ViewabilityAction", text) + element("vc", text));
    EXPECT_EQ(ad->viewabilityAction(), 0) << text;
    EXPECT_EQ(ad->bid(), 0.0) << text;
  }
}

constexpr const char* kTrue[] = {"true", "True", "TRUE", "yes", "Yes", "Y",       "t",      "1",
                                 "9x",   " 1",   "+1",   "-1",  "001", "-00true", "\n\tyes"};
constexpr const char* kFalse[] = {"false", "0", "no", "000", "on", "-", " ", "ftrue", "+-1", "0f"};

TEST_F(VendorSettingsTest, FlagsAreReadAlike) {
  const struct {
    const char* element;
    bool (*flag)(const TamzoVastAd&);
  } rows[] = {
      {"CoppaEnabled", [](const TamzoVastAd& ad) { return ad.isCoppaEnabled(); }},
      {"ImaTracking", [](const TamzoVastAd& ad) { return ad.isImaEnabled(); }},
      {"Is360Video", [](const TamzoVastAd& ad) { return ad.is360Video(); }},
      {"isOMIDEnabled", [](const TamzoVastAd& ad) { return ad.isOMIDEnable(); }},
  };
  for (const auto& row : rows) {
    for (const char* text : kTrue) {
      EXPECT_TRUE(row.flag(*recordOf(element(row.element, text)))) << row.element << " " << text;
    }
    for (const char* text : kFalse) {
      EXPECT_FALSE(row.flag(*recordOf(element(row.element, text)))) << row.element << " " << text;
    }
  }
}

TEST_F(VendorSettingsTest, AbsentAndEmptyFlagsAreOffButOpenMeasurementKeepsItsValue) {
  const std::string on =
      "<CoppaEnabled>1</CoppaEnabled><ImaTracking>1</ImaTracking><Is360Video>1</Is360Video>";
  for (const char* later : {"", "<CoppaEnabled/><ImaTracking/><Is360Video/><isOMIDEnabled/>"}) {
    for (const bool isOn : {true, false}) {
      const auto ad = recordOf(on + element("isOMIDEnabled", isOn ? "yes" : "no"));
      EXPECT_TRUE(ad->isCoppaEnabled() && ad->isImaEnabled() && ad->is360Video());
      ad->updateTamzoExtensions(vendorBlock(later));
      EXPECT_FALSE(ad->isCoppaEnabled()) << later;
      EXPECT_FALSE(ad->isImaEnabled()) << later;
      EXPECT_FALSE(ad->is360Video()) << later;
      EXPECT_EQ(ad->isOMIDEnable(), isOn) << later;
    }
  }
  EXPECT_TRUE(recordOf("")->isOMIDEnable());
}

// ---- Structured settings -------------------------------------------------------------------

TEST_F(VendorSettingsTest, TheOverlayIsReadWholeOrNotAtAll) {
  const struct {
    const char* name;
    const char* later;
    float ratio;
    Text url;
  } rows[] = {
      {"absent", "", 0.1F, "u"},
      {"both",
       "<AdOverlay><AdOverlayDimensionRatio> 1.5x</AdOverlayDimensionRatio>"
       "<AdOverlayUrl> v </AdOverlayUrl></AdOverlay>",
       1.5F, " v "},
      {"empty", "<AdOverlay/>", 0.0F, ""},
      {"the ratio alone",
       "<AdOverlay><AdOverlayDimensionRatio>2</AdOverlayDimensionRatio></AdOverlay>", 2.0F, ""},
      {"no number",
       "<AdOverlay><AdOverlayDimensionRatio>wide</AdOverlayDimensionRatio>"
       "<AdOverlayUrl>v</AdOverlayUrl></AdOverlay>",
       0.0F, "v"},
      {"too large",
       "<AdOverlay><AdOverlayDimensionRatio>1e39</AdOverlayDimensionRatio>"
       "</AdOverlay>",
       HUGE_VALF, ""},
      {"the first of two", "<AdOverlay/><AdOverlay><AdOverlayUrl>v</AdOverlayUrl></AdOverlay>",
       0.0F, ""},
      {"children outside",
       "<AdOverlayDimensionRatio>2</AdOverlayDimensionRatio>"
       "<AdOverlayUrl>v</AdOverlayUrl>",
       0.1F, "u"},
  };
  for (const auto& row : rows) {
    const auto ad = recordOf(
        "<AdOverlay><AdOverlayDimensionRatio>0.1</AdOverlayDimensionRatio>"
        "<AdOverlayUrl>u</AdOverlayUrl></AdOverlay>");
    ad->updateTamzoExtensions(vendorBlock(row.later));
    EXPECT_EQ(ad->overlayDimensionRatioNode(), row.ratio) << row.name;
    EXPECT_EQ(ad->overlayUrl(), row.url) << row.name;
  }
}

TEST_F(VendorSettingsTest, CardsAreReplacedByEveryBlock) {
  EXPECT_EQ(property(*TamzoVastAd::initWithVast(""), "cards"), "null");
  const auto ad = recordOf("<Cards><Card>1</Card></Cards><Cards><Card/><Other/></Cards>");
  EXPECT_EQ(property(*ad, "cards"), R"([{"xml":"<Card>1</Card>"},{"xml":"<Card/>"}])");
  const auto old = ad->cards();
  ad->updateTamzoExtensions(vendorBlock("<Card>not in Cards</Card>"));
  EXPECT_EQ(property(*ad, "cards"), "[]");
  EXPECT_EQ(old->size(), 2U);
}

TEST_F(VendorSettingsTest, ASkipOffsetOverridesWhatWasThere) {
  const struct {
    const char* name;
    const char* content;
    double millis;
  } rows[] = {
      {"absent", "", 7.0},
      {"clock", "<SkipOffset>00:00:05</SkipOffset>", 5000.0},
      {"fraction dropped", "<SkipOffset>00:00:05.750</SkipOffset>", 5000.0},
      {"empty", "<SkipOffset/>", 0.0},
      {"garbage", "<SkipOffset>soon</SkipOffset>", 0.0},
      {"too few components", "<SkipOffset>00:05</SkipOffset>", 0.0},
      {"percentage of 30 s", "<SkipOffset>12.5%</SkipOffset>", 3750.0},
      {"a blank after the percent sign", "<SkipOffset>10% </SkipOffset>", 0.0},
      {"wraps in 32 bits", "<SkipOffset>0:0:2147484</SkipOffset>", -2147483296.0},
      {"the first of two", "<SkipOffset>0:0:1</SkipOffset><SkipOffset>0:0:2</SkipOffset>", 1000.0},
  };
  for (const auto& row : rows) {
    const auto ad = TamzoVastAd::initWithVast("");
    ad->setSkipOffsetMillis(7.0);
    ad->setDuration(TamzoAdDuration::initFromString("00:00:30"));
    ad->updateTamzoExtensions(vendorBlock(row.content));
    EXPECT_EQ(ad->skipOffsetMillis(), row.millis) << row.name;
  }
}

TEST_F(VendorSettingsTest, HotspotsThatHoldNothingAreLoggedAndLeftOut) {
  const auto ad = recordOf(
      "<Video360><Hotspots><Hotspot id='1'/><Hotspot> <!-- nothing --></Hotspot>"
      "<Hotspot><X/></Hotspot></Hotspots></Video360>");
  EXPECT_EQ(property(*ad, "hotspotList"),
            R"([{"xml":"<Hotspot id=\"1\"/>"},{"xml":"<Hotspot><X/></Hotspot>"}])");
  const auto old = ad->hotspotList();
  collectLog();
  ad->updateTamzoExtensions(vendorBlock("<Video360><Hotspots/></Video360><Hotspot id='2'/>"));
  EXPECT_EQ(ad->hotspotList(), old) << "no hotspot, nothing changes";
  EXPECT_TRUE(log().empty());
  ad->updateTamzoExtensions(vendorBlock("<Video360><Hotspots><Hotspot/></Hotspots></Video360>"));
  EXPECT_EQ(property(*ad, "hotspotList"), "[]");
  EXPECT_EQ(log(), std::vector<std::string>{"[TAMZO-LOG][v8.0.0 p0] Hotspot XML parsing error"});
  EXPECT_EQ(property(*recordOf(""), "hotspotList"), "null");
}

TEST_F(VendorSettingsTest, AReplayUrlAllowsReplay) {
  EXPECT_FALSE(recordOf("")->canReplay());
  EXPECT_FALSE(recordOf("<canReplay/>")->canReplay());
  EXPECT_EQ(recordOf("<canReplay/>")->trackers()->find("canReplay"), nullptr);
  EXPECT_FALSE(recordOf("<CanReplay>u</CanReplay>")->canReplay());
  EXPECT_FALSE(recordOf("<canReplay/><canReplay>u</canReplay>")->canReplay());

  const auto ad = recordOf("<canReplay> u </canReplay>");
  EXPECT_TRUE(ad->canReplay());
  EXPECT_EQ(property(*ad, "trackers"), R"({"canReplay":[{"url":" u ","offset":null}]})");
  const TrackerList old = ad->trackers()->find("canReplay");
  ad->updateTamzoExtensions(vendorBlock("<canReplay/>"));
  EXPECT_TRUE(ad->canReplay());
  EXPECT_EQ(ad->trackers()->find("canReplay"), old);
  ad->updateTamzoExtensions(vendorBlock("<canReplay>v</canReplay>"));
  EXPECT_EQ(property(*ad, "trackers"), R"({"canReplay":[{"url":"v","offset":null}]})");
  EXPECT_EQ(old->size(), 1U);
}

TEST_F(VendorSettingsTest, AnEmptyBlockResetsWhatIsNotMarkedAsKept) {
  const ordered_json fresh = ordered_json::parse(recordAsJson(*TamzoVastAd::initWithVast("")));
  ordered_json expected = fresh;
  for (const BlockRow& row : textRows()) {
    expected[row.property] = "";
  }
  expected["cards"] = ordered_json::array();
  EXPECT_EQ(ordered_json::parse(recordAsJson(*recordOf(""))), expected);
}

TEST_F(VendorSettingsTest, WithoutABlockNothingIsTouched) {
  const auto ad = TamzoVastAd::initWithVast("");
  const std::string before = recordAsJson(*ad);
  ad->updateTamzoExtensions(NodeList());
  ad->updateTamzoExtensions(NodeList::makeEmpty());
  EXPECT_EQ(recordAsJson(*ad), before);
}

// ---- Extra actions -------------------------------------------------------------------------

TEST_F(VendorSettingsTest, ExtraActionsAreDecodedAndKeptWhereABlockHasNone) {
  const std::pair<const char*, const char*> rows[] = {
      {"<ExtraActions>[1,{\"a\":2}]</ExtraActions>", R"([1,{"a":2}])"},
      {"<ExtraActions><![CDATA[{\"a\":\"<&\"}]]></ExtraActions>", R"({"a":"<&"})"},
      {"<ExtraActions>null</ExtraActions>", "null"},
      {"<ExtraActions>[1,]</ExtraActions>", "null"},
      {"<ExtraActions/>", R"(["kept"])"},
      {"<ExtraActions></ExtraActions>", R"(["kept"])"},
      {"", R"(["kept"])"},
  };
  for (const auto& [block, expected] : rows) {
    const auto ad = recordOf("<ExtraActions>[\"kept\"]</ExtraActions>");
    ad->updateTamzoExtensions(vendorBlock(block));
    EXPECT_EQ(property(*ad, "extraActions"), expected) << block;
  }
}

TEST_F(VendorSettingsTest, ANullOfTheVendorIsAValueAndMalformedJsonIsNil) {
  EXPECT_FALSE(recordOf("<ExtraActions>null</ExtraActions>")->extraActions().isNil());
  EXPECT_TRUE(recordOf("<ExtraActions>nul</ExtraActions>")->extraActions().isNil());
}

TEST_F(VendorSettingsTest, IconsJoinAListAndLeaveAnythingElseAlone) {
  const auto icon = [](const std::string& program, const std::string& xml) {
    return R"({"icon":{"program":")" + program + R"(","xml":")" + xml + R"("}})";
  };
  const std::string a1 = icon("A", R"(<Icon program=\"A\">1</Icon>)");
  const std::string a2 = icon("A", R"(<Icon program=\"A\">2</Icon>)");
  const std::string b = icon("B", R"(<Icon program=\"B\"/>)");
  const std::string iconA = "<Icon program=\"A\">1</Icon>";
  const std::string iconA2 = "<Icon program=\"A\">2</Icon>";
  const std::string iconB = "<Icon program=\"B\"/>";
  const struct {
    std::string json;
    std::string icons;
    std::string expected;
  } rows[] = {
      {R"([{"program":"A"},7])", iconA, R"([{"program":"A"},7,)" + a1 + "]"},
      {"[1]", iconA + iconB + iconA2, "[1," + a2 + "," + b + "]"},
      {"[]", iconA + iconA2, "[" + a2 + "]"},
      {"", iconA + iconB, "[" + a1 + "," + b + "]"},
      {R"(["A",null,{"icon":{"program":"A"}}])", iconA,
       R"(["A",null,{"icon":{"program":"A"}},)" + a1 + "]"},
      {"[1]", "<Icon/><Icon program=''/>", "[1]"},
      {R"({"program":"A"})", iconA, R"({"program":"A"})"},
      {"7", iconA, "7"},
      {"null", iconA, "null"},
      {"[1", iconA, "null"},
  };
  for (const auto& row : rows) {
    for (const std::string version : {"2.0", "3.0", "4.0"}) {
      const auto ad = TamzoVastAd::initWithVast(
          "<VAST version='" + version + "'><Ad><InLine><Extensions><Extension><Tamzo>" +
          "<ExtraActions>" + row.json + "</ExtraActions></Tamzo></Extension></Extensions>" +
          "<Creatives><Creative><Linear><Icons>" + row.icons + "</Icons><MediaFiles>" +
          "<MediaFile type='video/mp4'>u</MediaFile></MediaFiles></Linear></Creative>" +
          "</Creatives></InLine></Ad></VAST>");
      EXPECT_EQ(ad->errorCode(), 0) << version << " " << row.json;
      EXPECT_EQ(property(*ad, "extraActions"), row.expected) << version << " " << row.json;
    }
  }
}

}  // namespace
}  // namespace tamzo::testing
