#include "explain/MediaReports.h"

#include <utility>

#include "explain/Places.h"
#include "explain/Words.h"
#include "tamzo/vast/ErrorCodes.h"

namespace tamzo::explain {
namespace {

class MediaReporter {
 public:
  MediaReporter(const Chain& chain, const SeenHop& hop) : chain_(chain), hop_(hop) {}

  std::vector<MediaFileReport> run() {
    for (const DDXMLElement& ad : hop_.ads) {
      for (auto inside = ad.firstChildElement(); inside; inside = inside.nextSiblingElement()) {
        const Text name = inside.name();
        if (name.view() == "InLine" || name.view() == "Wrapper") {
          addCreatives(inside);
        }
      }
    }
    addLines();
    return std::move(reports_);
  }

 private:
  void addCreatives(const DDXMLElement& inside) {
    bool isFirst = true;
    for (const DDXMLElement& linear : inside.nodesForXPath("Creatives/Creative/Linear")) {
      for (const DDXMLElement& files : linear.nodesForXPath("MediaFiles")) {
        for (auto file = files.firstChildElement(); file; file = file.nextSiblingElement()) {
          const Text name = file.name();
          const bool isInteractive = name.view() == "InteractiveCreativeFile";
          if (isInteractive || name.view() == "MediaFile") {
            add(file, whyNot(file, inside, isFirst, isInteractive));
          }
        }
      }
      isFirst = false;
    }
  }

  // "" for a file that was taken.
  std::string whyNot(const DDXMLElement& file, const DDXMLElement& inside, bool isInFirstLinear,
                     bool isInteractive) const {
    if (!(inside == hop_.followed)) {
      return "it is in an Ad that is not read";
    }
    if (hop_.kind == AdKind::wrapper) {
      return "it is in a Wrapper";
    }
    if (!isInFirstLinear) {
      return "it is in a Linear after the first";
    }
    if (isInteractive) {
      return "it is an InteractiveCreativeFile, which is not listed with the media files";
    }
    if (mediaUseOf(file) == MediaUse::unusable) {
      const Text type = file.attributeValue("type");
      return type.isNil() ? std::string("it has no type")
                          : "the type " + quoted(type) + " is none that plays";
    }
    const bool isListed = chain_.ad().mediaFiles() != nullptr && !chain_.ad().mediaFiles()->empty();
    if (!isListed) {
      return chain_.ad().jsVPaidPresent() ? "the JavaScript VPAID unit plays, and brings its own"
                                          : "the ad was not read that far";
    }
    return "";
  }

  void add(const DDXMLElement& element, std::string why) {
    const TamzoMediaFile file(element);
    MediaFileReport report;
    report.hop = hop_.number;
    report.type = file.type();
    report.delivery = file.delivery();
    report.url = file.url();
    report.width = file.width();
    report.height = file.height();
    report.why = std::move(why);
    reports_.push_back(std::move(report));
    elements_.push_back(element);
  }

  void addLines() {
    const std::vector<std::size_t> offsets = chain_.startTagsOf(hop_, elements_);
    const std::vector<std::size_t> lines = linesOf(hop_.document, offsets);
    for (std::size_t i = 0; i < offsets.size(); ++i) {
      if (offsets[i] != std::string_view::npos) {
        reports_[i].line = lines[i];
      }
    }
  }

  const Chain& chain_;
  const SeenHop& hop_;
  std::vector<DDXMLElement> elements_;
  std::vector<MediaFileReport> reports_;
};

}  // namespace

std::vector<MediaFileReport> reportMediaFiles(const Chain& chain) {
  for (auto hop = chain.hops().rbegin(); hop != chain.hops().rend(); ++hop) {
    if (hop->parsed) {
      return MediaReporter(chain, *hop).run();
    }
  }
  return {};
}

}  // namespace tamzo::explain
