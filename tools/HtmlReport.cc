#include "tools/HtmlReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>
#include <utility>

#include "base/Utf8.h"
#include "base/WhiteSpace.h"
#include "explain/Places.h"
#include "explain/Words.h"
#include "tamzo/base/JsonValue.h"
#include "tamzo/sdk/TamzoHost.h"
#include "tamzo/vast/RecordJson.h"
#include "tools/HtmlText.h"
#include "vast/extensions/VendorBlock.h"

namespace tamzo::command {
namespace {

// Of one table, and of one document: a page must open on a phone.
constexpr std::size_t kMostRows = 500;
constexpr std::size_t kMostLines = 3000;
constexpr std::size_t kMostBytes = std::size_t{512} << 10U;
constexpr std::size_t kMostOfRecord = std::size_t{256} << 10U;
constexpr std::size_t kMostOfCell = 2000;

using Row = std::vector<std::string>;  // cells as HTML

std::string cell(std::string_view text) {
  if (text.empty()) {
    return "<span class=\"dim\">-</span>";
  }
  const std::string_view shown = beginningOf(text, kMostOfCell);
  return htmlText(shown) + (shown.size() < text.size() ? "&hellip;" : "");
}
std::string cell(const Text& text) { return cell(trimWhiteSpace(text)); }
template <typename Number>
std::string cell(const std::optional<Number>& number) {
  return number ? std::to_string(*number) : cell(std::string_view());
}

class Page {
 public:
  explicit Page(std::string_view title) : html_(htmlHead(title)) {}

  void raw(std::string_view html) { html_ += html; }
  void begin(std::string_view title, std::size_t count, bool isOpen = false) {
    raw(fmt::format("<details{}><summary>{} ({})</summary><div>\n", isOpen ? " open" : "", title,
                    count));
  }
  void begin(std::string_view title) {
    raw(fmt::format("<details><summary>{}</summary><div>\n", title));
  }
  void end() { raw("</div></details>\n"); }

  void table(const std::vector<std::string_view>& titles, const std::vector<Row>& rows,
             std::size_t all) {
    raw("<table><thead><tr>");
    for (const std::string_view title : titles) {
      raw(fmt::format("<th scope=\"col\">{}</th>", title));
    }
    raw("</tr></thead><tbody>\n");
    for (const Row& row : rows) {
      raw("<tr>");
      for (const std::string& one : row) {
        raw("<td>" + one + "</td>");
      }
      raw("</tr>\n");
    }
    raw("</tbody></table>\n");
    if (all > rows.size()) {
      raw(fmt::format("<p class=\"dim\">and {} more</p>\n", all - rows.size()));
    }
  }

  std::string take() {
    raw("</body>\n</html>\n");
    return std::move(html_);
  }

