#include "tools/TextReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <variant>
#include <vector>

#include "base/Utf8.h"
#include "base/WhiteSpace.h"
#include "explain/Places.h"
#include "explain/Words.h"
#include "tools/Printable.h"

namespace tamzo::command {
namespace {

// A longer cell is written whole, but does not widen its column.
constexpr std::size_t kWidestColumn = 48;
constexpr std::size_t kLabelWidth = 23;
constexpr std::size_t kGap = 2;

using Row = std::vector<std::string>;

// Counting one column for every character, as long as no terminal is there.
std::size_t charactersOf(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), startsCharacter));
}

std::string orDash(const Text& text) {
  return text.hasCharacters() ? std::string(trimWhiteSpace(text)) : "-";
}

template <typename Number>
std::string orDash(const std::optional<Number>& number) {
  return number ? fmt::format("{}", *number) : "-";
}

std::string sizeOf(const std::optional<std::int32_t>& width,
                   const std::optional<std::int32_t>& height) {
  return fmt::format("{}x{}", orDash(width), orDash(height));
}

// Takes from the widest until all of them, and the gaps, fit into so many columns. False where they
// do not, however narrow.
bool shrink(std::vector<std::size_t>& widths, std::size_t columns) {
  constexpr std::size_t kNarrowest = 10;
  std::size_t sum = kGap * widths.size();
  for (const std::size_t width : widths) {
    sum += width;
  }
  while (sum > columns) {
    const auto widest = std::max_element(widths.begin(), widths.end());
    if (*widest <= kNarrowest) {
      return false;
    }
    // At once to where it is the widest no more.
    std::size_t next = kNarrowest;
    for (const std::size_t width : widths) {
      next = width < *widest ? std::max(next, width) : next;
    }
    const std::size_t taken = std::clamp<std::size_t>(*widest - next, 1, sum - columns);
    *widest -= taken;
    sum -= taken;
  }
  return true;
}

/// Texts are handed in as they stand in the record.
class Report {
 public:
  explicit Report(const ReportStyle& style) : style_(style) {}

  void heading(std::string_view title) {
    out_ += fmt::format("\n{}\n", styled("1", cut(std::string(title), 0)));
  }

  void line(std::string_view label, std::string_view value) {
    labelled(label, kLabelWidth - 1, shown(value));
  }

  /// A line for a text that is there, and none for one that is not.
  void lineIfAny(std::string_view label, const Text& value) {
    if (value.hasCharacters()) {
      line(label, orDash(value));
    }
  }

  void table(const Row& titles, std::vector<Row> rows) {
    for (Row& row : rows) {
      for (std::string& cell : row) {
        cell = shown(cell);
      }
    }
    std::vector<std::size_t> widths = widthsOf(titles, rows);
    if (isOnTerminal() && !shrink(widths, style_.columns)) {
      stack(titles, rows);
      return;
    }
    writeRow(titles, widths, "2");
    for (const Row& row : rows) {
      writeRow(row, widths, "");
    }
  }

  void text(std::string_view text) { out_ += text; }

  /// A text that stands as it is, on a line of its own or several, never cut.
  void whole(std::string_view text) { out_ += shown(text); }

  /// The line of a document, with a mark under the spot.
  void excerpt(const std::string& label, const explain::Place& place) {
    const std::size_t at = explain::byteOf(place.excerpt, place.spot);
    std::string before = shown(std::string_view(place.excerpt).substr(0, at));
    std::string after = shown(std::string_view(place.excerpt).substr(at));
    std::string front = "  " + label;
    const std::size_t room = isOnTerminal() ? style_.columns : SIZE_MAX;
    // Around the spot, where a terminal has no room for all of it.
    if (widthOf(front) + widthOf(before) + widthOf(after) > room) {
      const std::size_t left = room > widthOf(front) ? room - widthOf(front) : 0;
      before = lastColumns(before, left / 2);
      after = firstColumns(after, left - std::min(left, widthOf(before)));
    }
    out_ += styled("2", front) + before + after + '\n';
    out_.append(widthOf(front) + widthOf(before), ' ');
    out_ += styled("1;31", "^") + '\n';
  }

  std::string styled(std::string_view code, std::string_view text) const {
    return style_.withColours && !code.empty() ? fmt::format("\x1b[{}m{}\x1b[0m", code, text)
                                               : std::string(text);
  }

  std::string take() { return std::move(out_); }

 private:
  std::string firstColumns(std::string_view text, std::size_t columns) const {
    std::size_t at = 0;
    while (at < text.size()) {
      const std::size_t next = at + characterAt(text, at).bytes;
      if (widthOf(text.substr(0, next)) > columns) {
        break;
      }
      at = next;
    }
    return std::string(text.substr(0, at));
  }
  std::string lastColumns(std::string_view text, std::size_t columns) const {
    while (!text.empty() && widthOf(text) > columns) {
      text.remove_prefix(characterAt(text, 0).bytes);
    }
    return std::string(text);
  }

