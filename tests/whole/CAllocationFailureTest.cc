// Memory that runs out at one point of what C asks for, for every point there is.
//
// An executable of its own, since it replaces the global operator new.

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <new>

#include "tamzo/tamzo_vast.h"
#include "tests/support/ReplacedNew.h"

namespace {

long untilFailure = -1;  // allocations that still succeed; -1: all of them

}  // namespace

void* tamzo::testing::allocate(std::size_t size) noexcept {
  if (untilFailure == 0) {
    return nullptr;
  }
  untilFailure -= untilFailure > 0 ? 1 : 0;
  return std::malloc(size == 0 ? 1 : size);
}

namespace {

constexpr const char* kResponse =
    "<VAST version='3.0'><Ad><InLine><Impression>http://i</Impression><Creatives><Creative><Linear>"
    "<MediaFiles><MediaFile type='video/mp4'>http://a.mp4</MediaFile></MediaFiles>"
    "<Icons><Icon program='p' width='1'><IconClicks/></Icon></Icons></Linear></Creative>"
    "<Creative><CompanionAds><Companion width='1'><StaticResource>http://s</StaticResource>"
    "</Companion></CompanionAds></Creative></Creatives><Extensions><Extension "
    "type='Tamzo'><Tamzo><Cards><Card>"
    "<Icons><Icon><IconClicks><IconClickThrough>http://c</IconClickThrough></IconClicks></Icon>"
    "</Icons></Card></Cards></Tamzo></Extension></Extensions></InLine></Ad></VAST>";

int releases = 0;
int kept = 0;
int imageAds = 0;

void release(void* user) { ++*static_cast<int*>(user); }

bool answer(void*, tamzo_vast_reply* reply) {
  return tamzo_vast_reply_set_bytes(reply, "a long text that no string keeps inside", 39) ==
         TAMZO_VAST_OK;
}

bool isExpected(tamzo_vast_status status) {
  return status == TAMZO_VAST_OK || status == TAMZO_VAST_NO_MEMORY;
}

void useElement(const tamzo_vast_element* element) {
  tamzo_vast_string* text = nullptr;
  EXPECT_TRUE(isExpected(tamzo_vast_element_xml(element, &text)));
  tamzo_vast_string_release(text);
  tamzo_vast_attributes* attributes = nullptr;
  EXPECT_TRUE(isExpected(tamzo_vast_element_attributes(element, &attributes)));
  tamzo_vast_attributes_release(attributes);
  tamzo_vast_element* child = nullptr;
  EXPECT_TRUE(isExpected(tamzo_vast_element_first_child(element, &child)));
  tamzo_vast_element_release(child);
}

void useRecord(tamzo_vast_ad* ad) {
  tamzo_vast_string* text = nullptr;
  EXPECT_TRUE(isExpected(tamzo_vast_ad_as_json(ad, false, &text)));
  tamzo_vast_string_release(text);
  const tamzo_vast_elements* cards = tamzo_vast_ad_cards(ad);
  if (cards != nullptr && cards->count > 0) {
    EXPECT_TRUE(isExpected(tamzo_vast_ad_get_image_ad(ad, cards->items[0])));
    ++imageAds;
  }
  const tamzo_vast_extra_actions* actions = tamzo_vast_ad_extraActions(ad);
  if (actions != nullptr && actions->count > 0 && actions->items[0]->icon != nullptr) {
    useElement(actions->items[0]->icon);
  }
  const tamzo_vast_status made = tamzo_vast_ad_get_page(ad, nullptr, &text);
  EXPECT_TRUE(isExpected(made) || made == TAMZO_VAST_NO_PAGE);
  tamzo_vast_string_release(text);
}

// All that C can ask for, however far the memory goes.
void useAll() {
  tamzo_vast_options* options = nullptr;
  EXPECT_TRUE(isExpected(tamzo_vast_options_create(&options)));
  // Without options this is refused, and the pointer released all the same.
  ++kept;
  tamzo_vast_options_set_blocked_categories(options, answer, &releases, release);
  tamzo_vast_ad* ad = nullptr;
  EXPECT_TRUE(isExpected(tamzo_vast_parse(kResponse, std::strlen(kResponse), options, &ad)));
  if (ad != nullptr) {
    useRecord(ad);
  }
  tamzo_vast_ad_release(ad);
  tamzo_vast_options_release(options);
}

TEST(CAllocationFailure, NothingIsThrownAndEveryHookReleasedWhereverMemoryEnds) {
  useAll();  // makes what is made once
  ASSERT_EQ(imageAds, 1);
  bool isThrough = false;
  for (long point = 0; !isThrough; ++point) {
    ASSERT_LT(point, 100'000);
    untilFailure = point;
    useAll();
    isThrough = untilFailure > 0;
    untilFailure = -1;
  }
  EXPECT_EQ(releases, kept);
}

}  // namespace
