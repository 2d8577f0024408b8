// What a player does with a record: nil against "", trackers, media files, companions, icons, and
// who owns what.

#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include "expect.h"
#include "tamzo/sdk/TamzoHost.h"
#include "tamzo/sdk/TamzoVpaidXML.h"
#include "tamzo/vast/RecordJson.h"
#include "tamzo/vast/TamzoVastAd.h"
#include "tamzo/xml/DDXMLDocument.h"

namespace {

// Nil: no document ever set it. "": the ad server sent the setting without a value.
std::string analyticsState(const tamzo::TamzoVastAd& ad) {
  if (ad.analytics().isNil()) {
    return "never set";
  }
  return ad.analytics().hasCharacters() ? std::string(ad.analytics().view()) : "empty";
}

// The URLs to call for an event. The list of an event that no document names is nil.
std::vector<std::string> urlsFor(const tamzo::TamzoVastAd& ad, std::string_view event) {
  std::vector<std::string> urls;
  if (const auto events = ad.trackers()->find(event)) {
    for (const auto& tracker : *events) {
      urls.emplace_back(tracker->url().view());
    }
  }
  return urls;
}

// The largest MP4 that the line can carry. What an attribute does not say counts as fitting.
std::shared_ptr<tamzo::TamzoMediaFile> pickMedia(const tamzo::TamzoVastAd& ad, int kilobits) {
  std::shared_ptr<tamzo::TamzoMediaFile> best;
  for (const auto& file : *ad.mediaFiles()) {
    const bool isMp4 = file->type().view() == "video/mp4";
    const bool fits = file->bitrate().value_or(0) <= kilobits;
    if (isMp4 && fits && (!best || file->width().value_or(0) > best->width().value_or(0))) {
      best = file;
    }
  }
  return best;
}

// The markup for a slot beside the video; "" when nothing fits. The companion belongs to the
// record, so it is read while the record is held.
std::string bannerFor(const tamzo::TamzoVastAd& ad, int width, int height) {
  const auto companions = ad.getMostSuitableCompanion();
  const auto* best = companions ? companions->bestForSlot(width, height) : nullptr;
  if (best == nullptr) {
    return "";
  }
  if (const auto markup = best->htmlResources(); !markup.empty()) {
    return std::string(markup.front().view());
  }
  const auto images = best->staticResources();
  return images.empty() ? "" : std::string(images.front().url.view());
}

// Icons and the ad server's own actions stand side by side; where the server sent JSON that is no
// list, there is no list at all.
std::vector<std::string> extraActions(const tamzo::TamzoVastAd& ad) {
  std::vector<std::string> names;
  if (!ad.extraActions().isList()) {
    return names;
  }
  for (const auto& entry : *ad.extraActions().list()) {
    if (const auto* icon = std::get_if<tamzo::DDXMLElement>(&entry)) {
      names.push_back("icon " + std::string(icon->attributeValue("program").view()));
    } else {
      const tamzo::Text action = std::get<tamzo::JsonValue>(entry).find("action").asText();
      names.push_back("action " + std::string(action.isNil() ? "?" : action.view()));
    }
  }
  return names;
}

// What the VPAID page is to be given of the Wrappers when its tag is a URL: "" when there are none,
// or when they stand in the page's own document already.
std::string wrappersForPage(const tamzo::TamzoVastAd& ad) {
  if (ad.vpaidXml() == nullptr || !ad.vastTagURI().view().starts_with("http")) {
    return "";
  }
  const auto empty = tamzo::DDXMLDocument::initWithXMLString(
      "<InLine><Creatives><Creative><Linear/></Creative></Creatives></InLine>", 0);
  return std::string(ad.vpaidXml()->createInlineVast(empty->nodesForXPath("/InLine"), {}).view());
}

// Only the icon leaves this function. It keeps its document alive, the record need not be.
tamzo::DDXMLElement firstIcon(const std::string& response) {
  const auto ad = tamzo::TamzoVastAd::initWithVast(response);
  if (ad->extraActions().isList()) {
    for (const auto& entry : *ad->extraActions().list()) {
      if (const auto* icon = std::get_if<tamzo::DDXMLElement>(&entry)) {
        return *icon;
      }
    }
  }
  return {};
}

// Each record belongs to the thread that fills it. Once filled, and no longer changed, it may be
// read from anywhere.
std::vector<std::string> parseOnThreads(const std::string& response, std::size_t count) {
  std::vector<std::shared_ptr<tamzo::TamzoVastAd>> ads(count);
  std::vector<std::thread> threads;
  for (auto& ad : ads) {
    threads.emplace_back([&ad, &response] { ad = tamzo::TamzoVastAd::initWithVast(response); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  std::vector<std::string> records;
  for (const auto& ad : ads) {
    records.push_back(tamzo::recordAsJson(*ad));
  }
  return records;
}

// A video with a VPAID unit beside it, behind a Wrapper.
std::string wrappersOfVideoWithUnit() {
  tamzo::TamzoHost host;
  host.readUrl = [](const tamzo::Text&) -> std::optional<std::string> {
    return R"(<VAST version="4.0"><Ad><InLine><Creatives><Creative><Linear><MediaFiles>
      <MediaFile type="video/mp4">https://cdn.example/a.mp4</MediaFile>
      <InteractiveCreativeFile type="application/javascript" apiFramework="VPAID"
        >https://cdn.example/unit.js</InteractiveCreativeFile>
      </MediaFiles></Linear></Creative></Creatives></InLine></Ad></VAST>)";
  };
  const auto ad = tamzo::TamzoVastAd::initWithVast(
      R"(<VAST version="4.0"><Ad><Wrapper><VASTAdTagURI>https://ads.example/</VASTAdTagURI>
        <Error>https://track.example/error</Error><Creatives><Creative><Linear><TrackingEvents>
        <Tracking event="start">https://track.example/start</Tracking></TrackingEvents></Linear>
        </Creative></Creatives></Wrapper></Ad></VAST>)",
      host);
  return ad->jsVPaidPresent() ? wrappersForPage(*ad) : "no unit";
}

}  // namespace

int main(int argc, char** argv) {
  std::ifstream file(argc > 1 ? argv[1] : "response.xml");
  const std::string response(std::istreambuf_iterator<char>(file), {});
  const auto ad = tamzo::TamzoVastAd::initWithVast(response);
  expect(ad->errorCode() == tamzo::kNoError, "nothing failed");

  expect(analyticsState(*ad) == "empty", "the vendor block names Analytics and leaves it empty");
  expect(analyticsState(*tamzo::TamzoVastAd::initWithVast("<VAST/>")) == "never set",
         "without a vendor block it is nil");

  expect(ad->skipOffsetMillis() == 5000.0, "skip offsets are milliseconds");
  expect(ad->duration()->durationInSeconds() == 30, "durations are seconds");
  const auto progress = ad->trackers()->find("progress");
  expect(progress && progress->at(1)->offset().view() == "20", "offsets are seconds, as text");
  expect(urlsFor(*ad, "complete") == std::vector<std::string>{"https://track.example/complete"},
         "the URLs of an event");
  expect(urlsFor(*ad, "rewind").empty(), "an event that no document names");

  expect(pickMedia(*ad, 1000)->width() == 640, "the file for a slow line");
  expect(pickMedia(*ad, 9000)->width() == 1920, "the file for a fast one");
  expect(bannerFor(*ad, 320, 300).starts_with("<img"), "the largest companion that fits");
  expect(bannerFor(*ad, 320, 50) == "https://cdn.example/300x50.png", "the one for a small slot");
  expect(bannerFor(*ad, 100, 50).empty(), "none for a tiny one");

  const std::vector<std::string> actions{"action store", "icon AdChoices"};
  expect(extraActions(*ad) == actions, "icons join the ad server's list");

  const auto icon = firstIcon(response);
  expect(icon.attributeValue("width").view() == "20", "an element outlives its record");

  const std::string wrappers = wrappersOfVideoWithUnit();
  expect(wrappers.find("https://track.example/error") != std::string::npos, "errors are handed on");
  expect(wrappers.find("event=\"start\"") != std::string::npos, "and so are trackers");
  expect(wrappersForPage(*ad).empty(), "an ad without Wrappers");

  const auto records = parseOnThreads(response, 4);
  for (const auto& record : records) {
    expect(record == records.front(), "every thread reads the same");
  }
}
