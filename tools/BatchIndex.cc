#include "tools/BatchIndex.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <random>
#include <utility>

#include "base/Utf8.h"
#include "tamzo/vast/ErrorCodes.h"
#include "tools/CommandError.h"
#include "tools/HtmlText.h"
#include "tools/Output.h"

namespace tamzo::command {
namespace {

constexpr std::size_t kMostRows = 5000;
constexpr std::size_t kMostBars = 12;

// Sorts by a column, and shows the rows that hold a text. The page can be read without.
constexpr std::string_view kScript = R"(
const body=document.querySelector('tbody');
const rows=[...body.rows];
document.querySelector('input').addEventListener('input',event=>{
const wanted=event.target.value.toLowerCase();
for(const row of rows)row.hidden=!row.textContent.toLowerCase().includes(wanted)});
document.querySelectorAll('th button').forEach((button,column)=>{let down=false;
button.addEventListener('click',()=>{down=!down;
const key=row=>row.cells[column].textContent;
rows.sort((a,b)=>(down?1:-1)*key(a).localeCompare(key(b),'en',{numeric:true}));
document.querySelectorAll('th').forEach(th=>th.removeAttribute('aria-sort'));
button.parentNode.setAttribute('aria-sort',down?'ascending':'descending');
body.append(...rows)})});
document.querySelector('.filter').hidden=false;
)";

std::string makeNonce() {
  std::random_device random;
  return fmt::format("{:08x}{:08x}{:08x}{:08x}", random(), random(), random(), random());
}

void writeFile(const std::string& path, const std::string& text) {
  Output output(path);
  output.write(text);
  output.finish();
}

using Counts = std::map<std::string, std::size_t>;

std::string chart(std::string_view title, const Counts& counts, std::size_t all) {
  std::vector<std::pair<std::string, std::size_t>> sorted(counts.begin(), counts.end());
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const auto& a, const auto& b) { return a.second > b.second; });
  const std::size_t shown = std::min(sorted.size(), kMostBars);
  std::string html = fmt::format(
      "<section><h2>{}</h2><svg viewBox=\"0 0 360 {}\" width=\"360\" role=\"img\" "
      "aria-label=\"{}\">\n",
      title, 34 * shown + 4, title);
  for (std::size_t i = 0; i < shown; ++i) {
    const double share =
        all == 0 ? 0.0 : static_cast<double>(sorted[i].second) / static_cast<double>(all);
    html += fmt::format(
        "<text x=\"0\" y=\"{}\">{}</text><text x=\"360\" y=\"{}\" "
        "text-anchor=\"end\">{} ({:.0f} %)</text><rect class=\"bar\" x=\"0\" "
        "y=\"{}\" width=\"{:.1f}\" height=\"8\"/>\n",
        34 * i + 12, htmlText(beginningOf(sorted[i].first, 60)), 34 * i + 12, sorted[i].second,
        share * 100.0, 34 * i + 17, 360.0 * share);
  }
  html += "</svg>";
  if (shown < sorted.size()) {
    html += fmt::format("<p class=\"dim\">and {} more</p>", sorted.size() - shown);
  }
  return html + "</section>\n";
}

std::string codeInWords(int code) {
  const VastError* error = findVastError(code);
  return fmt::format("{} {}", code, error == nullptr ? "" : error->name);
}

}  // namespace

BatchIndex::BatchIndex(std::string folder) : folder_(std::move(folder)) {
  if (mkdir(folder_.c_str(), 0777) != 0 && errno != EEXIST) {
    throw CommandError(folder_ + ": " + std::strerror(errno));
  }
  // That it can be written is known before hours of work.
  writeFile(folder_ + "/index.html", "");
}

void BatchIndex::add(BatchAnswer& answer) {
  ++responses_;
  Row row;
  row.id = answer.id;
  row.errorCode = answer.errorCode;
  row.finding = answer.mainFinding;
  row.host = answer.host;
  row.sentence = answer.problem.empty() ? answer.sentence : answer.problem;
  if (answer.problem.empty()) {
    ++byCode_[codeInWords(answer.errorCode)];
    ++byFinding_[row.finding.empty() ? "none" : row.finding];
    ++byHost_[row.host];
  } else {
    ++byCode_["could not be read"];
  }
  if (!answer.report.empty()) {
    row.file = fmt::format("{:06}.html", ++reports_);
    writeFile(folder_ + "/" + row.file, std::exchange(answer.report, {}));
  }
  if (rows_.size() < kMostRows) {
    rows_.push_back(std::move(row));
  }
}

std::string BatchIndex::charts() const {
  return "<div class=\"charts\">\n" + chart("Error codes", byCode_, responses_) +
         chart("Findings", byFinding_, responses_) + chart("Hosts", byHost_, responses_) +
         "</div>\n";
}

std::string BatchIndex::table() const {
  std::string html =
      "<h2>Responses</h2>\n<p class=\"filter\" hidden><label>Show only <input type=\"search\" "
      "placeholder=\"a code, a finding, a host\"></label></p>\n<table><thead><tr>";
  for (const std::string_view title : {"response", "code", "finding", "host", "what happened"}) {
    html += fmt::format("<th scope=\"col\"><button type=\"button\">{}</button></th>", title);
  }
  html += "</tr></thead><tbody>\n";
  for (const Row& row : rows_) {
    const std::string id = htmlText(beginningOf(row.id, 300));
    html += "<tr><td>" +
            (row.file.empty() ? id : fmt::format("<a href=\"{}\">{}</a>", row.file, id)) +
            fmt::format("</td><td class=\"num\">{}</td><td>{}</td><td>{}</td><td>{}</td></tr>\n",
                        row.errorCode, htmlText(row.finding), htmlText(row.host),
                        htmlText(row.sentence));
  }
  html += "</tbody></table>\n";
  if (rows_.size() < responses_) {
    html += fmt::format("<p class=\"dim\">and {} more</p>\n", responses_ - rows_.size());
  }
  return html;
}

void BatchIndex::finish() {
  const std::string nonce = makeNonce();
  writeFile(folder_ + "/index.html",
            htmlHead("VAST responses", nonce) +
                fmt::format("<h1>{} responses, {} failed</h1>\n", responses_, reports_) + charts() +
                table() + fmt::format("<script nonce=\"{}\">{}</script>\n", nonce, kScript) +
                "</body>\n</html>\n");
}

}  // namespace tamzo::command
