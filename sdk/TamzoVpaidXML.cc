#include "tamzo/sdk/TamzoVpaidXML.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sdk/InlineVastMerge.h"

namespace tamzo {

std::shared_ptr<TamzoVpaidXML> TamzoVpaidXML::initWithVpaidWrapperNode(NodeList wrappers) {
  return std::shared_ptr<TamzoVpaidXML>(new TamzoVpaidXML(std::move(wrappers)));
}

Text TamzoVpaidXML::createInlineVast(const NodeList& inlines, const Text& withAdId) const {
  std::vector<DDXMLElement> chain;
  for (const TamzoVpaidXML* link = this; link != nullptr; link = link->outer_.get()) {
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
