#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tamzo/base/Text.h"
#include "tamzo/xml/DDXMLElement.h"

namespace tamzo {

/// A VAST document whose one ad is `inlineAd` with what the Wrapper elements of `chain`, outermost
/// first, add to it. See TamzoVpaidXML::createInlineVast. Reads the documents only: several threads
/// may merge the same ones.
std::string mergeInlineVast(const std::vector<DDXMLElement>& chain, const DDXMLElement& inlineAd,
                            std::string_view version, const Text& adId);

}  // namespace tamzo
