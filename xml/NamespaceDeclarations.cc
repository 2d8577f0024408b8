#include "xml/NamespaceDeclarations.h"

#include <algorithm>
#include <new>

#include "xml/NamespaceAddress.h"
#include "xml/XmlTree.h"

namespace tamzo {
namespace {

// What the parser admits.
constexpr std::size_t kMaxInScope = 256;
// How prefixes begin that stand for others, where two documents mean different things by one. No
// part of a document may declare such a prefix itself: it would hide that of the root.
constexpr std::string_view kRenamed = "ns-";

// The document is only ever written, and libxml2 writes addresses as they are.
std::string escapeAddress(std::string_view address) {
  std::string escaped;
  for (const char c : address) {
    if (c == '&') {
      escaped += "&amp;";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

xmlNs* declare(xmlNode* element, const xmlChar* prefix, const std::string& address) {
  xmlNs* ns = xmlNewNs(element, asXml(address), prefix);
  if (ns == nullptr || ns->href == nullptr || (ns->prefix == nullptr) != (prefix == nullptr)) {
    throw std::bad_alloc();
  }
  return ns;
}

bool mayBeDeclared(const xmlChar* prefix) noexcept {
  return xmlValidateNCName(prefix, 0) == 0 && !isText(prefix, "xml") && !isText(prefix, "xmlns");
}

bool isRenamed(const xmlChar* prefix) noexcept {
  return std::string_view(asChars(prefix)).starts_with(kRenamed);
}

bool isTakenBack(const xmlNs& ns) noexcept {
  return ns.prefix == nullptr && (ns.href == nullptr || ns.href[0] == '\0');
}

std::string writtenAddress(const xmlNs& ns, const xmlDoc* doc) {
  return isTakenBack(ns) ? "" : escapeAddress(acceptableAddress(addressOf(ns, doc)));
}

}  // namespace

std::size_t NamespaceDeclarations::enter(const xmlNode* source, xmlNode* copy) {
  const std::size_t scope = inScope_.size();
  for (const xmlNs* ns = source->nsDef; ns != nullptr; ns = ns->next) {
    const bool isPlain =
        ns->prefix == nullptr || (mayBeDeclared(ns->prefix) && !isRenamed(ns->prefix));
    if (isPlain && onRoot_.size() + inScope_.size() < kMaxInScope) {
      inScope_.push_back({ns, declare(copy, ns->prefix, writtenAddress(*ns, source->doc))});
    }
  }
  mostInScope_ = std::max(mostInScope_, inScope_.size());
  return scope;
}

xmlNs* NamespaceDeclarations::find(const xmlNs* ns, const xmlDoc* doc) {
  const auto copied = std::find_if(inScope_.rbegin(), inScope_.rend(),
                                   [ns](const Copied& each) { return each.source == ns; });
  if (copied != inScope_.rend()) {
    return copied->copy;
  }
  const auto known = around_.find(ns);
  if (known != around_.end()) {
    return known->second;
  }
  xmlNs* declared = declareAround(*ns, writtenAddress(*ns, doc));
  around_.emplace(ns, declared);
  return declared;
}

xmlNs* NamespaceDeclarations::findUndeclared(const std::string& prefix) {
  if (!mayBeDeclared(asXml(prefix))) {
    return nullptr;
  }
  xmlNs* declared = onRoot(prefix);
  return declared != nullptr
             ? declared
             : declareOnRoot(prefix, escapeAddress(acceptableAddress("urn:undeclared:" + prefix)));
}

xmlNs* NamespaceDeclarations::onRoot(std::string_view prefix) const noexcept {
  const auto found = std::find_if(onRoot_.begin(), onRoot_.end(),
                                  [prefix](const xmlNs* ns) { return isText(ns->prefix, prefix); });
  return found == onRoot_.end() ? nullptr : *found;
}

xmlNs* NamespaceDeclarations::declareOnRoot(const std::string& prefix, const std::string& address) {
  if (onRoot_.size() + mostInScope_ >= kMaxInScope) {
    return nullptr;
  }
  onRoot_.push_back(declare(root_, asXml(prefix), address));
  return onRoot_.back();
}

// Parts that have no namespace stand on the root too, so that it declares no default one.
xmlNs* NamespaceDeclarations::declareAround(const xmlNs& ns, const std::string& address) {
  if (ns.prefix == nullptr || !mayBeDeclared(ns.prefix)) {
    return declareRenamed(address);
  }
  const std::string prefix(asChars(ns.prefix));
  xmlNs* same = onRoot(prefix);
  if (same == nullptr) {
    return declareOnRoot(prefix, address);
  }
  return asChars(same->href) == address ? same : declareRenamed(address);
}

xmlNs* NamespaceDeclarations::declareRenamed(const std::string& address) {
  for (xmlNs* ns : onRoot_) {
    if (isRenamed(ns->prefix) && asChars(ns->href) == address) {
      return ns;
    }
  }
  std::string prefix;
  do {
    prefix = std::string(kRenamed) + std::to_string(++renamed_);
  } while (onRoot(prefix) != nullptr);
  return declareOnRoot(prefix, address);
}

}  // namespace tamzo
