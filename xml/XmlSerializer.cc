#include "xml/XmlSerializer.h"

#include <libxml/xmlIO.h>
#include <libxml/xmlsave.h>

#include <memory>
#include <new>
#include <optional>
#include <string_view>

#include "xml/QuietLibrary.h"
#include "xml/XmlTree.h"

namespace tamzo {
namespace {

int appendTo(void* out, const char* bytes, int count) noexcept {
  try {
    static_cast<std::string*>(out)->append(bytes, static_cast<std::size_t>(count));
    return count;
  } catch (const std::bad_alloc&) {
    return -1;
  }
}

struct CloseOutput {
  void operator()(xmlOutputBuffer* output) const noexcept { xmlOutputBufferClose(output); }
};

// What libxml2 writes of an element that is a name and, at most, a text without anything to escape;
// nothing for any other. Such elements come in masses, and setting up libxml2's output costs many
// times what they do.
std::optional<std::string> serializePlain(const xmlNode* node) {
  // A document type may ask for the layout of XHTML.
  const bool isBare = node->type == XML_ELEMENT_NODE && node->doc->intSubset == nullptr &&
                      node->ns == nullptr && node->nsDef == nullptr && node->properties == nullptr;
  if (!isBare) {
    return std::nullopt;
  }
  const std::string_view name(asChars(node->name));
  const xmlNode* child = node->children;
  std::string xml("<");
  if (child == nullptr) {
    return xml.append(name).append("/>");
  }
  if (child->next != nullptr || child->type != XML_TEXT_NODE || child->content == nullptr) {
    return std::nullopt;
  }
  const std::string_view text(asChars(child->content));
  if (text.find_first_of("<>&\r") != std::string_view::npos) {
    return std::nullopt;
  }
  xml.reserve(text.size() + 2 * name.size() + 5);
  return xml.append(name).append(">").append(text).append("</").append(name).append(">");
}

std::string serializeAny(const xmlNode* node) {
  std::string xml;
  const QuietLibrary quiet;
  std::unique_ptr<xmlOutputBuffer, CloseOutput> output(
      xmlOutputBufferCreateIO(appendTo, nullptr, &xml, nullptr));
  if (output == nullptr) {
    throw std::bad_alloc();
  }
  xmlNodeDumpOutput(output.get(), node->doc, const_cast<xmlNode*>(node), 0, 0, "UTF-8");
  // A buffer that could not grow has no content any more, and flushing it would not tell.
  bool isWhole = xmlOutputBufferGetContent(output.get()) != nullptr;
  xmlOutputBufferFlush(output.get());
  isWhole = isWhole && output->error == 0;
  output.reset();
  if (!isWhole) {
    throw std::bad_alloc();
  }
  return xml;
}

}  // namespace

std::string serializeXml(const xmlNode* node) {
  std::optional<std::string> plain = serializePlain(node);
  return plain ? *std::move(plain) : serializeAny(node);
}

}  // namespace tamzo
