#pragma once

#include <memory>

#include "tamzo/base/Export.h"
#include "tamzo/base/Text.h"
#include "tamzo/xml/NodeList.h"

namespace tamzo {

/// What the Wrappers of a chain hold, kept for a JavaScript VPAID ad: the unit runs in a web view
/// that sees one document, so the chain is merged into one. One record stands for one Wrapper and
/// is linked to those outside it. Keeps the documents of its Wrappers alive.
class TAMZO_EXPORT TamzoVpaidXML {
 public:
  /// `wrappers` is the list of Wrapper elements of a document, of which the first counts. Never
  /// null.
  static std::shared_ptr<TamzoVpaidXML> initWithVpaidWrapperNode(NodeList wrappers);

  /// The list of Ad elements around the Wrapper.
  void setAdNode(NodeList ads) { ads_ = std::move(ads); }
  /// Nil until set.
  const NodeList& adNode() const noexcept TAMZO_LIFETIMEBOUND { return ads_; }

  /// The version of the merged document. Nil until set; nil and "" are written as "2.0", the first
  /// version with VPAID units.
  const Text& vastVersion() const noexcept TAMZO_LIFETIMEBOUND { return vastVersion_; }
  /// Sets vastVersion().
  void setVastVersion(Text version) { vastVersion_ = std::move(version); }

  /// Lets go of the records outside this one, however many there are.
  ~TamzoVpaidXML();
  /// Shares all that the other holds.
  TamzoVpaidXML(const TamzoVpaidXML&) = default;
  /// Shares all that the other holds.
  TamzoVpaidXML& operator=(const TamzoVpaidXML&) = default;

  /// The record of the Wrapper outside this one; null for the outermost. One that this one is
  /// outside of already would keep both alive for good; createInlineVast() stops where it meets a
  /// record again.
  void setOuterWrapper(std::shared_ptr<const TamzoVpaidXML> outer) { outer_ = std::move(outer); }

  /// A VAST document with one InLine ad: the first of `inlines`, with what the Wrappers of the
  /// chain hold added to it, outermost first — errors, impressions, verifications, extensions,
  /// companions, and the tracking, clicks and icons of the first Linear. A nil ad id leaves the id
  /// out. Never nil or "". The parser reads it back; "xmlns=" does not occur in it.
  Text createInlineVast(const NodeList& inlines, const Text& withAdId) const;

 private:
  explicit TamzoVpaidXML(NodeList wrappers) : wrappers_(std::move(wrappers)) {}

  NodeList wrappers_;
  NodeList ads_;
  Text vastVersion_;
  std::shared_ptr<const TamzoVpaidXML> outer_;
};

}  // namespace tamzo
