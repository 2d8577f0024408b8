#include "tools/TextReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <variant>
#include <vector>

#include "base/WhiteSpace.h"
#include "tamzo/vast/ErrorCodes.h"
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
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<std::uint8_t>(c) & 0xC0U) != 0x80U;
  }));
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

// Takes from the widest until all of them, and the gaps, fit into so many columns.
void shrink(std::vector<std::size_t>& widths, std::size_t columns) {
  constexpr std::size_t kNarrowest = 6;
  std::size_t sum = kGap * widths.size();
  for (const std::size_t width : widths) {
    sum += width;
  }
  while (sum > columns) {
    const auto widest = std::max_element(widths.begin(), widths.end());
    if (*widest <= kNarrowest) {
      return;
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
}

/// Texts are handed in as they stand in the record.
class Report {
 public:
  explicit Report(const ReportStyle& style) : style_(style) {}

  void heading(std::string_view title) { out_ += fmt::format("\n{}\n", styled("1", title)); }

  void line(std::string_view label, std::string_view value) {
    out_ += "  " + styled("2", label);
    out_.append(kLabelWidth - std::min(kLabelWidth - 1, label.size()), ' ');
    const std::string text = shown(value);
    const std::size_t before = kGap + kLabelWidth;
    out_ += isOnTerminal() && style_.columns > before
                ? cutInTheMiddle(text, style_.columns - before)
                : text;
    out_ += '\n';
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
    const std::vector<std::size_t> widths = widthsOf(titles, rows);
    writeRow(titles, widths, "2");
    for (const Row& row : rows) {
      writeRow(row, widths, "");
    }
  }

  void text(std::string_view text) { out_ += text; }

  std::string styled(std::string_view code, std::string_view text) const {
    return style_.withColours && !code.empty() ? fmt::format("\x1b[{}m{}\x1b[0m", code, text)
                                               : std::string(text);
  }

  std::string take() { return std::move(out_); }

 private:
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
    if (isOnTerminal()) {
      shrink(widths, style_.columns);
    }
    return widths;
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

void reportOutcome(Report& report, const TamzoVastAd& ad) {
  const bool isGood = ad.errorCode() == kNoError;
  const VastError* error = findVastError(ad.errorCode());
  const std::string_view name = error == nullptr ? "unknown error" : error->name;
  const std::string_view cause = error == nullptr ? "" : error->cause;
  if (isGood) {
    report.text(fmt::format("{}  {}\n", report.styled("1;32", "OK"), cause));
  } else {
    report.text(report.styled("1;31", fmt::format("FAILED  error {}: {}", ad.errorCode(), name)) +
                "\n");
    report.text(fmt::format("  {}\n", cause));
  }
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

void reportTrackers(Report& report, const TamzoVastAd& ad) {
  std::vector<Row> rows;
  for (const TrackerMap::Entry& entry : *ad.trackers()) {
    for (const auto& event : *entry.events) {
      rows.push_back({std::string(entry.name), orDash(event->offset()), orDash(event->url())});
    }
  }
  report.heading(titled("Trackers", rows.size()));
  if (!rows.empty()) {
    report.table({"event", "at (s)", "URL"}, rows);
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

std::string textReport(const TamzoVastAd& ad, const ReportStyle& style) {
  Report report(style);
  reportOutcome(report, ad);
  reportAd(report, ad);
  reportMediaFiles(report, ad);
  reportTrackers(report, ad);
  reportCompanions(report, ad);
  reportProviders(report, ad);
  reportExtraActions(report, ad);
  return report.take();
}

}  // namespace tamzo::command
