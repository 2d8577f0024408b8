#include "explain/ExplanationJson.h"

#include "base/JsonWriter.h"

namespace tamzo::explain {
namespace {

class ExplanationWriter {
 public:
  explicit ExplanationWriter(JsonSpacing spacing) : json_(spacing) {}

  std::string take() { return json_.take(); }

  void write(const Explanation& explanation) {
    json_.beginObject();
    field("verdict", nameOf(explanation.verdict));
    field("errorCode", explanation.errorCode);
    field("sentence", std::string_view(explanation.sentence));
    list("findings", explanation.findings);
    list("hops", explanation.hops);
    json_.key("trackerHops");
    json_.beginObject();
    for (const TrackerHops& event : explanation.trackerHops) {
      list(event.event.view(), event.hops);
    }
    json_.endObject();
    list("mediaFiles", explanation.mediaFiles);
    json_.endObject();
  }

 private:
  template <typename Value>
  void field(std::string_view name, const Value& value) {
    json_.key(name);
    write(value);
  }
  template <typename Entries>
  void list(std::string_view name, const Entries& entries) {
    json_.key(name);
    json_.beginArray();
    for (const auto& entry : entries) {
      write(entry);
    }
    json_.endArray();
  }

  void write(std::string_view text) { json_.value(text); }
  void write(const std::string& text) { json_.value(std::string_view(text)); }
  void write(const Text& text) { json_.value(text); }
  void write(std::int32_t number) { json_.value(number); }
  void write(std::size_t number) { json_.value(static_cast<std::uint64_t>(number)); }
  void write(double number) { json_.value(number); }
  void write(bool flag) { json_.value(flag); }
  template <typename Value>
  void write(const std::optional<Value>& value) {
    if (value) {
      write(*value);
    } else {
      json_.null();
    }
  }

  void write(const Finding& finding) {
    json_.beginObject();
    field("id", finding.id);
    field("severity", nameOf(finding.severity));
    field("hop", finding.hop);
    const Place* place = finding.place ? &*finding.place : nullptr;
    field("line", place == nullptr ? std::nullopt : std::optional(place->line));
    field("column", place == nullptr ? std::nullopt : std::optional(place->column));
    field("excerpt", place == nullptr ? std::nullopt : std::optional(place->excerpt));
    field("message", finding.message);
    field("advice", finding.advice.empty() ? std::nullopt : std::optional(finding.advice));
    json_.key("details");
    json_.beginObject();
    for (const Detail& detail : finding.details) {
      json_.key(detail.key);
      json_.raw(detail.json);
    }
    json_.endObject();
    json_.endObject();
  }

  void write(const FetchResult& fetch) {
    json_.beginObject();
    field("status", fetch.status == 0 ? std::nullopt : std::optional(std::int32_t{fetch.status}));
    field("finalUrl", fetch.finalUrl);
    list("redirects", fetch.redirects);
    field("bytes", fetch.bytes);
    field("contentType", fetch.contentType);
    const std::string_view failure = fetchFailureName(fetch.failure);
    field("failure", failure.empty() ? std::nullopt : std::optional(failure));
    json_.key("milliseconds");
    json_.beginObject();
    field("dns", fetch.milliseconds.dns);
    field("connect", fetch.milliseconds.connect);
    field("tls", fetch.milliseconds.tls);
    field("firstByte", fetch.milliseconds.firstByte);
    field("total", fetch.milliseconds.total);
    json_.endObject();
    field("reusedConnection", fetch.reusedConnection);
    json_.endObject();
  }

  void write(const HopReport& hop) {
    json_.beginObject();
    field("hop", hop.number);
    field("source", nameOf(hop.source));
    field("tag", hop.tag);
    field("url", hop.url);
    json_.key("macros");
    json_.beginObject();
    for (const auto& [name, value] : hop.macros) {
      field(name, value);
    }
    json_.endObject();
    list("unfilled", hop.unfilled);
    field("fetch", hop.fetch);
    field("version", hop.version);
    field("kind", nameOf(hop.kind));
    field("adSystem", hop.adSystem);
    field("adTitle", hop.adTitle);
    field("adId", hop.adId);
    field("ads", hop.ads);
    field("creatives", hop.creatives);
    field("linears", hop.linears);
    field("impressions", hop.impressions);
    field("trackers", hop.trackers);
    field("companions", hop.companions);
    field("icons", hop.icons);
    field("verifications", hop.verifications);
    field("errorUrls", hop.errorUrls);
    json_.endObject();
  }

  void write(const MediaFileReport& file) {
    json_.beginObject();
    field("hop", file.hop);
    field("line", file.line);
    field("type", file.type);
    field("delivery", file.delivery);
    field("width", file.width);
    field("height", file.height);
    field("taken", file.why.empty());
    field("why", file.why.empty() ? std::nullopt : std::optional(file.why));
    json_.endObject();
  }

  JsonWriter json_;
};

// One level further in. Line breaks stand between the parts of a value only.
std::string indented(const std::string& json) {
  std::string further;
  further.reserve(json.size() + json.size() / 8);
  for (const char c : json) {
    further += c;
    if (c == '\n') {
      further += "  ";
    }
  }
  return further;
}

}  // namespace

std::string explanationAsJson(const Explanation& explanation, JsonLayout layout) {
  ExplanationWriter writer(layout == JsonLayout::indented ? JsonSpacing::indented
                                                          : JsonSpacing::compact);
  writer.write(explanation);
  return writer.take();
}

std::string recordWithExplanation(const TamzoVastAd& ad, const Explanation& explanation,
                                  JsonLayout layout) {
  const std::string record = recordAsJson(ad, layout);
  const std::string reasons = explanationAsJson(explanation, layout);
  return layout == JsonLayout::indented
             ? "{\n  \"record\": " + indented(record) +
                   ",\n  \"explanation\": " + indented(reasons) + "\n}"
             : R"({"record": )" + record + R"(, "explanation": )" + reasons + "}";
}

}  // namespace tamzo::explain
