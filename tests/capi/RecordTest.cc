// The record for C beside that for C++.

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>

#include "capi/Boundary.h"
#include "tamzo/base/Version.h"
#include "tamzo/tamzo_vast.h"
#include "tamzo/vast/ErrorCodes.h"
#include "tamzo/vast/RecordJson.h"
#include "tamzo/vast/TamzoVastAd.h"

namespace tamzo::capi {
namespace {

std::string vendorBlock() {
  std::ifstream file(TAMZO_DOCS "/examples/vendor-block.xml");
  return {std::istreambuf_iterator<char>(file), {}};
}

struct Release {
  void operator()(tamzo_vast_ad* ad) const { tamzo_vast_ad_release(ad); }
  void operator()(tamzo_vast_string* string) const { tamzo_vast_string_release(string); }
  void operator()(tamzo_vast_options* options) const { tamzo_vast_options_release(options); }
};
template <typename T>
using Owned = std::unique_ptr<T, Release>;

Owned<tamzo_vast_ad> parse(const std::string& response, const tamzo_vast_options* options) {
  tamzo_vast_ad* ad = nullptr;
  EXPECT_EQ(tamzo_vast_parse(response.data(), response.size(), options, &ad), TAMZO_VAST_OK);
  return Owned<tamzo_vast_ad>(ad);
}

Owned<tamzo_vast_options> makeOptions() {
  tamzo_vast_options* options = nullptr;
  EXPECT_EQ(tamzo_vast_options_create(&options), TAMZO_VAST_OK);
  return Owned<tamzo_vast_options>(options);
}

// How many of them a property has; -1 for nil.
template <typename InC>
long sizeInC(const InC* list) {
  return list == nullptr ? -1 : static_cast<long>(list->count);
}

bool isSame(tamzo_vast_text c, const Text& text) {
  return (c.data == nullptr) == text.isNil() && viewOf(c) == text.view();
}
bool isSame(tamzo_vast_text c, const MutableText& text) { return isSame(c, text.asText()); }
bool isSame(bool c, bool flag) { return c == flag; }
bool isSame(std::int32_t c, std::int32_t number) { return c == number; }
bool isSame(double c, double number) { return c == number; }
bool isSame(float c, float number) { return c == number; }
template <typename InC, typename T>
bool isSame(const InC* c, const std::shared_ptr<std::vector<T>>& list) {
  return sizeInC(c) == (list == nullptr ? -1 : static_cast<long>(list->size()));
}
template <typename InC>
bool isSame(const InC* c, const std::shared_ptr<TrackerMap>& map) {
  return sizeInC(c) == (map == nullptr ? -1 : static_cast<long>(map->size()));
}
template <typename InC>
bool isSame(const InC* c, const std::shared_ptr<IconMap>& map) {
  return sizeInC(c) == (map == nullptr ? -1 : static_cast<long>(map->size()));
}
bool isSame(const tamzo_vast_extra_actions* c, const TamzoExtraActions& actions) {
  return sizeInC(c) == (actions.isNil()    ? -1
                        : actions.isList() ? static_cast<long>(actions.list()->size())
                                           : 0);
}
bool isSame(const tamzo_vast_duration* c, const std::shared_ptr<TamzoAdDuration>& duration) {
  return duration == nullptr ? c == nullptr
                             : c != nullptr && c->seconds == duration->durationInSeconds();
}
bool isSame(const tamzo_vast_vpaid_xml* c, const std::shared_ptr<TamzoVpaidXML>& vpaid) {
  return (c == nullptr) == (vpaid == nullptr);
}

TEST(CRecord, EveryPropertyIsThatOfTheRecord) {
  const std::string response = vendorBlock();
  ASSERT_FALSE(response.empty());
  const auto expected = TamzoVastAd::initWithVast(response);
  const auto ad = parse(response, nullptr);
#define TAMZO_PROPERTY(type, name, setter, when, initial) \
  EXPECT_TRUE(isSame(tamzo_vast_ad_##name(ad.get()), expected->name())) << #name;
#include "vast/TamzoVastAdProperties.def"
#undef TAMZO_PROPERTY
  tamzo_vast_string* json = nullptr;
  ASSERT_EQ(tamzo_vast_ad_as_json(ad.get(), true, &json), TAMZO_VAST_OK);
  const Owned<tamzo_vast_string> owned(json);
  EXPECT_EQ(viewOf(tamzo_vast_string_text(json)), recordAsJson(*expected, JsonLayout::indented));
}

TEST(CRecord, ErrorCodesAreThoseOfTheLibrary) {
  const std::int32_t codes[] = {
      TAMZO_VAST_SUCCESS,         TAMZO_VAST_EXCEPTION,        TAMZO_VAST_NOT_XML,
      TAMZO_VAST_BAD_VERSION,     TAMZO_VAST_CATEGORY_BLOCKED, TAMZO_VAST_NO_WRAPPER_OR_INLINE,
      TAMZO_VAST_EMPTY_CONTENT,   TAMZO_VAST_WRAPPER_LIMIT,    TAMZO_VAST_NO_AD,
      TAMZO_VAST_NO_USABLE_LINEAR};
  ASSERT_EQ(std::size(codes), vastErrors().size());
  for (std::size_t at = 0; at < std::size(codes); ++at) {
    EXPECT_EQ(codes[at], vastErrors()[at].code);
    EXPECT_EQ(tamzo_vast_error_code_at(at), codes[at]);
    EXPECT_EQ(viewOf(tamzo_vast_error_name(codes[at])), vastErrors()[at].name);
    EXPECT_EQ(viewOf(tamzo_vast_error_cause(codes[at])), vastErrors()[at].cause);
  }
}

TEST(CRecord, VersionIsThatOfTheLibrary) { EXPECT_STREQ(tamzo_vast_version(), TAMZO_VERSION); }

TEST(CRecord, TextOfNoCharactersIsEmptyNotNil) {
  EXPECT_NE(viewOf(Text(std::string())).data, nullptr);
  EXPECT_NE(viewOf(MutableText::create().asText()).data, nullptr);
  EXPECT_EQ(viewOf(Text()).data, nullptr);
}

// The macros hook throws what `user`, a function, throws.
bool throwing(void* user, tamzo_vast_text, tamzo_vast_reply*) {
  (*static_cast<std::function<void()>*>(user))();
  return true;
}

constexpr const char* kWrapper =
    "<VAST version='3.0'><Ad><Wrapper><VASTAdTagURI>http://a.example</VASTAdTagURI>"
    "</Wrapper></Ad></VAST>";

TEST(CRecord, StandardExceptionOfAHookFailsTheAd) {
  std::function<void()> thrower = [] { throw std::runtime_error("no"); };
  const auto options = makeOptions();
  tamzo_vast_options_set_macros(options.get(), throwing, &thrower, nullptr);
  EXPECT_EQ(tamzo_vast_ad_errorCode(parse(kWrapper, options.get()).get()), TAMZO_VAST_EXCEPTION);
}

TEST(CRecord, WhatElseAHookThrowsIsAStatusAndNoRecord) {
  std::function<void()> thrower = [] { throw 42; };
  const auto options = makeOptions();
  tamzo_vast_options_set_macros(options.get(), throwing, &thrower, nullptr);
  auto* ad = reinterpret_cast<tamzo_vast_ad*>(&thrower);
  EXPECT_EQ(tamzo_vast_parse(kWrapper, std::string_view(kWrapper).size(), options.get(), &ad),
            TAMZO_VAST_HOOK_FAILED);
  EXPECT_EQ(ad, nullptr);
}

TEST(CRecord, PageThatIsNoneHasAStatusOfItsOwn) {
  const auto options = makeOptions();
  tamzo_vast_options_set_page_template(
      options.get(), [](void*, tamzo_vast_reply*) { return true; }, nullptr, nullptr);
  const auto ad = parse(vendorBlock(), nullptr);
  tamzo_vast_string* page = nullptr;
  EXPECT_EQ(tamzo_vast_ad_get_page(ad.get(), options.get(), &page), TAMZO_VAST_NO_PAGE);
  EXPECT_EQ(page, nullptr);
}

TEST(CRecord, IconMapHoldsTheClicksOfTheElementAskedLast) {
  const auto ad = parse(
      "<VAST version='3.0'><Ad><InLine><Creatives><Creative><Linear><MediaFiles>"
      "<MediaFile type='video/mp4'>a.mp4</MediaFile></MediaFiles></Linear></Creative></Creatives>"
      "<Extensions><Extension type='Tamzo'><Tamzo><Cards><Card><Icons><Icon>"
      "<IconClicks><IconClickThrough>http://c</IconClickThrough></IconClicks></Icon></Icons></Card>"
      "<Card/></Cards></Tamzo></Extension></Extensions></InLine></Ad></VAST>",
      nullptr);
  const tamzo_vast_elements* cards = tamzo_vast_ad_cards(ad.get());
  ASSERT_EQ(sizeInC(cards), 2);
  EXPECT_EQ(tamzo_vast_ad_iconMap(ad.get()), nullptr);
  ASSERT_EQ(tamzo_vast_ad_get_image_ad(ad.get(), cards->items[0]), TAMZO_VAST_OK);
  const tamzo_vast_named_elements* icons = tamzo_vast_ad_iconMap(ad.get());
  ASSERT_EQ(sizeInC(icons), 1);
  EXPECT_EQ(viewOf(icons->items[0]->name), "iconClickThrough");

  // Of an element that the map itself holds, which goes with it.
  ASSERT_EQ(tamzo_vast_ad_get_image_ad(ad.get(), icons->items[0]->element), TAMZO_VAST_OK);
  EXPECT_EQ(sizeInC(tamzo_vast_ad_iconMap(ad.get())), 0);
}

}  // namespace
}  // namespace tamzo::capi
