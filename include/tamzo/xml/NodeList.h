#pragma once

#include <array>
#include <cstddef>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include "tamzo/base/Export.h"
#include "tamzo/xml/DDXMLElement.h"

namespace tamzo {

/// What a query gives: nil (the query failed or was never made), empty, or nodes in document
/// order. Keeps the document alive and moves cheaply.
///
/// Reading one list from several threads is safe, queries included; assigning to it is not.
class TAMZO_EXPORT NodeList {
 public:
  /// Nil.
  NodeList() noexcept = default;
  /// Shares the nodes.
  NodeList(const NodeList&) = default;
  /// Shares the nodes.
  NodeList& operator=(const NodeList&) = default;
  /// Leaves `other` nil.
  NodeList(NodeList&& other) noexcept { swap(other); }
  /// Leaves `other` nil.
  NodeList& operator=(NodeList&& other) noexcept {
    NodeList(std::move(other)).swap(*this);
    return *this;
  }

  /// An empty list, which is not nil.
  static NodeList makeEmpty();
  /// A list of one; an empty one for a nil element.
  static NodeList of(const DDXMLElement& element);

  /// True for a list that no query made, or one whose query failed.
  bool isNil() const noexcept { return isNil_; }
  /// True for nil too: a list that is absent counts as no match.
  bool empty() const noexcept { return size_ == 0; }
  /// How many nodes; 0 for nil.
  std::size_t size() const noexcept { return size_; }

  /// Throws std::out_of_range past the end.
  DDXMLElement at(std::size_t index) const;
  /// Throws std::out_of_range past the end, as at() does: an index may come from a document.
  DDXMLElement operator[](std::size_t index) const { return at(index); }

  /// The first node that `path` finds under the first node of the list, or nil.
  DDXMLElement firstMatch(const XPath& path) const;

  /// What `path` finds under the first node of the list; nil when the list holds none. `error` is
  /// that of DDXMLElement::nodesForXPath().
  NodeList nodesUnderFirst(const XPath& path, XmlError* error = nullptr) const;

  /// Walks over the nodes; each is given as a handle of its own.
  class Iterator {
   public:
    /// @cond What the standard library asks of an iterator.
    using iterator_category = std::input_iterator_tag;
    using iterator_concept = std::forward_iterator_tag;
    using value_type = DDXMLElement;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = DDXMLElement;
    Iterator() noexcept = default;
    Iterator(const NodeList* list, std::size_t index) noexcept : list_(list), index_(index) {}
    DDXMLElement operator*() const { return list_->element(index_); }
    Iterator& operator++() noexcept {
      ++index_;
      return *this;
    }
    Iterator operator++(int) noexcept {
      const Iterator before = *this;
      ++index_;
      return before;
    }
    bool operator==(const Iterator& other) const noexcept { return index_ == other.index_; }
    /// @endcond

   private:
    const NodeList* list_ = nullptr;
    std::size_t index_ = 0;
  };
  /// The nodes in document order. Valid as long as this very list lives and is not assigned to.
  Iterator begin() const noexcept TAMZO_LIFETIMEBOUND { return {this, 0}; }
  /// The end of begin().
  Iterator end() const noexcept TAMZO_LIFETIMEBOUND { return {this, size_}; }

 private:
  friend class DDXMLDocument;
  friend class DDXMLElement;

  // Most lists are short, and live on the stack without an allocation.
  static constexpr std::size_t kInline = 4;

  explicit NodeList(std::shared_ptr<const XmlTree> tree) noexcept
      : tree_(std::move(tree)), isNil_(false) {}
  TAMZO_HIDDEN void append(_xmlNode* node);
  void swap(NodeList& other) noexcept {
    rest_.swap(other.rest_);
    tree_.swap(other.tree_);
    inline_.swap(other.inline_);
    std::swap(size_, other.size_);
    std::swap(isNil_, other.isNil_);
  }
  _xmlNode* node(std::size_t index) const noexcept {
    return index < kInline ? inline_[index] : rest_[index - kInline];
  }
  DDXMLElement element(std::size_t index) const { return {node(index), tree_}; }

  // Before all others: copying it is all that can fail, and an assignment that fails here has not
  // yet put nodes of one document beside the tree of another.
  std::vector<_xmlNode*> rest_;
  std::shared_ptr<const XmlTree> tree_;
  std::array<_xmlNode*, kInline> inline_{};
  std::size_t size_ = 0;
  bool isNil_ = true;
};

}  // namespace tamzo
