#include "xml/DocumentBuilder.h"

#include <libxml/parserInternals.h>
#include <libxml/tree.h>

#include <new>
#include <vector>

#include "base/Utf8.h"
#include "xml/QuietLibrary.h"
#include "xml/SubtreeCopy.h"
#include "xml/XmlSerializer.h"
#include "xml/XmlTree.h"

namespace tamzo {
namespace {

xmlDoc* newDocument() {
  const QuietLibrary quiet;
  xmlDoc* doc = xmlNewDoc(reinterpret_cast<const xmlChar*>("1.0"));
  if (doc == nullptr) {
    throw std::bad_alloc();
  }
  // Names come again and again.
  doc->dict = xmlDictCreate();
  // Without it libxml2 writes numbers for most letters.
  doc->encoding = xmlStrdup(reinterpret_cast<const xmlChar*>("UTF-8"));
  if (doc->dict == nullptr || doc->encoding == nullptr) {
    xmlFreeDoc(doc);
    throw std::bad_alloc();
  }
  return doc;
}

xmlNode* appendElement(xmlDoc* doc, xmlNode* parent, std::string_view name) {
  const QuietLibrary quiet;
  const std::string text(name);
  xmlNode* element = xmlNewDocNode(doc, nullptr, asXml(text), nullptr);
  if (element == nullptr) {
    throw std::bad_alloc();
  }
  linkChild(parent, element);
  return element;
}

std::string asXmlText(std::string_view text) {
  std::string valid;
  for (std::size_t at = 0; at < text.size();) {
    const Character character = characterAt(text, at);
    const bool isKept = IS_CHAR(character.value) && character.value != U'\uFFFD';
    valid += isKept ? text.substr(at, character.bytes) : "\xEF\xBF\xBD";
    at += character.bytes;
  }
  return valid;
}

}  // namespace

struct DocumentBuilder::Document {
  explicit Document(std::string_view rootName)
      : tree(newDocument()),
        root(appendElement(tree.doc(), tree.documentNode(), rootName)),
        copier(root) {}

  // Namespaces are known by their place in memory, which no other document may take meanwhile.
  void keep(const std::shared_ptr<const XmlTree>& source) {
    if (sources.empty() || sources.back() != source) {
      sources.push_back(source);
    }
  }

  XmlTree tree;
  xmlNode* root;
  SubtreeCopy copier;
  std::vector<std::shared_ptr<const XmlTree>> sources;
};

DocumentBuilder::DocumentBuilder(std::string_view rootName)
    : document_(std::make_unique<Document>(rootName)) {}

DocumentBuilder::~DocumentBuilder() = default;

DocumentBuilder::Element DocumentBuilder::root() noexcept { return {*document_, document_->root}; }

std::string DocumentBuilder::write() const { return serializeXml(document_->root); }

DocumentBuilder::Element DocumentBuilder::Element::append(std::string_view name) {
  return {*document_, appendElement(node_->doc, node_, name)};
}

void DocumentBuilder::Element::setAttribute(std::string_view name, std::string_view value) {
  const QuietLibrary quiet;
  xmlAttr* attribute = xmlNewNsProp(node_, nullptr, asXml(std::string(name)), nullptr);
  if (attribute == nullptr || attribute->name == nullptr) {
    throw std::bad_alloc();
  }
  setValue(attribute, asXml(asXmlText(value)));
}

void DocumentBuilder::Element::appendCopy(const DDXMLElement& source) {
  if (source) {
    const QuietLibrary quiet;
    document_->keep(source.tree_);
    document_->copier.append(node_, source.node_);
  }
}

void DocumentBuilder::Element::appendCopyWithout(const DDXMLElement& source,
                                                 const DDXMLElement& child) {
  const Element copy = appendTagOf(source);
  const QuietLibrary quiet;
  document_->copier.appendChildren(copy.node_, source.node_, child.node_);
}

DocumentBuilder::Element DocumentBuilder::Element::appendTagOf(const DDXMLElement& source) {
  const QuietLibrary quiet;
  document_->keep(source.tree_);
  return {*document_, document_->copier.appendTag(node_, source.node_)};
}

}  // namespace tamzo