  bool isOnTerminal() const { return style_.columns > 0; }
  std::string shown(std::string_view text) const {
    return isOnTerminal() ? shownOnTerminal(text) : printable(text);
  }
  std::size_t widthOf(std::string_view text) const {
    return isOnTerminal() ? columnsOf(text) : charactersOf(text);
  }

  std::vector<std::size_t> widthsOf(const Row& titles, const std::vector<Row>& rows) const {
    std::vector<std::size_t> widths;
    for (std::size_t column = 0; column < titles.size(); ++column) {
      std::size_t width = widthOf(titles[column]);
      for (const Row& row : rows) {
        const std::size_t cell = widthOf(row[column]);
        width = isOnTerminal() || cell <= kWidestColumn ? std::max(width, cell) : width;
      }
      widths.push_back(width);
    }
    return widths;
  }

  // What a terminal shows of it behind so many columns.
  std::string cut(const std::string& text, std::size_t before) const {
    return isOnTerminal() ? cutInTheMiddle(text, style_.columns - std::min(style_.columns, before))
                          : text;
  }

  // A label in so many columns and its value, on two lines where one has no room for both.
  void labelled(std::string_view label, std::size_t width, const std::string& value) {
    constexpr std::size_t kLeastRoom = 10;
    const std::size_t before = kGap + width + 1;
    out_ += "  " + styled("2", cut(std::string(label), kGap));
    if (isOnTerminal() && style_.columns < before + kLeastRoom) {
      out_ += "\n    " + cut(value, 2 * kGap);
    } else {
      out_.append(width + 1 - std::min(width, label.size()), ' ');
      out_ += cut(value, before);
    }
    out_ += '\n';
  }

  // A table for which the terminal is too narrow: each row by itself, cell under cell.
  void stack(const Row& titles, const std::vector<Row>& rows) {
    std::size_t width = 0;
    for (const std::string& title : titles) {
      width = std::max(width, title.size() + 1);
    }
    for (const Row& row : rows) {
      out_ += &row == &rows.front() ? "" : "\n";
      for (std::size_t column = 0; column < titles.size(); ++column) {
        labelled(titles[column], width, row[column]);
      }
    }
  }

  void writeRow(const Row& row, const std::vector<std::size_t>& widths, std::string_view style) {
    out_ += "  ";
    for (std::size_t column = 0; column < row.size(); ++column) {
      const std::string cell =
          isOnTerminal() ? cutInTheMiddle(row[column], widths[column]) : row[column];
      out_ += styled(style, cell);
      if (column + 1 < row.size()) {
        const std::size_t width = widthOf(cell);
        out_.append(kGap + (width < widths[column] ? widths[column] - width : 0), ' ');
      }
    }
    out_ += '\n';
  }

  ReportStyle style_;
  std::string out_;
};

std::string titled(std::string_view title, std::size_t count) {
  return fmt::format("{} ({})", title, count);
}

std::string placeInWords(const explain::Finding& finding) {
  std::string place = finding.hop ? fmt::format("hop {}", *finding.hop) : "";
  if (finding.place) {
    place += fmt::format(", line {}, column {}", finding.place->line, finding.place->column);
  }
  return place;
}

void reportTagAsRead(Report& report, const explain::Finding& finding) {
  if (const std::string_view read = detailOf(finding, "read"); !read.empty()) {
    report.text("  read as ");
    report.whole(JsonValue::parse(Text(read)).asText());
    report.text("\n");
  }
}

// How far the fetch came, and how long that took.
std::string phasesOf(const FetchResult& fetch) {
  const FetchTimes& times = fetch.milliseconds;
  std::string phases;
  if (const double connect = times.connect + times.tls; connect > 0.0) {
    phases = fmt::format("connected in {:.0f} ms, ", connect);
  }
  const bool hasAnswer = fetch.status != 0 || fetch.bytes > 0;
  if (hasAnswer && times.firstByte > 0.0) {
    phases += fmt::format("first byte after {:.0f} ms, ", times.firstByte);
  }
  phases += hasAnswer ? fmt::format("{} bytes", fetch.bytes)
            : phases.empty()
                ? std::string(fetch.failure == FetchFailure::tls ? "no secure connection"
                                                                 : "no connection")
                : std::string("no answer");
  return fmt::format("{} in {:.1f} s", phases, times.total / 1000.0);
}

// What was asked for, so that whoever is to be called is known.
void reportFetch(Report& report, const explain::HopReport& hop) {
  if (!hop.fetch) {
    return;
  }
  report.text(fmt::format("  hop {} asked for ", hop.number));
  report.whole(hop.url);
  if (hop.fetch->milliseconds.total > 0.0) {
    report.text("\n  " + phasesOf(*hop.fetch));
  }
  report.text("\n");
}

