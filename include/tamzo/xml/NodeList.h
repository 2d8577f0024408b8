#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

#include "tamzo/base/Export.h"
#include "tamzo/xml/DDXMLElement.h"

namespace tamzo {

class ChildIndex;

/// What a query gives: nil (the query failed or was never made), empty, or nodes in document
/// order. Keeps the document alive. Moves cheaply; one thread at a time may use one list.
class TAMZO_EXPORT NodeList {
 public:
  /// Nil.
  NodeList() noexcept;
  NodeList(const NodeList& other);
  NodeList(NodeList&& other) noexcept;
  NodeList& operator=(const NodeList& other);
  NodeList& operator=(NodeList&& other) noexcept;
  ~NodeList();

  /// An empty list, which is not nil.
  static NodeList makeEmpty();
  /// A list of one.
  static NodeList of(const DDXMLElement& element);

  bool isNil() const noexcept { return isNil_; }
  /// True for nil too: a list that is absent counts as no match.
  bool empty() const noexcept { return size_ == 0; }
  std::size_t size() const noexcept { return size_; }

  /// Throws std::out_of_range past the end.
  DDXMLElement at(std::size_t index) const;

  /// The first node that `path` finds under the first node of the list, or nil. A list that is
  /// asked for one child after another looks at each child once, not once for every question.
  DDXMLElement firstMatch(const XPath& path) const;

  /// What `path` finds under the first node of the list; nil when the list holds none.
  NodeList nodesUnderFirst(const XPath& path, XmlError* error = nullptr) const;

  class Iterator {
   public:
    Iterator(const NodeList* list, std::size_t index) noexcept : list_(list), index_(index) {}
    DDXMLElement operator*() const { return list_->element(index_); }
    Iterator& operator++() noexcept {
      ++index_;
      return *this;
    }
    bool operator==(const Iterator& other) const noexcept { return index_ == other.index_; }

   private:
    const NodeList* list_;
    std::size_t index_;
  };
  Iterator begin() const noexcept { return {this, 0}; }
  Iterator end() const noexcept { return {this, size_}; }

 private:
  friend class DDXMLDocument;
  friend class DDXMLElement;

  // Most lists are short, and live on the stack without an allocation.
  static constexpr std::size_t kInline = 4;

  explicit NodeList(std::shared_ptr<const XmlTree> tree) noexcept;
  void append(_xmlNode* node);
  _xmlNode* node(std::size_t index) const noexcept {
    return index < kInline ? inline_[index] : rest_[index - kInline];
  }
  DDXMLElement element(std::size_t index) const { return {node(index), tree_}; }

  std::shared_ptr<const XmlTree> tree_;
  std::array<_xmlNode*, kInline> inline_{};
  std::vector<_xmlNode*> rest_;
  std::size_t size_ = 0;
  bool isNil_ = true;
  mutable unsigned lookups_ = 0;
  mutable std::unique_ptr<ChildIndex> index_;
};

}  // namespace tamzo
