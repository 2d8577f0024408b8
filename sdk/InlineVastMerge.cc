#include "sdk/InlineVastMerge.h"

#include <initializer_list>
#include <utility>

#include "base/Numbers.h"
#include "tamzo/xml/NodeList.h"
#include "xml/AssignmentEscape.h"
#include "xml/DocumentBuilder.h"

namespace tamzo {
namespace {

using Element = DocumentBuilder::Element;
using Elements = std::vector<DDXMLElement>;

// Of version 2 the attribute of a Linear is not read.
constexpr int kFirstWithSkipOffset = 3;

// What is looked for in a document, once, since it may have very many elements.
struct Source {
  explicit Source(DDXMLElement wrapperOrInLine)
      : ad(std::move(wrapperOrInLine)),
        linear(ad.firstNodeForXPath("Creatives/Creative/Linear")),
        providers(ad.firstNodeForXPath("Extensions/Extension/AdVerifications")) {}

  DDXMLElement ad;
  DDXMLElement linear;     // the one that is played
  DDXMLElement providers;  // the one of all extensions whose Verification elements count
};

template <typename Visit>
void forEachChild(const DDXMLElement& element, Visit visit) {
  for (DDXMLElement child = element.firstChildElement(); child;
       child = child.nextSiblingElement()) {
    visit(child);
  }
}

// True when `wanted` is what `path` finds first below `element`. An absent one is never found.
bool leadsTo(const DDXMLElement& element, const XPath& path, const DDXMLElement& wanted) {
  return wanted && element.firstNodeForXPath(path) == wanted;
}

void copyAll(Element target, const NodeList& elements) {
  for (const DDXMLElement& element : elements) {
    target.appendCopy(element);
  }
}

void copyChildren(Element target, const DDXMLElement& container) {
  forEachChild(container, [&](const DDXMLElement& child) { target.appendCopy(child); });
}

Element appendContainer(Element target, const DDXMLElement& own, std::string_view name) {
  return own ? target.appendTagOf(own) : target.append(name);
}

// All child elements but those that `path` finds.
void copyChildrenBut(Element target, const DDXMLElement& element, const XPath& path) {
  const NodeList omitted = element.nodesForXPath(path);
  std::size_t next = 0;
  forEachChild(element, [&](const DDXMLElement& child) {
    if (next < omitted.size() && omitted.at(next) == child) {
      ++next;
    } else {
      target.appendCopy(child);
    }
  });
}

// The providers of all documents are gathered in one element, so that each leaves its own place.
void copyExtension(Element extensions, const DDXMLElement& extension,
                   const DDXMLElement& providers) {
  if (leadsTo(extension, "AdVerifications", providers)) {
    extensions.appendCopyWithout(extension, providers);
  } else {
    extensions.appendCopy(extension);
  }
}

/// Merges one chain. What the InLine has keeps its order; what the Wrappers add goes to the front
/// of where it belongs.
class Merge {
 public:
  Merge(const Elements& chain, const DDXMLElement& inlineAd, std::string_view version)
      : wrappers_(chain.begin(), chain.end()),
        inline_(inlineAd),
        ownSkipOffsetWins_(integerValue(version) >= kFirstWithSkipOffset &&
                           inline_.linear.attributeValue("skipoffset").hasCharacters()) {}

  void appendInLine(Element ad) {
    Element inLine = ad.append("InLine");
    copyOfWrappers(inLine, "Error");
    copyOfWrappers(inLine, "Impression");
    copyOfWrappers(inLine, "ViewableImpression");
    appendOwnChildren(inLine);
  }

 private:
  void appendOwnChildren(Element inLine) {
    const DDXMLElement& own = inline_.ad;
    const DDXMLElement verifications = own.firstNodeForXPath("AdVerifications");
    const DDXMLElement extensions = own.firstNodeForXPath("Extensions");
    const DDXMLElement creatives = own.firstNodeForXPath("Creatives");
    forEachChild(own, [&](const DDXMLElement& child) {
      if (child == verifications) {
        appendVerifications(inLine, child);
      } else if (child == extensions) {
        appendExtensions(inLine, child);
      } else if (child == creatives) {
        appendCreatives(inLine, child);
      } else {
        appendOther(inLine, child);
      }
    });
    if (!verifications) {
      appendVerifications(inLine, {});
    }
    if (!extensions) {
      appendExtensions(inLine, {});
    }
    if (!creatives) {
      appendCreatives(inLine, {});
    }
  }

  // A second Extensions or Creatives may be the one that holds what all documents are merged in.
  void appendOther(Element inLine, const DDXMLElement& child) {
    if (leadsTo(child, "Extension/AdVerifications", inline_.providers)) {
      copyExtensions(inLine.appendTagOf(child), child);
    } else if (leadsTo(child, "Creative/Linear", inline_.linear)) {
      copyCreatives(inLine.appendTagOf(child), child);
    } else {
      inLine.appendCopy(child);
    }
  }

  void appendVerifications(Element inLine, const DDXMLElement& own) {
    Element verifications = appendContainer(inLine, own, "AdVerifications");
    copyOfWrappers(verifications, "AdVerifications/Verification");
    copyChildren(verifications, own);
  }

  void appendExtensions(Element inLine, const DDXMLElement& own) {
    Element extensions = appendContainer(inLine, own, "Extensions");
    appendProviders(extensions);
    for (const Source& wrapper : wrappers_) {
      for (const DDXMLElement& extension : wrapper.ad.nodesForXPath("Extensions/Extension")) {
        copyExtensionOfWrapper(extensions, extension, wrapper.providers);
      }
    }
    copyExtensions(extensions, own);
  }

