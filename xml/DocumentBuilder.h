#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tamzo/xml/DDXMLElement.h"

namespace tamzo {

/// A document in the making: elements of its own, and copies of parts of other documents, written
/// once. Whatever it is given, what it writes is well-formed, and every namespace in it is declared
/// (see SubtreeCopy and NamespaceDeclarations). Its size is bounded by that of what is copied.
///
/// Source documents are read only: several threads may copy from one. Every function throws
/// std::bad_alloc when memory runs out; the builder may then only be destroyed.
class DocumentBuilder {
  struct Document;

 public:
  /// An element of the document; valid as long as the builder.
  class Element {
   public:
    /// Adds an element of that name, which must be one without a prefix, behind what there is.
    Element append(std::string_view name);

    /// Adds an attribute that the element does not have yet. Characters that XML cannot hold are
    /// replaced.
    void setAttribute(std::string_view name, std::string_view value);

    /// Adds a copy of `source` with all that it holds; nil adds nothing.
    void appendCopy(const DDXMLElement& source);

    /// As appendCopy, but `child`, a child of `source`, is left out.
    void appendCopyWithout(const DDXMLElement& source, const DDXMLElement& child);

    /// Adds an element with the name and the attributes of `source`, an element, and nothing in it.
    Element appendTagOf(const DDXMLElement& source);

   private:
    friend class DocumentBuilder;

    Element(Document& document, _xmlNode* node) noexcept : document_(&document), node_(node) {}

    Document* document_;
    _xmlNode* node_;
  };

  /// A document that is one element of that name.
  explicit DocumentBuilder(std::string_view rootName);
  DocumentBuilder(const DocumentBuilder&) = delete;
  DocumentBuilder& operator=(const DocumentBuilder&) = delete;
  ~DocumentBuilder();

  Element root() noexcept;

  /// The document in UTF-8, without a declaration of XML.
  std::string write() const;

 private:
  std::unique_ptr<Document> document_;
};

}  // namespace tamzo
