#include "tamzo/vast/RecordJson.h"

#include <optional>
#include <variant>
#include <vector>

#include "base/JsonWriter.h"

namespace tamzo {
namespace {

// How each type that occurs in a record is written. A property of a new type needs one more
// overload here, a property of a known one nothing at all.
class RecordWriter {
 public:
  RecordWriter(JsonSpacing spacing, RecordContent content)
      : isWhole_(content == RecordContent::whole), json_(spacing) {}

  void write(const TamzoVastAd& ad) {
    // The two texts that are documents make up most of it.
    constexpr std::size_t kAllElse = 4096;
    const std::size_t documents =
        isWhole_ ? ad.vastTagURI().view().size() + ad.vastResponseStr().view().size() : 0;
    json_.reserve(documents + kAllElse);
    json_.beginObject();
#define TAMZO_PROPERTY(type, name, setter, when, initial) property(#name, ad.name(), ad);
#include "vast/TamzoVastAdProperties.def"
#undef TAMZO_PROPERTY
    json_.endObject();
  }

  std::string take() { return json_.take(); }

 private:
  // Names are literals, whose lengths are known when this is compiled.
  template <typename T>
  void property(Literal name, const T& value, const TamzoVastAd&) {
    field(name, value);
  }

  void property(Literal name, const Text& value, const TamzoVastAd& ad) {
    if (!isWhole_ && isOfTheResponse(name.view(), value, ad)) {
      field(name, Text());
    } else {
      field(name, value);
    }
  }

  static bool isOfTheResponse(std::string_view name, const Text& value, const TamzoVastAd& ad) {
    return name == "vastResponseStr" ||
           (name == "vastTagURI" && isDocument(value, ad.vastResponseStr()));
  }

  // A tag that is no URL is parsed as it stands, but is a document only if it looks like one or is
  // what came first.
  static bool isDocument(const Text& tag, const Text& response) {
    const std::string_view text = tag;
    return !text.starts_with("http") &&
           (text.find('<') != std::string_view::npos || text == response.view());
  }

  void write(const Text& text) { json_.value(text); }
  void write(bool flag) { json_.value(flag); }
  void write(std::int32_t number) { json_.value(number); }
  void write(std::int64_t number) { json_.value(number); }
  void write(double number) { json_.value(number); }
  void write(float number) { json_.value(number); }
  void write(const MutableText& text) { json_.value(text.asText()); }

  template <typename T>
  void write(const std::optional<T>& value) {
    if (value) {
      write(*value);
    } else {
      json_.null();
    }
  }

  template <typename T>
  void field(Literal name, const T& value) {
    json_.key(name.view());
    write(value);
  }

  template <typename T>
  void write(const std::vector<T>& entries) {
    json_.beginArray();
    for (const T& entry : entries) {
      write(entry);
    }
    json_.endArray();
  }

  // Lists and records are held by shared handles, nil among them.
  template <typename T>
  void write(const std::shared_ptr<T>& shared) {
    if (shared == nullptr) {
      json_.null();
    } else {
      write(*shared);
    }
  }

  void write(const TamzoAdDuration& duration) {
    json_.beginObject();
    field("text", duration.text());
    field("durationInSeconds", duration.durationInSeconds());
    json_.endObject();
  }

  void write(const TamzoTrackerEvent& event) {
    json_.beginObject();
    field("url", event.url());
    field("offset", event.offset());
    json_.endObject();
  }

  void write(const TrackerMap& trackers) {
    json_.beginObject();
    for (const TrackerMap::Entry& entry : trackers) {
      json_.key(entry.name.view());
      write(entry.events);
    }
    json_.endObject();
  }

  void write(const TamzoMediaFile& file) {
    json_.beginObject();
    field("url", file.url());
    field("id", file.id());
    field("delivery", file.delivery());
    field("type", file.type());
    field("codec", file.codec());
    field("apiFramework", file.apiFramework());
    field("width", file.width());
    field("height", file.height());
    field("bitrate", file.bitrate());
    field("minBitrate", file.minBitrate());
    field("maxBitrate", file.maxBitrate());
    field("fileSize", file.fileSize());
    field("scalable", file.scalable());
    field("maintainAspectRatio", file.maintainAspectRatio());
    json_.endObject();
  }