  // In the chain the InLine's Linear comes after the vendor blocks of Wrappers, in one document
  // before them, where their offset would win.
  void copyExtensionOfWrapper(Element extensions, const DDXMLElement& extension,
                              const DDXMLElement& providers) {
    if (!ownSkipOffsetWins_ || !extension.firstNodeForXPath("Tamzo/SkipOffset")) {
      copyExtension(extensions, extension, providers);
      return;
    }
    const NodeList blocks = extension.nodesForXPath("Tamzo");
    std::size_t next = 0;
    Element copy = extensions.appendTagOf(extension);
    forEachChild(extension, [&](const DDXMLElement& child) {
      if (next < blocks.size() && blocks.at(next) == child) {
        ++next;
        copyChildrenBut(copy.appendTagOf(child), child, "SkipOffset");
      } else if (child != providers) {
        copy.appendCopy(child);
      }
    });
  }

  void copyExtensions(Element extensions, const DDXMLElement& own) {
    forEachChild(own, [&](const DDXMLElement& extension) {
      copyExtension(extensions, extension, inline_.providers);
    });
  }

  // A reader takes its providers from the first AdVerifications of all extensions.
  void appendProviders(Element extensions) {
    Elements found;
    for (const Source& wrapper : wrappers_) {
      found.push_back(wrapper.providers);
    }
    found.push_back(inline_.providers);
    std::erase(found, DDXMLElement());
    if (found.empty()) {
      return;
    }
    Element extension = extensions.append("Extension");
    extension.setAttribute("type", "AdVerifications");
    Element providers = extension.append("AdVerifications");
    for (const DDXMLElement& each : found) {
      copyAll(providers, each.nodesForXPath("Verification"));
    }
  }

  void appendCreatives(Element inLine, const DDXMLElement& own) {
    Element creatives = appendContainer(inLine, own, "Creatives");
    for (const Source& wrapper : wrappers_) {
      for (const DDXMLElement& companions :
           wrapper.ad.nodesForXPath("Creatives/Creative/CompanionAds")) {
        creatives.append("Creative").appendCopy(companions);
      }
    }
    copyCreatives(creatives, own);
  }

  void copyCreatives(Element creatives, const DDXMLElement& own) {
    forEachChild(own, [&](const DDXMLElement& creative) {
      if (leadsTo(creative, "Linear", inline_.linear)) {
        copyCreativeOfLinear(creatives.appendTagOf(creative), creative);
      } else {
        creatives.appendCopy(creative);
      }
    });
  }

  void copyCreativeOfLinear(Element target, const DDXMLElement& creative) {
    forEachChild(creative, [&](const DDXMLElement& child) {
      if (child == inline_.linear) {
        appendLinear(target.appendTagOf(child));
      } else {
        target.appendCopy(child);
      }
    });
  }

  void appendLinear(Element linear) {
    const DDXMLElement tracking = inline_.linear.firstNodeForXPath("TrackingEvents");
    const DDXMLElement clicks = inline_.linear.firstNodeForXPath("VideoClicks");
    const DDXMLElement icons = inline_.linear.firstNodeForXPath("Icons");
    if (!tracking) {
      appendTracking(linear, tracking);
    }
    if (!clicks) {
      appendClicks(linear, clicks);
    }
    if (!icons) {
      appendIcons(linear, icons);
    }
    forEachChild(inline_.linear, [&](const DDXMLElement& child) {
      if (child == tracking) {
        appendTracking(linear, tracking);
      } else if (child == clicks) {
        appendClicks(linear, clicks);
      } else if (child == icons) {
        appendIcons(linear, icons);
      } else {
        linear.appendCopy(child);
      }
    });
  }

  void appendTracking(Element linear, const DDXMLElement& own) {
    Element tracking = appendContainer(linear, own, "TrackingEvents");
    copyOfLinears(tracking, {"TrackingEvents/Tracking"});
    copyChildren(tracking, own);
  }

  void appendClicks(Element linear, const DDXMLElement& own) {
    Element clicks = appendContainer(linear, own, "VideoClicks");
    copyOfLinears(clicks, {"VideoClicks/ClickTracking", "VideoClicks/CustomClick"});
    copyChildren(clicks, own);
  }

  void appendIcons(Element linear, const DDXMLElement& own) {
    Element icons = appendContainer(linear, own, "Icons");
    copyOfLinears(icons, {"Icons/Icon"});
    copyChildren(icons, own);
  }

  void copyOfWrappers(Element target, const XPath& path) {
    for (const Source& wrapper : wrappers_) {
      copyAll(target, wrapper.ad.nodesForXPath(path));
    }
  }

  void copyOfLinears(Element target, std::initializer_list<XPath> paths) {
    for (const Source& wrapper : wrappers_) {
      for (const XPath& path : paths) {
        copyAll(target, wrapper.linear.nodesForXPath(path));
      }
    }
  }

  std::vector<Source> wrappers_;
  Source inline_;
  bool ownSkipOffsetWins_;
};

}  // namespace

std::string mergeInlineVast(const std::vector<DDXMLElement>& chain, const DDXMLElement& inlineAd,
                            std::string_view version, const Text& adId) {
  DocumentBuilder document("VAST");
  document.root().setAttribute("version", version);
  Element ad = document.root().append("Ad");
  if (!adId.isNil()) {
    ad.setAttribute("id", adId);
  }
  Merge(chain, inlineAd, version).appendInLine(ad);
  // The parser takes "xmlns=" out of every response before it reads it.
  return withoutAssignments(document.write(), "xmlns");
}

}  // namespace tamzo