void reportError(Report& report, const explain::Explanation& explanation,
                 const explain::Finding& error) {
  report.text(report.styled("1;31", explain::verdictInWords(explanation)) + "  ");
  report.whole(explanation.sentence);
  report.text("  " + report.styled("2", fmt::format("[{}]", error.id)) + "\n");
  if (error.place) {
    report.excerpt(fmt::format("line {}: ", error.place->line), *error.place);
  }
  reportTagAsRead(report, error);
  if (error.id == "fetch-failed" && error.hop) {
    reportFetch(report, explanation.hops[static_cast<std::size_t>(*error.hop) - 1]);
  }
  if (!error.advice.empty()) {
    report.text("  ");
    report.whole(error.advice);
    report.text("\n");
  }
}

void reportOutcome(Report& report, const explain::Explanation& explanation) {
  if (const explain::Finding* error = errorOf(explanation)) {
    reportError(report, explanation, *error);
  } else {
    report.text(report.styled("1;32", explain::verdictInWords(explanation)) + "  ");
    report.whole(explanation.sentence);
    report.text("\n");
  }
}

void reportFindings(Report& report, const explain::Explanation& explanation) {
  const std::size_t first = errorOf(explanation) == nullptr ? 0 : 1;
  if (explanation.findings.size() == first) {
    return;
  }
  report.heading(titled("Findings", explanation.findings.size() - first));
  for (std::size_t i = first; i < explanation.findings.size(); ++i) {
    const explain::Finding& finding = explanation.findings[i];
    const bool isWarning = finding.severity == explain::Severity::warning;
    report.text("  " + report.styled(isWarning ? "1;33" : "1", nameOf(finding.severity)) + "  ");
    report.whole(placeInWords(finding) + ": " + finding.message);
    report.text("  " + report.styled("2", fmt::format("[{}]", finding.id)) + "\n");
    if (const std::string_view more = detailOf(finding, "more"); !more.empty()) {
      report.text(fmt::format("    and {} more of this kind\n", more));
    }
    if (!finding.advice.empty()) {
      report.text("    ");
      report.whole(finding.advice);
      report.text("\n");
    }
  }
}

void reportChain(Report& report, const explain::Explanation& explanation) {
  report.heading(titled("Chain", explanation.hops.size()));
  std::string row;
  for (const explain::HopReport& hop : explanation.hops) {
    row += row.empty() ? "" : " \xE2\x80\xBA ";
    row += fmt::format("{} {} {}", hop.number, explain::originOf(hop), explain::inWords(hop.kind));
  }
  report.text("  ");
  report.whole(row);
  report.text("\n");
  std::vector<Row> rows;
  for (const explain::HopReport& hop : explanation.hops) {
    const std::size_t bytes = hop.fetch ? hop.fetch->bytes : hop.document.view().size();
    const std::string time = hop.fetch ? fmt::format("{:.0f}", hop.fetch->milliseconds.total) : "-";
    rows.push_back({std::to_string(hop.number),
                    hop.fetch ? explain::statusInWords(*hop.fetch) : "-", time,
                    std::to_string(bytes), orDash(hop.version),
                    std::string(explain::inWords(hop.kind)), orDash(hop.adSystem),
                    hop.url.isNil() ? std::string(explain::nameOf(hop.source)) : orDash(hop.url)});
  }
  report.table({"hop", "fetch", "ms", "bytes", "VAST", "kind", "AdSystem", "from"},
               std::move(rows));
}

void reportAd(Report& report, const TamzoVastAd& ad) {
  report.heading("Ad");
  report.line("id", orDash(ad.adID()));
  report.line("VAST version", orDash(ad.vpaidVastVersion()));
  const bool hasNextTag = !ad.vastTagURI().isSameObject(ad.vastResponseStr()) &&
                          ad.vastTagURI().view().starts_with("http");
  if (hasNextTag) {
    report.line("last tag URL", orDash(ad.vastTagURI()));
  }
  if (ad.jsVPaidPresent()) {
    report.line("unit", "JavaScript VPAID");
  }
  if (ad.duration() != nullptr) {
    report.line("duration", fmt::format("{} ({} s)", orDash(ad.duration()->text()),
                                        ad.duration()->durationInSeconds()));
  }
  report.line("skip offset", fmt::format("{} ms", ad.skipOffsetMillis()));
  report.lineIfAny("click-through", ad.clickThrough());
  if (ad.expires() != 0.0) {
    report.line("expires", fmt::format("{}", ad.expires()));
  }
  report.lineIfAny("universal id registry", ad.univversalIDRegistry());
  report.lineIfAny("universal id", ad.universalIDValue());
  if (ad.isImaEnabled()) {
    report.line("IMA tracking", "on: tag URLs are not followed");
  }
  if (ad.bid() != 0.0) {
    report.line("bid", fmt::format("{}", ad.bid()));
  }
  for (const Text& category : *ad.categoryArray()) {
    report.line("category", orDash(category));
  }
}

