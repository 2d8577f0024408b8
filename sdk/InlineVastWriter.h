#pragma once

#include <string>
#include <vector>

#include "tamzo/base/Text.h"
#include "tamzo/xml/DDXMLElement.h"

namespace tamzo {

/// Writes a VAST document whose one ad is `inlineAd` with what the Wrapper elements of `chain`,
/// outermost first, add to it. See TamzoVpaidXML::createInlineVast.
std::string writeInlineVast(const std::vector<DDXMLElement>& chain, const DDXMLElement& inlineAd,
                            const Text& version, const Text& adId);

}  // namespace tamzo
