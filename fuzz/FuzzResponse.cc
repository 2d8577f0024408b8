// A whole response, and all that the SDK asks of the record made from it. Nothing is fetched.

#include "fuzz/Fuzzing.h"
#include "tamzo/sdk/TamzoLogger.h"
#include "tamzo/vast/TamzoVastAd.h"

using namespace tamzo;
using namespace tamzo::fuzz;

namespace {

void useRecord(TamzoVastAd& ad) {
  if (const auto companions = ad.getMostSuitableCompanion()) {
    const TamzoCompanion* best = companions->bestForSlot(320, 250);
    require(best == nullptr || (best->width().value() <= 320 && best->height().value() <= 250),
            "the best companion does not fit the slot");
  }
  const Text page = ad.getVideoWAPView();
  require(!page.isNil(), "the page is nil");
  require(!page.hasCharacters() || page.isSameObject(ad.vPaidHTML()), "the page is not kept");

  DDXMLElement linear;
  if (const auto document = DDXMLDocument::initWithXMLString(ad.vastResponseStr(), 0)) {
    const NodeList linears = document->nodesForXPath("/VAST/Ad/InLine/Creatives/Creative/Linear");
    linear = linears.empty() ? document->rootElement() : linears.at(0);
  }
  ad.getImageAd(linear);
  require(ad.iconMap() != nullptr && ad.iconMap()->size() <= 2, "the icon map is wrong");
}

std::string finishedRecord(const Text& response, bool isLogged) {
  isTamzoDebugEnabled = isLogged;
  const auto ad = TamzoVastAd::initWithVast(response);
  require(ad != nullptr, "no record");
  require(ad->errorCode() != kWrapperLimit, "302 without a single fetch");
  useRecord(*ad);
  if (isLogged) {
    checkedRecord(*ad);
  }
  return recordAsJson(*ad);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  makeDeterministic();
  testing::writeLogTo([](std::string_view) {});
  const Text response(asText(data, size));
  requireEqual(finishedRecord(response, true), finishedRecord(response, false),
               "the log changes the record");
  return 0;
}