void reportMediaFiles(Report& report, const TamzoVastAd& ad) {
  report.heading(titled("Media files", ad.mediaFiles()->size()));
  if (ad.mediaFiles()->empty()) {
    return;
  }
  std::vector<Row> rows;
  for (const auto& file : *ad.mediaFiles()) {
    rows.push_back({orDash(file->type()), orDash(file->delivery()),
                    sizeOf(file->width(), file->height()), orDash(file->bitrate()),
                    orDash(file->url())});
  }
  report.table({"type", "delivery", "size", "kbit/s", "URL"}, rows);
}

void reportFilesLeft(Report& report, const explain::Explanation& explanation) {
  std::vector<Row> rows;
  for (const explain::MediaFileReport& file : explanation.mediaFiles) {
    if (!file.why.empty()) {
      rows.push_back({std::to_string(file.hop), file.line ? std::to_string(*file.line) : "-",
                      orDash(file.type), sizeOf(file.width, file.height), file.why});
    }
  }
  if (!rows.empty()) {
    report.heading(titled("Media files not taken", rows.size()));
    report.table({"hop", "line", "type", "size", "why"}, std::move(rows));
  }
}

void reportTrackers(Report& report, const TamzoVastAd& ad,
                    const explain::Explanation& explanation) {
  std::vector<Row> rows;
  auto hops = explanation.trackerHops.begin();
  for (const TrackerMap::Entry& entry : *ad.trackers()) {
    std::size_t i = 0;
    for (const auto& event : *entry.events) {
      rows.push_back({std::string(entry.name), std::to_string(hops->hops[i++]),
                      orDash(event->offset()), orDash(event->url())});
    }
    ++hops;
  }
  report.heading(titled("Trackers", rows.size()));
  if (!rows.empty()) {
    report.table({"event", "hop", "at (s)", "URL"}, rows);
  }
}

std::string resourceOf(const TamzoCompanion& companion) {
  if (const auto images = companion.staticResources(); !images.empty()) {
    return orDash(images.front().url);
  }
  if (const auto frames = companion.iframeResources(); !frames.empty()) {
    return orDash(frames.front());
  }
  return companion.htmlResources().empty() ? "-" : "(HTML)";
}

void reportCompanions(Report& report, const TamzoVastAd& ad) {
  std::vector<Row> rows;
  for (const auto& document : *ad.companionAds()) {
    for (const TamzoCompanion& companion : document->companions()) {
      rows.push_back({orDash(companion.id()), sizeOf(companion.width(), companion.height()),
                      resourceOf(companion), orDash(companion.clickThrough())});
    }
  }
  if (!rows.empty()) {
    report.heading(titled("Companions", rows.size()));
    report.table({"id", "size", "resource", "click-through"}, rows);
  }
}

void reportProviders(Report& report, const TamzoVastAd& ad) {
  std::vector<Row> rows;
  for (const auto& provider : *ad.measurementProviderList()) {
    const auto scripts = provider->javaScriptResources();
    rows.push_back(
        {orDash(provider->vendor()), scripts.empty() ? "-" : orDash(scripts.front().url)});
  }
  if (!rows.empty()) {
    report.heading(titled("Measurement providers", rows.size()));
    report.table({"vendor", "script"}, rows);
  }
}

void reportExtraActions(Report& report, const TamzoVastAd& ad) {
  if (!ad.extraActions().isList() || ad.extraActions().list()->empty()) {
    return;
  }
  std::vector<Row> rows;
  for (const TamzoExtraActions::Entry& entry : *ad.extraActions().list()) {
    if (const auto* icon = std::get_if<DDXMLElement>(&entry)) {
      rows.push_back({"icon", orDash(icon->attributeValue("program"))});
    } else {
      rows.push_back({"JSON", std::get<JsonValue>(entry).dump()});
    }
  }
  report.heading(titled("Icons and extra actions", rows.size()));
  report.table({"kind", "what"}, rows);
}

}  // namespace

std::string textReport(const TamzoVastAd& ad, const explain::Explanation& explanation,
                       const ReportStyle& style) {
  Report report(style);
  reportOutcome(report, explanation);
  reportFindings(report, explanation);
  reportChain(report, explanation);
  reportAd(report, ad);
  reportMediaFiles(report, ad);
  reportFilesLeft(report, explanation);
  reportTrackers(report, ad, explanation);
  reportCompanions(report, ad);
  reportProviders(report, ad);
  reportExtraActions(report, ad);
  return report.take();
}

}  // namespace tamzo::command
