#include "tamzo/vast/TamzoVastAd.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace tamzo {

void TamzoVastAd::updateMediaFiles(const NodeList& linears) {
  std::int32_t index = 0;
  for (const DDXMLElement& file : linears.nodesUnderFirst("MediaFiles/MediaFile")) {
    addOrSetMediaFile(file, index++);
  }
}

void TamzoVastAd::addOrSetMediaFile(const DDXMLElement& element, std::int32_t withIndex) {
  if (!element || mediaFiles() == nullptr) {
    return;
  }
  auto file = TamzoMediaFile::initWithNode(element);
  auto& files = *mediaFiles();
  const auto index = static_cast<std::size_t>(withIndex);
  if (withIndex < 0 || index > files.size()) {
    throw std::out_of_range("media files: index " + std::to_string(withIndex) + " of " +
                            std::to_string(files.size()));
  }
  if (index == files.size()) {
    files.push_back(std::move(file));
  } else {
    files[index] = std::move(file);
  }
}

}  // namespace tamzo
