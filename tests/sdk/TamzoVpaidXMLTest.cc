// The one document that a JavaScript VPAID unit sees: a whole chain, merged, and read back here by
// the parser itself.

#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "tests/support/SdkFixture.h"
#include "tests/support/StrictXml.h"

namespace tamzo::testing {
namespace {

using Texts = std::vector<std::string>;

const std::string kUnit =
    "<MediaFiles><MediaFile type='application/javascript' apiFramework='VPAID'>unit.js"
    "</MediaFile></MediaFiles>";

class VpaidXml : public SdkTest {
 protected:
  VpaidXml() {
    readUrlsWith([this](const Text& url) -> std::optional<std::string> {
      const auto found = web_.find(std::string(url.view()));
      return found == web_.end() ? std::nullopt : std::optional(found->second);
    });
  }

  static std::string wrapper(const std::string& next, const std::string& inside,
                             const std::string& attributes = "version='3.0'") {
    return "<VAST " + attributes + "><Ad id='outer'><Wrapper><VASTAdTagURI>http://ads.example/" +
           next + "</VASTAdTagURI>" + inside + "</Wrapper></Ad></VAST>";
  }
  static std::string inlineAd(const std::string& inside, const std::string& linear,
                              const std::string& attributes = "version='3.0'") {
    return "<VAST " + attributes + "><Ad id='inner'><InLine>" + inside +
           "<Creatives><Creative id='c'><Linear>" + linear + kUnit +
           "</Linear></Creative></Creatives></InLine></Ad></VAST>";
  }
  static std::string linear(const std::string& inside) {
    return "<Creatives><Creative><Linear>" + inside + "</Linear></Creative></Creatives>";
  }

  // Parses a chain, the InLine last, and then what it was merged into.
  void merge(const std::string& response) {
    ad_ = TamzoVastAd::initWithVast(response);
    ASSERT_EQ(ad_->errorCode(), 0);
    ASSERT_TRUE(ad_->jsVPaidPresent());
    ASSERT_TRUE(ad_->vastTagURI().view().starts_with("<VAST")) << ad_->vastTagURI();
    ASSERT_EQ(strictComplaint(ad_->vastTagURI()), "") << ad_->vastTagURI();
    ASSERT_EQ(TamzoVastAd::replaceWithPattern("xmlns", ad_->vastTagURI()), ad_->vastTagURI());
    merged_ = parseDocument(std::string(ad_->vastTagURI().view()));
    ASSERT_NE(merged_, nullptr);
    again_ = TamzoVastAd::initWithVast(ad_->vastTagURI());
    ASSERT_EQ(again_->errorCode(), 0) << ad_->vastTagURI();
  }

  Texts found(const char* path) const {
    Texts texts;
    for (const DDXMLElement& node : merged_->nodesForXPath(XPath(path))) {
      texts.emplace_back(node.stringValue().view());
    }
    return texts;
  }
  static Texts urls(const TamzoVastAd& ad, std::string_view name) {
    Texts texts;
    if (const TrackerList events = ad.trackers()->find(name)) {
      for (const auto& event : *events) {
        texts.emplace_back(std::string(event->url().view()) + "@" +
                           std::string(event->offset().view()));
      }
    }
    return texts;
  }

