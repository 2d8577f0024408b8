#include "tamzo/sdk/TamzoVpaidXML.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "sdk/InlineVastMerge.h"

namespace tamzo {
namespace {

using Link = std::shared_ptr<const TamzoVpaidXML>;

// Where a link that is destroyed on this thread leaves the one outside it, when it is destroyed by
// another: a host may make chains that are longer than the stack is deep.
thread_local Link* nextToGo = nullptr;

}  // namespace

TamzoVpaidXML::~TamzoVpaidXML() {
  if (nextToGo != nullptr) {
    *nextToGo = std::move(outer_);
    return;
  }
  Link next = std::move(outer_);
  nextToGo = &next;
  while (next != nullptr) {
    const Link going = std::move(next);
  }
  nextToGo = nullptr;
}

std::shared_ptr<TamzoVpaidXML> TamzoVpaidXML::initWithVpaidWrapperNode(NodeList wrappers) {
  return std::shared_ptr<TamzoVpaidXML>(new TamzoVpaidXML(std::move(wrappers)));
}

Text TamzoVpaidXML::createInlineVast(const NodeList& inlines, const Text& withAdId) const {
  std::vector<DDXMLElement> chain;
  std::unordered_set<const TamzoVpaidXML*> met;
  for (const TamzoVpaidXML* link = this; link != nullptr && met.insert(link).second;
       link = link->outer_.get()) {
    if (!link->wrappers_.empty()) {
      chain.push_back(link->wrappers_.at(0));
    }
  }
  std::reverse(chain.begin(), chain.end());
  const DDXMLElement inlineAd = inlines.empty() ? DDXMLElement() : inlines.at(0);
  const Text version = vastVersion_.hasCharacters() ? vastVersion_ : Text::literal("2.0");
  return Text(mergeInlineVast(chain, inlineAd, version, withAdId));
}

}  // namespace tamzo
