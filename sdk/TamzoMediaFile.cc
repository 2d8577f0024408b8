#include "tamzo/sdk/TamzoMediaFile.h"

#include "sdk/ElementText.h"

namespace tamzo {

std::shared_ptr<TamzoMediaFile> TamzoMediaFile::initWithNode(DDXMLElement node) {
  return std::make_shared<TamzoMediaFile>(std::move(node));
}

Text TamzoMediaFile::url() const { return trimmedText(node_); }
Text TamzoMediaFile::id() const { return node_.attributeValue("id"); }
Text TamzoMediaFile::delivery() const { return node_.attributeValue("delivery"); }
Text TamzoMediaFile::type() const { return node_.attributeValue("type"); }
Text TamzoMediaFile::codec() const { return node_.attributeValue("codec"); }
Text TamzoMediaFile::apiFramework() const { return node_.attributeValue("apiFramework"); }

std::optional<std::int32_t> TamzoMediaFile::width() const {
  return integerAttribute(node_, "width");
}
std::optional<std::int32_t> TamzoMediaFile::height() const {
  return integerAttribute(node_, "height");
}
std::optional<std::int32_t> TamzoMediaFile::bitrate() const {
  return integerAttribute(node_, "bitrate");
}
std::optional<std::int32_t> TamzoMediaFile::minBitrate() const {
  return integerAttribute(node_, "minBitrate");
}
std::optional<std::int32_t> TamzoMediaFile::maxBitrate() const {
  return integerAttribute(node_, "maxBitrate");
}
std::optional<std::int32_t> TamzoMediaFile::fileSize() const {
  return integerAttribute(node_, "fileSize");
}
std::optional<bool> TamzoMediaFile::scalable() const { return boolAttribute(node_, "scalable"); }
std::optional<bool> TamzoMediaFile::maintainAspectRatio() const {
  return boolAttribute(node_, "maintainAspectRatio");
}

}  // namespace tamzo