  std::map<std::string, std::string> web_;
  std::shared_ptr<TamzoVastAd> ad_;
  std::shared_ptr<DDXMLDocument> merged_;
  std::shared_ptr<TamzoVastAd> again_;
};

TEST_F(VpaidXml, HasTheVersionOfTheInLineAndTheIdOfTheOutermostAd) {
  web_["http://ads.example/2"] = inlineAd("", "", "version='4.2'");
  merge(wrapper("2", ""));
  EXPECT_EQ(merged_->rootElement().attributeValue("version"), Text("4.2"));
  EXPECT_EQ(merged_->nodesForXPath("/VAST/Ad").size(), 1U);
  EXPECT_EQ(again_->adID(), Text("outer"));
  EXPECT_EQ(again_->vpaidVastVersion(), ad_->vpaidVastVersion());
  EXPECT_TRUE(merged_->nodesForXPath("/VAST/Ad/Wrapper").empty());
}

TEST_F(VpaidXml, ReadsBackWithTheTrackersOfTheWholeChainInOrder) {
  const auto part = [](const std::string& n) {
    return "<Impression>i" + n + "</Impression><Error>e" + n + "</Error>" +
           linear("<TrackingEvents><Tracking event='start'>s" + n +
                  "</Tracking><Tracking event='progress' offset='00:00:0" + n + "'>p" + n +
                  "</Tracking></TrackingEvents><VideoClicks><ClickTracking>c" + n +
                  "</ClickTracking></VideoClicks>");
  };
  web_["http://ads.example/2"] = wrapper("3", part("2"));
  web_["http://ads.example/3"] =
      inlineAd("<Impression>i3</Impression><Error>e3</Error>",
               "<TrackingEvents><Tracking event='start'>s3</Tracking></TrackingEvents>"
               "<VideoClicks><ClickThrough>t3</ClickThrough><ClickTracking>c3</ClickTracking>"
               "</VideoClicks><Duration>00:00:30</Duration>");
  merge(wrapper("2", part("1")));
  EXPECT_EQ(urls(*again_, "Impression"), (Texts{"i1@", "i2@", "i3@"}));
  EXPECT_EQ(urls(*again_, "start"), (Texts{"s1@", "s2@", "s3@"}));
  EXPECT_EQ(urls(*again_, "progress"), (Texts{"p1@1", "p2@2"}));
  EXPECT_EQ(urls(*again_, "ClickTracking"), (Texts{"c1@", "c2@", "c3@"}));
  for (const char* name : {"Impression", "start", "progress", "ClickTracking"}) {
    EXPECT_EQ(urls(*again_, name), urls(*ad_, name)) << name << " as the chain itself gave it";
  }
  EXPECT_EQ(found("/VAST/Ad/InLine/Error"), (Texts{"e1", "e2", "e3"}));
  EXPECT_EQ(found("/VAST/Ad/InLine/Creatives/Creative/Linear/VideoClicks/ClickThrough"),
            Texts{"t3"});
  EXPECT_EQ(found("/VAST/Ad/InLine/Creatives/Creative/Linear/Duration"), Texts{"00:00:30"});
  EXPECT_EQ(found("/VAST/Ad/InLine/Creatives/Creative/Linear/MediaFiles/MediaFile"),
            Texts{"unit.js"});
}

TEST_F(VpaidXml, ReadsBackWithTheExtensionsAndCompanionsOfTheChain) {
  const auto extensions = [](const std::string& n) {
    return "<Extensions><Extension type='v'><Tamzo><TrackId>t" + n + "</TrackId><NielsenKey>k" + n +
           "</NielsenKey></Tamzo></Extension><Extension><AdVerifications>"
           "<Verification vendor='v" +
           n + "'/></AdVerifications></Extension></Extensions>";
  };
  const std::string companion =
      "<Creatives><Creative><CompanionAds><Companion id='k1' width='1' height='1'/>"
      "</CompanionAds></Creative></Creatives>";
  web_["http://ads.example/2"] = inlineAd(extensions("2"), "");
  merge(wrapper("2", extensions("1") + companion));
  EXPECT_EQ(again_->trackId(), Text("t2")) << "the innermost is written last";
  EXPECT_EQ(again_->trackId(), ad_->trackId());
  EXPECT_EQ(again_->nielsenKey(), ad_->nielsenKey());
  ASSERT_EQ(ad_->measurementProviderList()->size(), 2U);
  ASSERT_EQ(again_->measurementProviderList()->size(), 2U);
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_EQ((*again_->measurementProviderList())[i]->vendor(),
              (*ad_->measurementProviderList())[i]->vendor());
  }
  EXPECT_EQ(ad_->companionAds()->size(), 1U);
  EXPECT_EQ(again_->companionAds()->size(), 1U);
}

TEST_F(VpaidXml, ReadsBackWithWhatVersion4Adds) {
  const std::string attributes = "version='4.0'";
  const std::string viewable =
      "<ViewableImpression><Viewable>v1</Viewable><NotViewable>n1</NotViewable>"
      "</ViewableImpression>";
  web_["http://ads.example/2"] =
      inlineAd("<Category>IAB1</Category><Expires>60</Expires>",
               "<Icons><Icon program='inner'/></Icons><Duration>00:00:30</Duration>", attributes);
  merge(wrapper("2", viewable, attributes));
  EXPECT_EQ(urls(*again_, "Viewable"), Texts{"v1@"});
  EXPECT_EQ(urls(*again_, "NotViewable"), Texts{"n1@"});
  EXPECT_EQ(again_->expires(), 60.0);
  EXPECT_EQ(again_->categoryArray()->size(), 1U);
  EXPECT_EQ(again_->extraActions().list()->size(), 1U);
  EXPECT_EQ(again_->duration()->durationInSeconds(), 30);
  EXPECT_EQ(again_->mediaFiles()->size(), 1U);
}

TEST_F(VpaidXml, SpecialCharactersComeThrough) {
  const std::string odd = "a&amp;b&lt;c&gt;&quot;d&quot; '&#9;&#10;\xC3\xA4\xF0\x9F\x98\x80";
  web_["http://ads.example/2"] = inlineAd("<Impression><![CDATA[i?a=1&b=<2>]]></Impression>", "");
  std::string response = wrapper("2", "<Impression>o?a=1&amp;b=2</Impression>");
  response.replace(response.find("id='outer'"), 10, "id=\"" + odd + "\"");
  merge(response);
  EXPECT_EQ(again_->adID(), Text("a&b<c>\"d\" '\t\n\xC3\xA4\xF0\x9F\x98\x80"));
  EXPECT_EQ(urls(*again_, "Impression"), (Texts{"o?a=1&b=2@", "i?a=1&b=<2>@"}));
}

TEST_F(VpaidXml, DeclaredEntitiesAreWrittenOut) {
  web_["http://ads.example/2"] =
      "<!DOCTYPE VAST [<!ENTITY host 'cdn.example?a&amp;b'>]>" +
      inlineAd("<Impression>http://&host;/i</Impression>",
               "<TrackingEvents><Tracking event='&host;'>&host;</Tracking></TrackingEvents>");
  merge("<!DOCTYPE VAST [<!ENTITY host 'outer.example'>]>" +
        wrapper("2", "<Impression>&host;</Impression>"));
  EXPECT_EQ(urls(*again_, "Impression"), (Texts{"outer.example@", "http://cdn.example?a&b/i@"}));
  EXPECT_EQ(urls(*again_, "cdn.example?a&b"), Texts{"cdn.example?a&b@"});
}

TEST_F(VpaidXml, NamespacesAndTextsThatLookLikeThemSurviveTheCleanUp) {
  web_["http://ads.example/2"] = inlineAd(
      "<Impression>i?xmlns=1 2</Impression><Impression><![CDATA[j?xmlns=1 2]]></Impression>"
      "<Extensions><Extension><o:Own xmlns:o='urn:o' o:a='xmlns=1 2'/>"
      "<Other xmlns='urn:other' b='1'><In/></Other><!-- xmlns=1 2 --></Extension></Extensions>",
      "<TrackingEvents><Tracking event='start' note='XMLNS=&apos;x&apos; y'>s</Tracking>"
      "</TrackingEvents>");
  merge(wrapper("2", ""));
  EXPECT_EQ(urls(*again_, "Impression"), (Texts{"i?xmlns=1 2@", "j?xmlns=1 2@"}));
  EXPECT_EQ(urls(*again_, "start"), Texts{"s@"});
  EXPECT_EQ(merged_->nodesForXPath("//*[namespace-uri()='urn:other']").size(), 2U);
  EXPECT_EQ(merged_->nodesForXPath("//*[namespace-uri()='urn:o']").size(), 1U);
  EXPECT_EQ(found("//@note"), Texts{"XMLNS='x' y"});
}

TEST_F(VpaidXml, InstructionsHoldAnyCharacter) {
  web_["http://ads.example/2"] = inlineAd(
      "<Impression><?p it's?><![CDATA[i?xmlns=1 2]]></Impression><?p \" > ?>"
      "<Extensions><Extension><?note the publisher's tag?><Other xmlns='urn:other' b='1'/>"
      "<?p xmlns=1 2?><Other xmlns='urn:other'/></Extension></Extensions>",
      "");
  merge(wrapper("2", ""));
  EXPECT_EQ(urls(*again_, "Impression"), Texts{"i?xmlns=1 2@"});
  EXPECT_EQ(merged_->nodesForXPath("//*[namespace-uri()='urn:other']").size(), 2U);
}

// ---- Order ---------------------------------------------------------------------------------

TEST_F(VpaidXml, TheInLinesOwnElementsKeepTheirOrder) {
  const auto creatives = [](const std::string& inside) {
    return "<Creatives><Creative><Linear>" + inside + "</Linear></Creative></Creatives>";
  };
  web_["http://ads.example/2"] =
      "<VAST version='3.0'><Ad><InLine><Impression>1</Impression>" +
      creatives("<Duration>00:00:01</Duration>" + kUnit) + "<Impression>2</Impression>" +
      creatives("<Duration>00:00:02</Duration>") +
      "<Extensions><Extension><Tamzo><TrackId>1</TrackId></Tamzo></Extension></Extensions>"
      "<Extensions><Extension><Tamzo><TrackId>2</TrackId></Tamzo></Extension></Extensions>"
      "<Impression>3</Impression></InLine></Ad></VAST>";
  merge(wrapper("2", "<Impression>0</Impression>"));
  EXPECT_EQ(urls(*again_, "Impression"), (Texts{"0@", "1@", "2@", "3@"}));
  EXPECT_EQ(found("//Duration"), (Texts{"00:00:01", "00:00:02"}));
  EXPECT_EQ(found("//TrackId"), (Texts{"1", "2"}));
  EXPECT_EQ(again_->trackId(), ad_->trackId());
}

TEST_F(VpaidXml, TheLinearThatIsPlayedIsMergedWhereverItStands) {
  web_["http://ads.example/2"] =
      "<VAST version='3.0'><Ad><InLine><Creatives/><Creatives><Creative/><Creative><NonLinear/>"
      "<Linear><TrackingEvents><Tracking event='start'>2</Tracking></TrackingEvents>" +
      kUnit +
      "</Linear><Linear/></Creative><Creative>as it is<Linear/></Creative></Creatives></InLine>"
      "</Ad></VAST>";
  merge(wrapper("2",
                linear("<TrackingEvents><Tracking event='start'>1</Tracking></TrackingEvents>")));
  EXPECT_EQ(urls(*again_, "start"), (Texts{"1@", "2@"}));
  EXPECT_EQ(found("/VAST/Ad/InLine/Creatives[2]/Creative[2]/Linear[1]/TrackingEvents/Tracking"),
            (Texts{"1", "2"}));
  EXPECT_EQ(merged_->nodesForXPath("/VAST/Ad/InLine/Creatives").size(), 2U);
  EXPECT_EQ(merged_->nodesForXPath("//Linear").size(), 3U);
  EXPECT_EQ(merged_->nodesForXPath("//Linear/*").size(), 4U) << "the others stay empty";
  EXPECT_EQ(found("/VAST/Ad/InLine/Creatives[2]/Creative[3]"), Texts{"as it is"});
}

TEST_F(VpaidXml, ProvidersOfASecondExtensionsComeOnce) {
  const std::string verifications =
      "<AdVerifications><Verification vendor='v'><ViewableImpression>m</ViewableImpression>"
      "</Verification></AdVerifications>";
  web_["http://ads.example/2"] =
      inlineAd("<Extensions><Extension/></Extensions><Extensions><Extension>kept" + verifications +
                   "<Kept/></Extension></Extensions>",
               "");
  merge(wrapper("2", ""));
  EXPECT_EQ(again_->measurementProviderList()->size(), 1U);
  EXPECT_EQ(again_->moatVastIds(), Text("<ViewableImpression>m</ViewableImpression>"));
  EXPECT_EQ(found("/VAST/Ad/InLine/Extensions[2]/Extension[Kept]"), Texts{"kept"});
}

TEST_F(VpaidXml, ProvidersOfAWrapperComeOnceAndTheRestOfTheirExtensionStays) {
  web_["http://ads.example/2"] = inlineAd("", "");
  merge(wrapper("2",
                "<Extensions><Extension>kept<AdVerifications><Verification vendor='v'>"
                "<ViewableImpression>m</ViewableImpression></Verification></AdVerifications><Kept/>"
                "</Extension></Extensions>"));
  EXPECT_EQ(again_->measurementProviderList()->size(), 1U);
  EXPECT_EQ(again_->moatVastIds(), Text("<ViewableImpression>m</ViewableImpression>"));
  EXPECT_EQ(again_->moatVastIds(), ad_->moatVastIds());
  EXPECT_EQ(merged_->nodesForXPath("//Verification").size(), 1U);
  EXPECT_EQ(found("/VAST/Ad/InLine/Extensions/Extension[Kept]"), Texts{"kept"});
  EXPECT_EQ(found("/VAST/Ad/InLine/Extensions/Extension[AdVerifications]/@type"),
            Texts{"AdVerifications"});
}

TEST_F(VpaidXml, ReadsBackWithTheSkipOffsetThatWinsInTheChain) {
  const std::string block =
      "<Extensions xmlns:p='urn:p'><Extension><Other/><Tamzo><SkipOffset>00:00:09</SkipOffset>"
      "<TrackId p:a=''>t</TrackId><SkipOffset>00:00:08</SkipOffset></Tamzo><AdVerifications>"
      "<Verification vendor='v'/></AdVerifications></Extension></Extensions>";
  for (const char* version : {"2.0", "3.0", "4.2"}) {
    const std::string attributes = "version='" + std::string(version) + "'";
    for (const char* own : {"", " skipoffset=''", " skipoffset='00:00:05'"}) {
      std::string last = inlineAd("", "", attributes);
      last.replace(last.find("<Linear"), 7, "<Linear" + std::string(own));
      web_["http://ads.example/2"] = last;
      merge(wrapper("2", block, attributes));
      EXPECT_EQ(again_->skipOffsetMillis(), ad_->skipOffsetMillis()) << version << own;
      EXPECT_GT(ad_->skipOffsetMillis(), 0) << version << own;
      EXPECT_EQ(again_->trackId(), Text("t"));
      EXPECT_EQ(again_->measurementProviderList()->size(), 1U);
      EXPECT_EQ(merged_->nodesForXPath("//Other").size(), 1U);
    }
  }
}

TEST_F(VpaidXml, HasTheCustomClicksOfTheWholeChain) {
  const auto clicks = [](const std::string& n) {
    return "<VideoClicks><CustomClick>x" + n + "</CustomClick></VideoClicks>";
  };
  web_["http://ads.example/2"] = inlineAd("", clicks("2"), "version='4.0'");
  merge(wrapper("2", linear(clicks("1")), "version='4.0'"));
  EXPECT_EQ(urls(*again_, "CustomClickTracker"), (Texts{"x1@", "x2@"}));
}

TEST_F(VpaidXml, WhatTheInLineMergesIntoKeepsItsAttributes) {
  web_["http://ads.example/2"] =
      "<VAST version='3.0'><Ad><InLine><AdVerifications a='1'/><Extensions a='2'/>"
      "<Creatives a='3'><Creative a='4'><Linear a='5'><TrackingEvents a='6'/><VideoClicks a='7'/>"
      "<Icons a='8'/>" +
      kUnit + "</Linear></Creative></Creatives></InLine></Ad></VAST>";
  merge(wrapper("2", ""));
  EXPECT_EQ(found("//@a"), (Texts{"1", "2", "3", "4", "5", "6", "7", "8"}));
}

TEST_F(VpaidXml, WhatTheInLineLacksIsThereAndEmpty) {
  web_["http://ads.example/2"] = inlineAd("", "");
  merge(wrapper("2", ""));
  for (const char* path :
       {"AdVerifications", "Extensions", "Creatives/Creative/Linear/Icons",
        "Creatives/Creative/Linear/VideoClicks", "Creatives/Creative/Linear/TrackingEvents"}) {
    const std::string whole = std::string("/VAST/Ad/InLine/") + path;
    const NodeList found = merged_->nodesForXPath(XPath(whole));
    ASSERT_EQ(found.size(), 1U) << path;
    EXPECT_FALSE(found.at(0).firstChildElement()) << path;
  }
}

// ---- Links ---------------------------------------------------------------------------------

TEST(VpaidXmlLinks, AChainOfAnyLengthGoes) {
  std::shared_ptr<TamzoVpaidXML> chain;
  std::weak_ptr<TamzoVpaidXML> outermost;
  for (int i = 0; i < 200'000; ++i) {
    auto link = TamzoVpaidXML::initWithVpaidWrapperNode(NodeList());
    link->setOuterWrapper(std::move(chain));
    chain = std::move(link);
    if (i == 0) {
      outermost = chain;
    }
  }
  const auto inner = TamzoVpaidXML::initWithVpaidWrapperNode(NodeList());
  inner->setOuterWrapper(chain);
  chain.reset();
  EXPECT_FALSE(outermost.expired()) << "another link still holds it";
  inner->setOuterWrapper(nullptr);
  EXPECT_TRUE(outermost.expired());
}

TEST(VpaidXmlLinks, ARingIsGoneThroughOnce) {
  const auto document = parseDocument("<VAST><Ad><Wrapper><Error>e</Error></Wrapper></Ad></VAST>");
  const auto first =
      TamzoVpaidXML::initWithVpaidWrapperNode(document->nodesForXPath("/VAST/Ad/Wrapper"));
  const auto second = std::make_shared<TamzoVpaidXML>(*first);
  first->setOuterWrapper(second);
  second->setOuterWrapper(first);
  const auto merged = parseDocument(std::string(first->createInlineVast(NodeList(), "id").view()));
  EXPECT_EQ(merged->nodesForXPath("/VAST/Ad/InLine/Error").size(), 2U);
  second->setOuterWrapper(nullptr);
}

// ---- Cost ----------------------------------------------------------------------------------

TEST_F(VpaidXml, AnInLineOfManyElementsIsMergedInOneGo) {
  std::string impressions;
  for (int i = 0; i < 34'000; ++i) {
    impressions += "<Impression>i</Impression>";
  }
  web_["http://ads.example/2"] = inlineAd(impressions, "");
  const auto start = std::chrono::steady_clock::now();
  merge(wrapper("2", "<Impression>o</Impression>"));
  // A tenth of a second, where nothing disturbs it.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
  EXPECT_EQ(again_->trackers()->find("Impression")->size(), 34'001U);
}

TEST_F(VpaidXml, ALongAddressIsWrittenOnce) {
  const std::string attributes = "version='3.0' xmlns:p='urn:" + std::string(20'000, 'x') +
                                 "' xmlns:q='urn:" + std::string(20'000, 'y') + "'";
  std::string trackings;
  for (int i = 0; i < 1000; ++i) {
    trackings += "<Tracking event='start' p:a='' q:b=''>s</Tracking>";
  }
  const std::string events = "<TrackingEvents>" + trackings + "</TrackingEvents>";
  web_["http://ads.example/2"] = inlineAd("", events, attributes);
  const std::string response = wrapper("2", linear(events), attributes);
  merge(response);
  EXPECT_LT(ad_->vastTagURI().view().size(),
            response.size() + web_["http://ads.example/2"].size() + 1000);
  EXPECT_EQ(again_->trackers()->find("start")->size(), 2000U);
}

// ---- Odd documents -------------------------------------------------------------------------

TEST_F(VpaidXml, AddressesOfNamespacesComeOutAsXml) {
  web_["http://ads.example/2"] =
      "<!DOCTYPE VAST [<!ENTITY e 'urn:e'>]>" +
      inlineAd("<Extensions><Extension><x:x xmlns:x='&e;'/></Extension></Extensions>", "",
               "version='3.0' xmlns:y='a&lt;b'") +
      "<!-- -->";
  merge(wrapper("2", "<Extensions><Extension><z:z xmlns:z='a&lt;b'/></Extension></Extensions>"));
  EXPECT_EQ(merged_->nodesForXPath("//*[namespace-uri()='urn:e']").size(), 1U);
  EXPECT_EQ(merged_->nodesForXPath("//*[local-name()='z' and namespace-uri()!='']").size(), 1U);
}

TEST_F(VpaidXml, UndeclaredPrefixesComeOutDeclared) {
  // The clean-up takes the declaration that stands right behind the default one.
  const std::string attributes =
      "version='3.0' xmlns='urn:vast'xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' a='b'";
  web_["http://ads.example/2"] =
      inlineAd("<Extensions><Extension xsi:type='t'><fw:x fw:a='1'/></Extension></Extensions>",
               "<TrackingEvents><Tracking event='start' fw:b='2'>s</Tracking></TrackingEvents>");
  merge(wrapper("2", "<Extensions><Extension xsi:schemaLocation='a b'/></Extensions>", attributes));
  EXPECT_EQ(urls(*again_, "start"), Texts{"s@"});
  EXPECT_EQ(merged_->nodesForXPath("//*[local-name()='x' and namespace-uri()!='']").size(), 1U);
  EXPECT_EQ(found("//@*[local-name()='schemaLocation' and namespace-uri()!='']"), Texts{"a b"});
}

TEST_F(VpaidXml, ElementsInANamespaceStayOnes) {
  const std::string foreign = "<Impression xmlns='urn:x'>no</Impression>";
  web_["http://ads.example/2"] =
      inlineAd("<Impression>i</Impression>" + foreign,
               "<TrackingEvents xmlns='urn:x'><Tracking event='start'>no</Tracking>"
               "</TrackingEvents><TrackingEvents><Tracking event='start'>s</Tracking>"
               "<Tracking event='start' xmlns='urn:x'>no</Tracking></TrackingEvents>");
  merge(wrapper("2", foreign + "<Impression>o</Impression>"));
  EXPECT_EQ(urls(*again_, "Impression"), (Texts{"o@", "i@"}));
  EXPECT_EQ(urls(*again_, "start"), Texts{"s@"});
  EXPECT_EQ(merged_->nodesForXPath("//*[namespace-uri()='urn:x']").size(), 4U)
      << "what no path finds in the Wrapper is left there";
}

// Everything that a document may hold beside the ad, in every place of a chain, with every root.
class VpaidXmlOf : public VpaidXml,
                   public ::testing::WithParamInterface<std::tuple<std::string, std::string>> {};

TEST_P(VpaidXmlOf, ReadsBackAsTheChain) {
  const auto& [attributes, odd] = GetParam();
  const auto document = [attributes = attributes, odd = odd](const std::string& n,
                                                             const std::string& ad) {
    const std::string place = "<Extensions><Extension>" + odd + "<Tamzo><TrackId>t" + n +
                              "</TrackId></Tamzo><AdVerifications>" + odd +
                              "<Verification vendor='v" + n + "'>" + odd +
                              "</Verification></AdVerifications></Extension></Extensions>"
                              "<Impression>i" +
                              n + "</Impression>" + odd;
    return "<!DOCTYPE VAST [<!ENTITY e 'urn:e" + n + "'><!ENTITY f '&lt;&e;&amp;'>]><VAST " +
           attributes + "><Ad id='a'>" + ad + place + "<Creatives>" + odd + "<Creative>" + odd +
           "<CompanionAds>" + odd + "<Companion width='1' height='1'/></CompanionAds><Linear>" +
           odd + "<TrackingEvents>" + odd + "<Tracking event='start'>s" + n + odd +
           "</Tracking></TrackingEvents><VideoClicks><ClickTracking>c" + n +
           "</ClickTracking></VideoClicks>" + (n == "3" ? kUnit : "") +
           "</Linear></Creative></Creatives>";
  };
  const auto link = [](const std::string& n) {
    return "<Wrapper><VASTAdTagURI>http://ads.example/" + n + "</VASTAdTagURI>";
  };
  web_["http://ads.example/2"] = document("2", link("3")) + "</Wrapper></Ad></VAST>";
  web_["http://ads.example/3"] = document("3", "<InLine>") + "</InLine></Ad></VAST>";
  // The clean-up would cut the first document short.
  web_["http://ads.example/1"] = document("1", link("2")) + "</Wrapper></Ad></VAST>";
  ASSERT_NO_FATAL_FAILURE(merge(wrapper("1", "")));
  for (const char* name : {"Impression", "start", "ClickTracking"}) {
    EXPECT_EQ(urls(*again_, name).size(), 3U) << name;
    EXPECT_EQ(urls(*again_, name), urls(*ad_, name)) << name;
  }
  EXPECT_EQ(again_->trackId(), Text("t3"));
  EXPECT_EQ(again_->measurementProviderList()->size(), 3U);
  EXPECT_EQ(again_->companionAds()->front()->companions().size(), 3U);
  EXPECT_EQ(found("/VAST/Ad/InLine/Creatives/Creative/Linear/MediaFiles/MediaFile"),
            Texts{"unit.js"});
}

INSTANTIATE_TEST_SUITE_P(
    Product, VpaidXmlOf,
    ::testing::Combine(
        ::testing::Values("version='3.0'", "version='4.0' xmlns:p='urn:p' xmlns:q='&e;'",
                          "version='2.0' xmlns:p='&f;' p:a='1'"),
        ::testing::Values("", "text &amp; &lt; ]]&gt;", "<![CDATA[xmlns= <a b='\"]]>",
                          "<!-- xmlns= ' -->", "<?p xmlns= ' > ?>", "<?p:q r?>", "&e;&f;",
                          "<a b='&f;xmlns=&#10;'>&f;</a>", "<p:a p:b=''/>", "<q:a q:b='' p:b=''/>",
                          "<u:a u:b='' w:c='' :d='' e:f:g=''/>", "<a xmlns='urn:a'><b/></a>",
                          "<a xmlns:p='urn:other'><p:b/></a>", "<Creatives/><Extensions/><InLine/>",
                          "<a xmlns='&f;'><b xmlns=''><c/></b></a>", "<xmlns:a xmlns:='1'/>",
                          "<a xmlns:ns-1='urn:x'><ns-1:b p:c=''/></a>",
                          "<a xml:lang='de' p:lang=''/>",
                          "xmlns=1 XMLN\xC5\xBF=2 xmlns<![CDATA[=3]]>")));

TEST_F(VpaidXml, OnlyTheWrappersOfOneParseAreMerged) {
  web_["http://ads.example/2"] = inlineAd("", "");
  const std::string response = wrapper("2", "<Impression>o</Impression>");
  const auto ad = TamzoVastAd::initWithVast(response);
  ad->parseVast(response);
  const auto merged = parseDocument(std::string(ad->vastTagURI().view()));
  EXPECT_EQ(merged->nodesForXPath("/VAST/Ad/InLine/Impression").size(), 1U);
}

TEST_F(VpaidXml, IsADocumentWhateverItIsGiven) {
  const auto wrapperRecord = TamzoVpaidXML::initWithVpaidWrapperNode(NodeList());
  EXPECT_TRUE(wrapperRecord->vastVersion().isNil());
  for (const Text& id : {Text(), Text(""), Text("1")}) {
    const Text document = wrapperRecord->createInlineVast(NodeList(), id);
    ASSERT_TRUE(document.hasCharacters());
    const auto parsed = parseDocument(std::string(document.view()));
    EXPECT_EQ(parsed->rootElement().attributeValue("version"), Text("2.0"));
    EXPECT_EQ(parsed->nodesForXPath("/VAST/Ad").at(0).attributeValue("id"), id);
    wrapperRecord->setVastVersion("");
  }
}

}  // namespace
}  // namespace tamzo::testing