 private:
  std::string html_;
};

std::string statusOfHop(const explain::HopReport& hop) {
  if (!hop.fetch) {
    return "not fetched";
  }
  const double time = hop.fetch->milliseconds.total;
  return explain::statusInWords(*hop.fetch) + (time > 0.0 ? fmt::format(", {:.0f} ms", time) : "");
}

// The excerpt, with the spot marked.
std::string markedExcerpt(const explain::Place& place) {
  const std::string_view text = place.excerpt;
  const std::size_t at = explain::byteOf(text, place.spot);
  const std::size_t width = at < text.size() ? characterAt(text, at).bytes : 0;
  return htmlText(text.substr(0, at)) + "<mark>" +
         (width == 0 ? "&nbsp;" : htmlText(text.substr(at, width))) + "</mark>" +
         htmlText(text.substr(at + width));
}

void addVerdict(Page& page, const explain::Explanation& explanation) {
  const explain::Finding* error = errorOf(explanation);
  page.raw(fmt::format("<header>\n<p class=\"verdict {}\">{}{}</p>\n<h1>{}</h1>\n",
                       nameOf(explanation.verdict), explain::verdictInWords(explanation),
                       error == nullptr ? "" : fmt::format(" <code>[{}]</code>", error->id),
                       htmlText(explanation.sentence)));
  if (error != nullptr && error->place) {
    page.raw("<pre class=\"excerpt\">" + markedExcerpt(*error->place) + "</pre>\n");
  }
  if (error != nullptr) {
    if (const std::string_view read = detailOf(*error, "read"); !read.empty()) {
      page.raw("<p>read as</p><pre class=\"excerpt\">" +
               htmlText(JsonValue::parse(Text(read)).asText()) + "</pre>\n");
    }
    page.raw("<p>" + htmlText(error->advice) + "</p>\n");
  }
  page.raw("</header>\n");
}

void addChain(Page& page, const explain::Explanation& explanation) {
  const explain::Finding* error = errorOf(explanation);
  page.raw("<h2>Chain</h2>\n<ol class=\"chain\">\n");
  for (const explain::HopReport& hop : explanation.hops) {
    const bool isBad = error != nullptr && error->hop == hop.number;
    page.raw(fmt::format("<li{}><b>{}. {}</b><br>{}<br>VAST {} {}", isBad ? " class=\"bad\"" : "",
                         hop.number, cell(explain::originOf(hop)), statusOfHop(hop),
                         cell(hop.version), explain::inWords(hop.kind)));
    if (hop.adSystem.hasCharacters()) {
      page.raw("<br><span class=\"dim\">" + cell(hop.adSystem) + "</span>");
    }
    page.raw("</li>\n");
  }
  page.raw("</ol>\n");
}

void addFact(Page& page, std::string_view name, const std::string& value) {
  page.raw(fmt::format("<div><dt>{}</dt><dd>{}</dd></div>\n", name, value));
}

std::size_t countTrackers(const TamzoVastAd& ad) {
  std::size_t count = 0;
  for (const TrackerMap::Entry& entry : *ad.trackers()) {
    count += entry.events->size();
  }
  return count;
}

void addFacts(Page& page, const TamzoVastAd& ad, const explain::Explanation& explanation) {
  page.raw("<dl class=\"facts\">\n");
  addFact(page, "ad id", cell(ad.adID()));
  addFact(page, "VAST version", cell(ad.vpaidVastVersion()));
  addFact(page, "duration",
          ad.duration() == nullptr ? cell(std::string_view())
                                   : fmt::format("{} s", ad.duration()->durationInSeconds()));
  addFact(page, "skip offset", fmt::format("{} ms", ad.skipOffsetMillis()));
  addFact(page, "media files", std::to_string(ad.mediaFiles()->size()));
  addFact(page, "trackers", std::to_string(countTrackers(ad)));
  addFact(page, "findings", std::to_string(explanation.findings.size()));
  addFact(page, "click-through", cell(ad.clickThrough()));
  page.raw("</dl>\n");
}

void addFindings(Page& page, const explain::Explanation& explanation) {
  page.begin("Findings", explanation.findings.size(), true);
  for (const explain::Finding& finding : explanation.findings) {
    std::string place = finding.hop ? fmt::format("hop {}", *finding.hop) : "";
    if (finding.place) {
      place += fmt::format(", <a href=\"#hop{}\">line {}</a>, column {}", *finding.hop,
                           finding.place->line, finding.place->column);
    }
    page.raw(
        fmt::format("<p><b class=\"{0}\">{0}</b> {1} <code>[{2}]</code><br>{3}<br>"
                    "<span class=\"dim\">{4}</span></p>\n",
                    nameOf(finding.severity), place, finding.id, htmlText(finding.message),
                    htmlText(finding.advice)));
    if (const std::string_view more = detailOf(finding, "more"); !more.empty()) {
      page.raw(fmt::format("<p class=\"dim\">and {} more of this kind</p>\n", more));
    }
    if (finding.place && finding.severity != explain::Severity::error) {
      page.raw("<pre class=\"excerpt\">" + markedExcerpt(*finding.place) + "</pre>\n");
    }
  }
  page.end();
}

void addMediaFiles(Page& page, const explain::Explanation& explanation) {
  page.begin("Media files", explanation.mediaFiles.size());
  std::vector<Row> rows;
  for (const explain::MediaFileReport& file : explanation.mediaFiles) {
    if (rows.size() == kMostRows) {
      break;
    }
    rows.push_back({file.why.empty() ? "<b class=\"playable\">taken</b>" : htmlText(file.why),
                    cell(file.type), cell(file.delivery),
                    cell(file.width) + "x" + cell(file.height), std::to_string(file.hop),
                    cell(file.line), cell(file.url)});
  }
  page.table({"taken", "type", "delivery", "size", "hop", "line", "URL"}, rows,
             explanation.mediaFiles.size());
  page.end();
}

// When an event is fired, in parts of the whole; nothing for one that has no such time.
std::optional<double> momentOf(std::string_view event, std::string_view offset, double duration) {
  constexpr std::pair<std::string_view, double> kMoments[] = {
      {"Impression", 0.0}, {"creativeView", 0.0},   {"start", 0.0},   {"firstQuartile", 0.25},
      {"midpoint", 0.5},   {"thirdQuartile", 0.75}, {"complete", 1.0}};
  for (const auto& [name, moment] : kMoments) {
    if (event == name) {
      return moment;
    }
  }
  const JsonValue seconds = JsonValue::parse(Text(offset));
  if (offset.empty() || duration <= 0.0 || seconds.kind() != JsonValue::Kind::number) {
    return std::nullopt;
  }
  return std::clamp(seconds.asNumber() / duration, 0.0, 1.0);
}

void addTimeLine(Page& page, const TamzoVastAd& ad) {
  constexpr double kWidth = 680.0;
  constexpr std::size_t kMostMarks = 60;
  const double duration =
      ad.duration() == nullptr ? 0.0 : static_cast<double>(ad.duration()->durationInSeconds());
  std::string marks;
  std::size_t count = 0;
  for (const TrackerMap::Entry& entry : *ad.trackers()) {
    std::optional<double> last;
    for (const auto& event : *entry.events) {
      const auto moment = momentOf(entry.name, event->offset(), duration);
      if (!moment || moment == last || count == kMostMarks) {
        continue;
      }
      last = moment;
      const double x = 10.0 + *moment * kWidth;
      const std::size_t y = 30 + 16 * count++;
      const bool isLate = *moment > 0.6;
      marks += fmt::format(
          "<line class=\"axis\" x1=\"{0:.0f}\" y1=\"14\" x2=\"{0:.0f}\" y2=\"{1}\"/>"
          "<circle class=\"bar\" cx=\"{0:.0f}\" cy=\"{1}\" r=\"4\"/>"
          "<text x=\"{2:.0f}\" y=\"{3}\"{4}>{5}</text>\n",
          x, y, isLate ? x - 8 : x + 8, y + 4, isLate ? " text-anchor=\"end\"" : "",
          htmlText(beginningOf(entry.name, 60)));
    }
  }
  if (count > 0) {
    page.raw(
        fmt::format("<svg viewBox=\"0 0 700 {}\" width=\"700\" role=\"img\" aria-label=\"The "
                    "trackers on the ad's time line\"><line class=\"axis\" x1=\"10\" y1=\"14\" "
                    "x2=\"690\" y2=\"14\"/><text x=\"10\" y=\"10\">0 s</text><text x=\"690\" "
                    "y=\"10\" text-anchor=\"end\">{} s</text>\n{}</svg>\n",
                    40 + 16 * count, duration, marks));
  }
}

void addTrackers(Page& page, const TamzoVastAd& ad, const explain::Explanation& explanation) {
  page.begin("Trackers", countTrackers(ad));
  addTimeLine(page, ad);
  std::vector<Row> rows;
  auto hops = explanation.trackerHops.begin();
  for (const TrackerMap::Entry& entry : *ad.trackers()) {
    std::size_t i = 0;
    for (const auto& event : *entry.events) {
      if (rows.size() < kMostRows) {
        rows.push_back({cell(entry.name), std::to_string(hops->hops[i++]), cell(event->offset()),
                        cell(event->url())});
      }
    }
    ++hops;
  }
  page.table({"event", "hop", "at (s)", "URL"}, rows, countTrackers(ad));
  page.end();
}

void addCompanions(Page& page, const TamzoVastAd& ad) {
  std::vector<Row> rows;
  std::string drawn;
  std::size_t count = 0;
  double x = 1.0;
  double height = 0.0;
  for (const auto& document : *ad.companionAds()) {
    for (const TamzoCompanion& companion : document->companions()) {
      ++count;
      constexpr double kScale = 0.4;
      constexpr double kMostPixels = 2000.0;
      const double w = kScale * std::clamp<double>(companion.width().value_or(0), 0.0, kMostPixels);
      const double h =
          kScale * std::clamp<double>(companion.height().value_or(0), 0.0, kMostPixels);
      if (w > 0.0 && h > 0.0 && x + w < 4000.0) {
        drawn += fmt::format(
            "<rect class=\"ad\" x=\"{:.0f}\" y=\"1\" width=\"{:.0f}\" height=\"{:.0f}"
            "\"/><text x=\"{:.0f}\" y=\"14\">{}x{}</text>\n",
            x, w, h, x + 4, *companion.width(), *companion.height());
        x += std::max(w, 60.0) + 10.0;
        height = std::max(height, h);
      }
      if (rows.size() < kMostRows) {
        const auto images = companion.staticResources();
        rows.push_back(
            {cell(companion.id()), cell(companion.width()) + "x" + cell(companion.height()),
             cell(images.empty() ? Text() : images.front().url), cell(companion.clickThrough())});
      }
    }
  }
  page.begin("Companions", count);
  if (!drawn.empty()) {
    page.raw(
        fmt::format("<svg viewBox=\"0 0 {0:.0f} {1:.0f}\" width=\"{0:.0f}\" role=\"img\" "
                    "aria-label=\"The companions, to scale\">\n{2}</svg>\n",
                    x, std::max(height, 18.0) + 4, drawn));
  }
  page.table({"id", "size", "image", "click-through"}, rows, count);
  page.end();
}

void addVerifications(Page& page, const TamzoVastAd& ad) {
  std::vector<Row> rows;
  for (const auto& provider : *ad.measurementProviderList()) {
    if (rows.size() < kMostRows) {
      const auto scripts = provider->javaScriptResources();
      rows.push_back(
          {cell(provider->vendor()), cell(scripts.empty() ? Text() : scripts.front().url)});
    }
  }
  page.begin("Verifications", ad.measurementProviderList()->size());
  page.table({"vendor", "script"}, rows, ad.measurementProviderList()->size());
  page.end();
}

// What the settings are where no ad server says anything.
const JsonValue& defaultRecord() {
  static const JsonValue record = [] {
    TamzoHost host;
    host.writeLog = [](std::string_view) {};
    return JsonValue::parse(Text(recordAsJson(*TamzoVastAd::initWithVast(Text(""), host))));
  }();
  return record;
}

void addVendorSettings(Page& page, const JsonValue& record) {
  std::vector<Row> rows;
  std::size_t set = 0;
  for (const VendorSetting& setting : vendorSettings()) {
    const JsonValue value = record.find(setting.property);
    if (value.isNil()) {
      continue;  // of several properties, or a part of one
    }
    const std::string written = value.dump();
    const bool isSet = written != defaultRecord().find(setting.property).dump();
    set += isSet ? 1 : 0;
    rows.push_back({htmlText(setting.element), isSet ? "<b>set</b>" : "default",
                    cell(std::string_view(written))});
  }
  page.begin("Vendor settings that were set", set);
  page.table({"element", "", "value"}, rows, rows.size());
  page.end();
}

// ---- Documents -----------------------------------------------------------------------------

std::size_t beginOfLine(std::string_view text, std::size_t line) {
  std::size_t at = 0;
  for (; line > 1 && at < text.size(); --line) {
    at = std::min(text.find('\n', at), text.size() - 1) + 1;
  }
  return at;
}

// The lines of a document around a spot.
struct Shown {
  std::size_t firstLine = 1;
  std::string_view text;
};

Shown partOf(std::string_view document, const explain::Place* spot) {
  Shown shown;
  const std::size_t line = spot == nullptr ? 1 : spot->line;
  shown.firstLine = line > kMostLines / 2 ? line - kMostLines / 2 : 1;
  const std::size_t begin = beginOfLine(document, shown.firstLine);
  shown.text = document.substr(begin);
  std::size_t end = 0;
  for (std::size_t i = 0; i < kMostLines && end < shown.text.size(); ++i) {
    const std::size_t next = std::min(shown.text.find('\n', end), shown.text.size() - 1) + 1;
    if (next > kMostBytes) {
      end = end == 0 ? kMostBytes : end;
      break;
    }
    end = next;
  }
  shown.text = beginningOf(shown.text, end);
  return shown;
}

std::string withMark(const Shown& shown, const explain::Place* spot) {
  if (spot == nullptr || spot->line < shown.firstLine) {
    return htmlText(shown.text);
  }
  std::size_t at = beginOfLine(shown.text, spot->line - shown.firstLine + 1);
  if (spot->line == 1) {
    at = byteOrderMarkOf(shown.text);
  }
  at += explain::byteOf(shown.text.substr(at), spot->column - 1);
  const std::size_t end = std::min(shown.text.find_first_of(" \t\r\n>", at), at + 40);
  const std::size_t past = std::min(std::max(end, at), shown.text.size());
  const std::string_view marked = shown.text.substr(std::min(at, past), past - std::min(at, past));
  return htmlText(shown.text.substr(0, std::min(at, past))) + "<mark>" +
         (marked.empty() ? "&nbsp;" : htmlText(marked)) + "</mark>" +
         htmlText(shown.text.substr(past));
}

const explain::Place* firstPlaceIn(const explain::Explanation& explanation, std::int32_t hop) {
  for (const explain::Finding& finding : explanation.findings) {
    if (finding.hop == hop && finding.place) {
      return &*finding.place;
    }
  }
  return nullptr;
}

void addDocument(Page& page, const explain::HopReport& hop,
                 const explain::Explanation& explanation) {
  const std::string_view document = hop.document;
  const explain::Place* spot = firstPlaceIn(explanation, hop.number);
  const explain::Finding* error = errorOf(explanation);
  const bool isOpen = error != nullptr && error->hop == hop.number && error->place;
  page.raw(
      fmt::format("<details id=\"hop{0}\"{1}><summary>Document of hop {0}, {2} bytes</summary>"
                  "<div>\n",
                  hop.number, isOpen ? " open" : "", document.size()));
  if (!hop.url.isNil()) {
    page.raw("<p>" + cell(hop.url) + "</p>\n");
  }
  if (hop.document.isNil()) {
    page.raw("<p class=\"dim\">none came</p>\n");
  } else {
    const Shown shown = partOf(document, spot);
    const auto lines =
        static_cast<std::size_t>(std::count(shown.text.begin(), shown.text.end(), '\n'));
    page.raw("<div class=\"source\"><pre aria-hidden=\"true\">");
    for (std::size_t i = 0; i <= lines; ++i) {
      page.raw(std::to_string(shown.firstLine + i) + "\n");
    }
    page.raw("</pre><pre>" + withMark(shown, spot) + "</pre></div>\n");
    if (shown.text.size() < document.size()) {
      page.raw(fmt::format("<p class=\"dim\">{} of {} bytes are shown.</p>\n", shown.text.size(),
                           document.size()));
    }
  }
  page.end();
}

void addText(Page& page, std::string_view title, std::string_view text) {
  page.begin(title);
  const std::string_view shown = beginningOf(text, kMostOfRecord);
  page.raw("<pre class=\"plain\">" + htmlText(shown) + "</pre>\n");
  if (shown.size() < text.size()) {
    page.raw(
        fmt::format("<p class=\"dim\">{} of {} bytes are shown.</p>\n", shown.size(), text.size()));
  }
  page.end();
}

}  // namespace

std::string htmlReport(const TamzoVastAd& ad, const explain::Explanation& explanation,
                       const std::vector<std::string>& log) {
  const std::string record = recordAsJson(ad, JsonLayout::indented, RecordContent::withoutResponse);
  Page page("VAST: " + explanation.sentence);
  addVerdict(page, explanation);
  addChain(page, explanation);
  addFacts(page, ad, explanation);
  page.raw("<main>\n");
  addFindings(page, explanation);
  addMediaFiles(page, explanation);
  addTrackers(page, ad, explanation);
  addCompanions(page, ad);
  addVerifications(page, ad);
  addVendorSettings(page, JsonValue::parse(Text(record)));
  for (const explain::HopReport& hop : explanation.hops) {
    addDocument(page, hop, explanation);
  }
  if (!log.empty()) {
    std::string lines;
    for (const std::string& line : log) {
      lines += line + "\n";
    }
    addText(page, "Log", lines);
  }
  addText(page, "Record as JSON, without the response", record);
  page.raw("</main>\n");
  return page.take();
}

}  // namespace tamzo::command