  void write(const TamzoCompanion::StaticResource& resource) {
    json_.beginObject();
    field("creativeType", resource.creativeType);
    field("url", resource.url);
    json_.endObject();
  }

  void write(const TamzoCompanion& companion) {
    json_.beginObject();
    field("id", companion.id());
    field("width", companion.width());
    field("height", companion.height());
    field("adSlotId", companion.adSlotId());
    field("apiFramework", companion.apiFramework());
    field("altText", companion.altText());
    field("staticResources", companion.staticResources());
    field("iframeResources", companion.iframeResources());
    field("htmlResources", companion.htmlResources());
    field("clickThrough", companion.clickThrough());
    field("clickTracking", companion.clickTracking());
    field("trackers", companion.trackers());
    json_.endObject();
  }

  void write(const TamzoCompanionAd& ad) {
    json_.beginObject();
    field("companions", ad.companions());
    json_.endObject();
  }

  void write(const TamzoMeasurementProviderModel::JavaScriptResource& resource) {
    json_.beginObject();
    field("url", resource.url);
    field("apiFramework", resource.apiFramework);
    field("browserOptional", resource.browserOptional);
    json_.endObject();
  }

  void write(const TamzoMeasurementProviderModel::ExecutableResource& resource) {
    json_.beginObject();
    field("url", resource.url);
    field("apiFramework", resource.apiFramework);
    field("type", resource.type);
    json_.endObject();
  }

  void write(const TamzoMeasurementProviderModel& provider) {
    json_.beginObject();
    field("vendor", provider.vendor());
    field("javaScriptResources", provider.javaScriptResources());
    field("executableResources", provider.executableResources());
    field("verificationParameters", provider.verificationParameters());
    field("trackers", provider.trackers());
    json_.endObject();
  }

  void writeXmlOf(const DDXMLElement& node) {
    json_.beginObject();
    field("xml", node.XMLString());
    json_.endObject();
  }

  void write(const TamzoCard& card) { writeXmlOf(card.node()); }
  void write(const TamzoHotspot360Info& spot) { writeXmlOf(spot.node()); }

  void write(const IconMap& icons) {
    json_.beginObject();
    for (const auto& [name, element] : icons) {
      json_.key(name);
      json_.beginObject();
      field("xml", element.XMLString());
      field("text", element.stringValue());
      json_.endObject();
    }
    json_.endObject();
  }

  void write(const TamzoVpaidXML& vpaid) {
    json_.beginObject();
    field("vastVersion", vpaid.vastVersion());
    json_.endObject();
  }

  void write(const JsonValue& value) { json_.raw(value.dump()); }

  void write(const DDXMLElement& icon) {
    json_.beginObject();
    json_.key("icon");
    json_.beginObject();
    field("program", icon.attributeValue("program"));
    field("xml", icon.XMLString());
    json_.endObject();
    json_.endObject();
  }

  void write(const TamzoExtraActions& actions) {
    if (actions.isNil()) {
      json_.null();
      return;
    }
    if (!actions.isList()) {
      write(actions.value());
      return;
    }
    json_.beginArray();
    for (const TamzoExtraActions::Entry& entry : *actions.list()) {
      std::visit([this](const auto& either) { this->write(either); }, entry);
    }
    json_.endArray();
  }

  bool isWhole_;
  JsonWriter json_;
};

}  // namespace

std::string recordAsJson(const TamzoVastAd& ad, JsonLayout layout, RecordContent content) {
  RecordWriter writer(layout == JsonLayout::indented ? JsonSpacing::indented : JsonSpacing::compact,
                      content);
  writer.write(ad);
  return writer.take();
}

}  // namespace tamzo
