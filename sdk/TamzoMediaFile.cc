#include "sdk/TamzoMediaFile.h"

#include "sdk/TrimmedText.h"

namespace tamzo {

std::shared_ptr<TamzoMediaFile> TamzoMediaFile::initWithNode(const DDXMLElement& node) {
  auto file = std::make_shared<TamzoMediaFile>();
  file->url = trimmedText(node);
  file->id = node.attributeValue("id");
  file->delivery = node.attributeValue("delivery");
  file->type = node.attributeValue("type");
  file->codec = node.attributeValue("codec");
  file->apiFramework = node.attributeValue("apiFramework");
  file->width = integerAttribute(node, "width");
  file->height = integerAttribute(node, "height");
  file->bitrate = integerAttribute(node, "bitrate");
  file->minBitrate = integerAttribute(node, "minBitrate");
  file->maxBitrate = integerAttribute(node, "maxBitrate");
  file->fileSize = integerAttribute(node, "fileSize");
  file->scalable = boolAttribute(node, "scalable");
  file->maintainAspectRatio = boolAttribute(node, "maintainAspectRatio");
  return file;
}

}  // namespace tamzo
