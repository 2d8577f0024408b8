#pragma once

#include <libxml/tree.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tamzo {

/// The namespaces of a document that is put together from parts of others. What a part declares
/// itself is declared there again; what was declared around it, or nowhere, is declared on the new
/// root, once, so that the document does not grow with the number of parts.
///
/// There is room for as many declarations in scope as the parser admits. Source documents are read
/// only, and must live as long as this.
class NamespaceDeclarations {
 public:
  explicit NamespaceDeclarations(xmlNode* root) noexcept : root_(root) {}

  /// Declares on `copy` what `source` declares. In scope until `leave` takes back what `enter`
  /// gave.
  std::size_t enter(const xmlNode* source, xmlNode* copy);
  void leave(std::size_t scope) noexcept { inScope_.resize(scope); }

  /// What stands for `ns` of `doc` in the new document; null when there is no room for it.
  xmlNs* find(const xmlNs* ns, const xmlDoc* doc);

  /// A namespace for a prefix that is used and nowhere declared, which libxml2 forgives and other
  /// readers do not; null when there is no room, or when nobody may declare it.
  xmlNs* findUndeclared(const std::string& prefix);

 private:
  struct Copied {
    const xmlNs* source;
    xmlNs* copy;
  };

  xmlNs* onRoot(std::string_view prefix) const noexcept;
  xmlNs* declareOnRoot(const std::string& prefix, const std::string& address);
  xmlNs* declareAround(const xmlNs& ns, const std::string& address);
  xmlNs* declareRenamed(const std::string& address);

  xmlNode* root_;
  std::vector<xmlNs*> onRoot_;
  std::vector<Copied> inScope_;  // innermost last
  std::size_t mostInScope_ = 0;
  std::unordered_map<const xmlNs*, xmlNs*> around_;
  std::size_t renamed_ = 0;
};

}  // namespace tamzo
