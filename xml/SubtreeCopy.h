#pragma once

#include <libxml/tree.h>

#include <string>

#include "xml/NamespaceDeclarations.h"

namespace tamzo {

/// Copies parts of other documents into a new one, node by node: libxml2's own copying silently
/// leaves out what it has no memory for, and writes into the dictionary of the source.
///
/// What entities stand for takes the place of references to them. A name that libxml2 lets pass,
/// but no reader that knows namespaces does, becomes one that every reader takes. Every function
/// throws std::bad_alloc when memory runs out; what has been copied by then is part of the tree.
class SubtreeCopy {
 public:
  /// Parts go below `root`, which is that of its document, and has a dictionary for its names.
  explicit SubtreeCopy(xmlNode* root) noexcept : root_(root), declarations_(root) {}

  /// The name of `source` and its attributes, but no declarations and nothing of what it holds.
  xmlNode* appendTag(xmlNode* parent, const xmlNode* source);

  /// `source` with all that it holds; recursion is as deep as it is.
  void append(xmlNode* parent, const xmlNode* source);

  /// All that `source` holds but for its child `omitted`.
  void appendChildren(xmlNode* parent, const xmlNode* source, const xmlNode* omitted);

 private:
  struct Name {
    xmlNs* ns = nullptr;
    const xmlChar* text = nullptr;  // of the new document's dictionary
  };

  xmlNode* appendNameless(xmlNode* parent);
  void appendElement(xmlNode* parent, const xmlNode* source);
  void appendAttribute(xmlNode* element, const xmlAttr* source);
  void appendText(xmlNode* parent, const xmlChar* text);
  void name(xmlNode* element, const xmlNode* source);
  Name nameOf(const xmlNode* source);
  Name nameWithNamespace(const xmlNode* source);
  Name nameWithoutNamespace(const std::string& qualified);
  const xmlChar* intern(const std::string& text);

  xmlNode* root_;
  NamespaceDeclarations declarations_;
};

/// Adds `node` behind the children of `parent`. Unlike libxml2's own, it never joins two texts to
/// one, which takes quadratic time for many.
void linkChild(xmlNode* parent, xmlNode* node) noexcept;

/// Gives `attribute` its value. Throws std::bad_alloc.
void setValue(xmlAttr* attribute, const xmlChar* value);

}  // namespace tamzo
