#include "explain/Findings.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/explain/ExplainFixture.h"
#include "tests/support/Growth.h"

namespace tamzo::testing {
namespace {

struct Case {
  std::string response;
  Lines findings;
};

class FindingsTest : public ExplainTest {
 protected:
  void check(const std::vector<Case>& cases) {
    for (const Case& one : cases) {
      EXPECT_EQ(findings(one.response), one.findings) << one.response.substr(0, 400);
    }
  }
};

const std::string kFile = "<MediaFile type='video/mp4'>https://m.example/v.mp4</MediaFile>";

std::string mediaFiles(const std::string& files) {
  return "<MediaFiles>" + files + "</MediaFiles>";
}

// A playable ad of VAST 4 whose second line is the content.
std::string playable(const std::string& content, const std::string& version = "4.0",
                     const std::string& files = kFile) {
  return "<VAST version='" + version + "'><Ad id='1'><InLine>\n" + content +
         "<Creatives><Creative><Linear>" + mediaFiles(files) +
         "</Linear></Creative></Creatives></InLine></Ad></VAST>";
}

// The same with a Linear of that content, on its third line.
std::string withLinear(const std::string& content, const std::string& attributes = "",
                       const std::string& version = "4.0") {
  return "<VAST version='" + version + "'><Ad id='1'><InLine>\n<Creatives><Creative><Linear" +
         attributes + ">\n" + content + mediaFiles(kFile) +
         "</Linear></Creative></Creatives></InLine></Ad></VAST>";
}

std::string tracking(const std::string& event, const std::string& url) {
  return "<TrackingEvents><Tracking event='" + event + "'>" + url + "</Tracking></TrackingEvents>";
}

std::string wrapperTo(const std::string& tag, const std::string& more = "") {
  return "<VAST version='4.0'><Ad id='w'><Wrapper>\n <VASTAdTagURI>" + tag + "</VASTAdTagURI>" +
         more + "</Wrapper></Ad></VAST>";
}

std::string vendor(const std::string& content) {
  return "<Extensions><Extension><Tamzo>" + content + "</Tamzo></Extension></Extensions>";
}

TEST_F(FindingsTest, aResponseOfLessThanFourUnits) {
  check({{"", {"tag-too-short 1 length=0"}},
         {"abc", {"tag-too-short 1 length=3"}},
         {"\xF0\x9F\x98\x80z", {"tag-too-short 1 length=3"}},
         {"abcd", {"not-xml 1 1:1 parser=\"Start tag expected, '<' not found\""}}});
}

TEST_F(FindingsTest, aWrapperTagOfLessThanFourUnits) {
  check({{wrapperTo("ab"), {"tag-too-short 1 2:2 length=2"}},
         {wrapperTo(""), {"tag-too-short 1 2:2 length=0"}},
         {"<VAST version='2.0'><Ad>\n<Wrapper/></Ad></VAST>", {"tag-too-short 1 2:1 length=0"}}});
  EXPECT_EQ(explainResponse(wrapperTo("ab")).hops.size(), 1U);
}

TEST_F(FindingsTest, aTrackingWithoutEvent) {
  const std::string missing = "<TrackingEvents><Tracking>u</Tracking></TrackingEvents>";
  const std::string extra = vendor("<ExtraTrackingEvents><Tracking/></ExtraTrackingEvents>");
  check({{withLinear(missing), {"tracking-without-event 1 3:17"}},
         {withLinear("<TrackingEvents><Tracking event=''>u</Tracking></TrackingEvents>"), {}},
         {playable(extra), {"tracking-without-event 1 2:52"}},
         {playable(extra, "3.0"), {}},
         {playable("<Creatives><Creative><CompanionAds><Companion>" + missing +
                   "</Companion></CompanionAds></Creative></Creatives>"),
          {}}});
}

TEST_F(FindingsTest, aTagThatIsParsedAsText) {
  const std::vector<std::pair<std::string, std::string>> kinds{
      {" http://a.example/", "leading-blank"},
      {"HTTPS://a.example/x", "letter-case"},
      {"Http://a.example/x", "letter-case"},
      {"//a.example/x", "protocol-relative"},
      {"ftp://a.example/x", "other-scheme"},
      {"data:text/xml,a", "other-scheme"},
      {"/vast/2?id=1", "relative"},
      {"vast.xml", "relative"},
      {"a.example/vast", "relative"},
      {"localhost:8080/vast", "relative"},
      {"../vast?x={y}", "relative"},
      {"{{tag}}", "other"},
      {"${TAG}/x.xml", "other"},
      {"undefined", "other"},
      {" /vast", "relative"},
  };
  for (const auto& [tag, kind] : kinds) {
    const auto explanation = explainResponse(wrapperTo(tag));
    const std::string first = linesOf(explanation).at(0);
    EXPECT_EQ(first, "tag-not-fetched 1 2:2 kind=\"" + kind + "\"") << tag;
    ASSERT_EQ(explanation.hops.size(), 2U);
    EXPECT_EQ(explain::nameOf(explanation.hops[1].source), "tag");
    EXPECT_EQ(explain::nameOf(explanation.hops[1].kind), "none");
  }
}

// What is in front of it is told in words, not shown.
TEST_F(FindingsTest, aTagInFrontOfWhichALineEndsIsToldOnOneLine) {
  EXPECT_EQ(
      explainResponse(wrapperTo("\n  <![CDATA[http://a.example/]]>\n ")).sentence,
      "The Wrapper's tag \"http://a.example/\" begins with white space, so it was not fetched "
      "(hop 1, line 2, column 2).");
}

TEST_F(FindingsTest, whatTheCleanUpBreaks) {
  const std::string body = "<Ad id='1'><InLine>" + linear(mediaFiles(kFile)) + "</InLine></Ad>";
  check({{"<VAST version='4.0' xmlns='u'>\n  <Ad>" + body + "</Ad></VAST>",
          {"collapse-took-tag-end 1 1:21 read=\"<VAST version='4.0' xmlns  <Ad>\""}},
         {"<VAST version='4.0' XMLNS='u'>\n  <Ad/></VAST>",
          {"collapse-took-tag-end 1 1:21 read=\"<VAST version='4.0' xmlns  <Ad/>\""}},
         {"<VAST version='4.0'><x xmlns='u'/> <y/></VAST>",
          {"collapse-took-tag-end 1 1:24 read=\"<x xmlns<y/>\""}},
         {"<VAST version='4.0'><x a='?xmlns=1'/> <y b=''/></VAST>",
          {"collapse-took-tag-end 1 1:28 read=\"<x a='?xmlns<y b=''/>\""}},
         {"<VAST version='4.0' xmlns='u' >" + body + "</VAST>", {"collapse-broke-markup 1 1:21"}},
         {"<VAST version='4.0' xmlns='u'  id='1'>" + body + "</VAST>",
          {"collapse-broke-markup 1 1:21"}},
         {"<VAST version='4.0' xmlns='a b' id='1'>" + body + "</VAST>",
          {"collapse-broke-markup 1 1:21"}},
         {"<VAST version='4.0'>\n<!-- xmlns='u'-->\n" + body + "</VAST>",
          {"collapse-broke-markup 1 2:6"}},
         {"<VAST version='4.0'>\n<!-- xmlns='u' -->\n" + body + "</VAST>", {}},
         {"<VAST version='4.0' xmlns:a='u'>\n" + body + "</VAST>", {}},
         // Already broken as received.
         {"<VAST version='4.0' xmlns='u'>\n <a>&</a></VAST>", {"unescaped-ampersand 1 2:5"}}});
}

TEST_F(FindingsTest, theSecondParseSaysWhetherItWouldPlay) {
  const auto advice = [this](const std::string& response) {
    return explainResponse(response).findings.at(0).advice;
  };
  const std::string root = "<VAST version='4.0' xmlns='u'>\n ";
  const std::string body = "<Ad id='1'><InLine>" + linear(mediaFiles(kFile)) + "</InLine></Ad>";
  const std::string said = "Without it this ad would end with 0.";
  EXPECT_NE(advice(root + body + "</VAST>").find(said), std::string::npos);
  EXPECT_EQ(advice(root + "</VAST>").find(said), std::string::npos);
  EXPECT_EQ(advice(root + "<Ad><Wrapper><VASTAdTagURI>http://a.example</VASTAdTagURI></Wrapper>"
                          "</Ad></VAST>")
                .find(said),
            std::string::npos);
  EXPECT_EQ(advice(root + "<Ad><InLine>" + linear("") + "</InLine></Ad></VAST>").find(said),
            std::string::npos);
  blockCategories("IAB1");
  EXPECT_EQ(advice(root + "<Ad><InLine><Category>IAB1</Category>" + linear(mediaFiles(kFile)) +
                   "</InLine></Ad></VAST>")
                .find(said),
            std::string::npos);
}

TEST_F(FindingsTest, attributesThatTheCleanUpTakes) {
  const std::string body = "<Ad id='1'><InLine>" + linear(mediaFiles(kFile)) + "</InLine></Ad>";
  check({{"<VAST version='4.0' xmlns='u' id='1' b='2'>" + body + "</VAST>",
          {"collapse-took-attributes 1 1:21 attributes=[\"id\"]"}},
         {"<VAST xmlns='u' version='4.0'>" + body + "</VAST>", {"collapse-took-version 1 1:7"}},
         {"<VAST xmlns='u' version=''>" + body + "</VAST>",
          {"version-missing 1 1:1 attributes=[\"xmlns\", \"version\"]",
           "collapse-took-attributes 1 1:7 attributes=[\"version\"]"}},
         {"<VAST version='4.0'>\n<!-- xmlns='u' id='1' -->" + body + "</VAST>", {}}});
  // A document that was fetched is read as it is.
  serve("http://a.example/2", "<VAST xmlns='u' version='4.0'>\n" + body + "</VAST>");
  EXPECT_EQ(findings(wrapperTo("http://a.example/2")),
            (Lines{"namespaced-root 2 1:1 namespace=\"u\"", "insecure-url 1 2:2 count=1"}));
}

TEST_F(FindingsTest, theFirstFaultOfAText) {
  check({
      {"<VAST version='4.0'>\n<a>x&y=1</a><b/>&nbsp;</VAST>", {"unescaped-ampersand 1 2:5"}},
      {"<VAST version='4.0'>\n<a>x&nbsp;y&z=</a></VAST>",
       {"undefined-entity 1 2:5 entity=\"nbsp\""}},
      {"<VAST version='4.0' a='&amp;&lt;&#38;&quot;'><a>&apos;&gt;<![CDATA[a&b]]><!-- & --></a>"
       "</VAST>",
       {"no-ad 1 1:1"}},
      {"<!DOCTYPE VAST [<!ENTITY x 'y'>]>\n<VAST version='4.0'>&x;</VAST>", {"no-ad 1 2:1"}},
      {"<VAST version='4.0'\r\n a='1' a='2'/>", {"duplicate-attribute 1 2:8 attribute=\"a\""}},
      {"<VAST version='4.0' a='1' A='2' b:a='3'/>", {"no-ad 1 1:1"}},
      {"<VAST version='4.0'>\xC3\xA9\x01</VAST>", {"control-character 1 1:22 codePoint=1"}},
      {"<VAST version='4.0'>&#8;</VAST>", {"control-character 1 1:21 codePoint=8"}},
      {"<VAST version='4.0'>&#x1F;</VAST>", {"control-character 1 1:21 codePoint=31"}},
      {std::string("<VAST>\0</VAST>", 14), {"control-character 1 1:7 codePoint=0"}},
      {"<VAST version='4.0'>&#9;&#x20;\x7F</VAST>", {"no-ad 1 1:1"}},
      {"\n <?xml version='1.0'?><VAST version='4.0'/>", {"blank-before-declaration 1 2:2"}},
      {"x<?xml version='1.0'?><VAST version='4.0'/>", {"blank-before-declaration 1 1:2"}},
      {"\n <VAST version='4.0'/>", {"no-ad 1 2:2"}},
      {"<VAST version='4.0'>\n<Ad><InLine>ab",
       {"cut-off 1 2:15 openElements=[\"VAST\", \"Ad\", "
        "\"InLine\"]"}},
      {"<VAST version='4.0'>\n<Ad id='1", {"cut-off 1 2:10 openElements=[\"VAST\"]"}},
      {"<VAST version='4.0'><Ad/></VA", {"cut-off 1 1:30 openElements=[\"VAST\"]"}},
      {"<VAST vers", {"cut-off 1 1:11 openElements=[]"}},
      {"<VAST version='4.0'><Ad><![CDATA[x", {"cut-off 1 1:35 openElements=[\"VAST\", \"Ad\"]"}},
      {"<VAST version='4.0'><Ad></VAST>",
       {"not-xml 1 1:25 parser=\"Opening and ending tag mismatch: Ad line 1 and VAST\""}},
      {"<!DOCTYPE VAST [<!ENTITY % a 'b'>]><VAST version='4.0'/>",
       {"beyond-bounds 1 bound=\"parameter-entities\""}},
  });
}

TEST_F(FindingsTest, whatFollowsABrokenDeclarationIsNotTheFirstFault) {
  const auto notXml = [](const std::string& place, const std::string& parser) {
    return Lines{"not-xml 1 " + place + " parser=\"" + parser + "\""};
  };
  check({
      {"<!-- a -->\n<!DOCTYPE VAST [<!ENTITY e>]>\n<VAST version='4.0'>\n&e; &f; & <a b='' b=''>",
       notXml("2:1", "Space required after the entity name")},
      {"\n<!DOCTYPE VAST [<!ENTITYe 'x'>]>\n<VAST version='4.0'>\n&e;</VAST>",
       notXml("2:1", "Space required after '<!ENTITY'")},
      {"<!DOCTYPE VAST [<!ENTITY e 'x'>]>\n<VAST version='4.0'>\n&f;</VAST>",
       {"undefined-entity 1 3:1 entity=\"f\""}},
      {"PHP Notice: a\n<?xml version='1.0'?><VAST/>", {"blank-before-declaration 1 2:1"}},
  });
}

TEST_F(FindingsTest, whatIsNoXmlIsToldInWords) {
  const auto sentence = [this](const std::string& response) {
    return explainResponse(response).findings.at(0).message;
  };
  EXPECT_EQ(sentence(" \n\t "), "The response is nothing but white space.");
  EXPECT_EQ(sentence("\nNo ad today\n"), "The response is no XML: it is the text \"No ad today\".");
  EXPECT_EQ(
      sentence("<VAST><Ad></VAST>"),
      "The text is not well-formed XML: Opening and ending tag mismatch: Ad line 1 and VAST.");
  EXPECT_EQ(explainResponse("<VAST version='4.0'/>OK").findings.at(0).advice,
            "Ad server: send nothing after the end tag of the root.");
  EXPECT_EQ(explainResponse("<?xml version='1.0' encoding='?'?><VAST/>").findings.at(0).advice,
            "Ad server: begin with <?xml version=\"1.0\" encoding=\"UTF-8\"?>, or leave the "
            "declaration out.");
}

TEST_F(FindingsTest, whatIsNoVastAtAll) {
  check({
      {"\n<!-- a --><!DOCTYPE html>\n<title>\n 404 &amp; so\n</title>a & b<br>",
       {"html-page 1 title=\"404 & so\""}},
      {"<HTML><body>x", {"html-page 1 title=null"}},
      {"<html xmlns='u' ><head><title/></head></html>", {"html-page 1 title=null"}},
      {"<html><head><title>T</title></head></html>", {"html-page 1 title=\"T\""}},
      {"<htmlx/>", {"not-vast 1 1:1 root=\"htmlx\""}},
      {"<!DOCTYPE htm><VAST version='4.0'/>", {"no-ad 1 1:15"}},
      {" {\"vast\": [1]}", {"json-body 1"}},
      {"[1, 2]\n", {"json-body 1"}},
      {"{\"a\": 1,}", {"not-xml 1 1:1 parser=\"Start tag expected, '<' not found\""}},
      {"12345", {"not-xml 1 1:1 parser=\"Start tag expected, '<' not found\""}},
      {" &lt;VAST version='4.0'&gt;", {"escaped-xml 1"}},
      {"\"<VAST version='4.0'/>\"", {"escaped-xml 1"}},
      {R"("\u003cVAST/>")", {"escaped-xml 1"}},
      {"\"hello\"", {"not-xml 1 1:1 parser=\"Start tag expected, '<' not found\""}},
      {"<VideoAdServingTemplate/>", {"vast-1 1 1:1"}},
      {"<vmap:VMAP xmlns:vmap='u'/>", {"not-vast 1 1:1 root=\"vmap:VMAP\""}},
      {"<Vast version='4.0'/>", {"not-vast 1 1:1 root=\"Vast\""}},
      {"<v:VAST xmlns:v='u&amp;v' version='4.0'/>", {"namespaced-root 1 1:1 namespace=\"u&v\""}},
      {"<VAST xmlns='u'><Ad/></VAST>", {"namespaced-root 1 1:1 namespace=\"u\""}},
      {"<VAST Version='4' a:b='c'/>", {"version-missing 1 1:1 attributes=[\"Version\", \"a:b\"]"}},
      {"<VAST version=''/>", {"version-missing 1 1:1 attributes=[\"version\"]"}},
      {"<VAST version='1.0'/>", {"version-refused 1 1:1 version=\"1.0\""}},
      {"<VAST version='vier'/>", {"version-refused 1 1:1 version=\"vier\""}},
      {"\xEF\xBB\xBF<?xml version='1.0'?><VAST version=' 3'/>", {"no-ad 1 1:22"}},
  });
}

TEST_F(FindingsTest, categories) {
  blockCategories("X,IAB8,IAB7,IAB8");
  check({
      {playable("<Category>IAB1</Category>\n<Category>IAB8</Category><Category>X</Category>"),
       {"category-blocked 1 3:1 category=\"IAB8\" entry=2"}},
      {playable("<Category> IAB8</Category>"),
       {"category-near-miss 1 2:1 category=\" IAB8\" entry=\"IAB8\""}},
      {playable("<Category>iab7</Category>"),
       {"category-near-miss 1 2:1 category=\"iab7\" entry=\"IAB7\""}},
      {playable("<Category>IAB77</Category><Category/>"), {}},
      {playable("<Category>IAB8</Category>", "3.0"), {}},
  });
}

TEST_F(FindingsTest, documentsWithoutAnAd) {
  check({
      {"<VAST version='4.0'>\n <Ad id='1'><inline/><x/></Ad><Ad><y/><x/></Ad></VAST>",
       {"no-wrapper-or-inline 1 2:2 children=[\"inline\", \"x\", \"y\"]"}},
      {"<VAST version='4.0'/>", {"no-ad 1 1:1"}},
      {"<VAST version='4.0'><Ad>\n<InLine><Creatives><Creative><UniversalAdId/><CompanionAds/>"
       "</Creative><Creative><NonLinearAds/><CompanionAds/></Creative></Creatives></InLine></Ad>"
       "</VAST>",
       {"no-linear 1 2:1 creatives=[\"CompanionAds\", \"NonLinearAds\"]"}},
      {playable("", "4.0",
                "<MediaFile type='video/webm'>u</MediaFile><MediaFile type='VIDEO/MP4'>u"
                "</MediaFile><MediaFile type='video/webm'>u</MediaFile>"),
       {"no-usable-media 1 2:22 types=[\"video/webm\", \"VIDEO/MP4\"]"}},
  });
}

TEST_F(FindingsTest, aFailedFetch) {
  FetchResult empty;
  empty.body = "";
  empty.failure = FetchFailure::empty;
  empty.status = 204;
  serve("https://b.example/", empty);
  FetchResult dead;
  dead.failure = FetchFailure::dns;
  dead.status = 0;
  check({
      {"https://a.example:8443/x",
       {"fetch-failed 1 failure=\"status\" status=404 "
        "host=\"a.example\""}},
      {wrapperTo("https://u:p@b.example/"),
       {"fetch-failed 2 failure=\"status\" status=404 host=\"b.example\""}},
      {wrapperTo("https://b.example/"),
       {"fetch-failed 2 failure=\"empty\" status=204 host=\"b.example\""}},
  });
}

TEST_F(FindingsTest, eachWayInWhichAFetchFailsHasWordsOfItsOwn) {
  struct Failed {
    FetchFailure failure;
    std::int32_t status;
    std::string details;
  };
  Lines messages;
  for (const auto& [failure, status, details] : std::vector<Failed>{
           {FetchFailure::dns, 0, "failure=\"dns\" status=null"},
           {FetchFailure::connect, 0, "failure=\"connect\" status=null"},
           {FetchFailure::tls, 0, "failure=\"tls\" status=null"},
           {FetchFailure::timeout, 0, "failure=\"timeout\" status=null"},
           {FetchFailure::tooLarge, 200, "failure=\"too-large\" status=200"},
           {FetchFailure::status, 503, "failure=\"status\" status=503"},
           {FetchFailure::redirects, 302, "failure=\"redirects\" status=302"},
           {FetchFailure::protocol, 0, "failure=\"protocol\" status=null"},
           {FetchFailure::cutOff, 200, "failure=\"cut-off\" status=200"},
           {FetchFailure::notUtf8, 200, "failure=\"not-utf8\" status=200"},
           {FetchFailure::empty, 204, "failure=\"empty\" status=204"},
           {FetchFailure::cancelled, 0, "failure=\"cancelled\" status=null"},
           {FetchFailure::other, 0, "failure=\"other\" status=null"},
       }) {
    changeHost([failure = failure, status = status](TamzoHost& host) {
      host.fetch = [failure = failure, status = status](const FetchRequest&) {
        FetchResult result;
        result.failure = failure;
        result.status = status;
        result.finalUrl = "https://user@b.example:8443/last";
        return result;
      };
    });
    const auto explanation = explainResponse(wrapperTo("https://a.example/first"));
    EXPECT_EQ(linesOf(explanation), (Lines{"fetch-failed 2 " + details + " host=\"b.example\""}));
    messages.push_back(explanation.findings.at(0).message);
    EXPECT_NE(messages.back().find("b.example"), std::string::npos) << messages.back();
    EXPECT_FALSE(explanation.findings.at(0).advice.empty());
  }
  std::sort(messages.begin(), messages.end());
  EXPECT_EQ(std::adjacent_find(messages.begin(), messages.end()), messages.end());
}

TEST_F(FindingsTest, chainsThatAreTooLong) {
  const auto serveChain = [this](int wrappers, const std::string& last) {
    for (int i = 2; i <= wrappers; ++i) {
      serve("https://a.example/" + std::to_string(i),
            wrapperTo("https://a.example/" + std::to_string(i + 1)));
    }
    serve("https://a.example/" + std::to_string(wrappers + 1), last);
  };
  serveChain(4, playable(""));
  EXPECT_EQ(findings(wrapperTo("https://a.example/2")), (Lines{"chain-of-five 5"}));
  serveChain(3, playable(""));
  EXPECT_EQ(findings(wrapperTo("https://a.example/2")), Lines{});
  serveChain(5, playable(""));
  EXPECT_EQ(findings(wrapperTo("https://a.example/2")), Lines{});
  serve("https://a.example/self", wrapperTo("https://a.example/self"));
  EXPECT_EQ(findings(wrapperTo("https://a.example/self")),
            (Lines{"nothing-to-play 6 why=\"chain-too-long\"",
                   "chain-loop 3 url=\"https://a.example/self\" hops=[2, 3, 4, 5, 6]"}));
}

TEST_F(FindingsTest, adsWithNothingToPlay) {
  check({
      {wrapperTo("https://a.example/2", vendor("<ImaTracking>1</ImaTracking>")),
       {"nothing-to-play 1 why=\"other-component-plays\""}},
      {playable("", "4.0", "<MediaFile type='video/mp4'> </MediaFile>"),
       {"nothing-to-play 1 why=\"no-media\"", "media-without-url 1 2:42"}},
      {playable("", "3.0", "<InteractiveCreativeFile type='video/mp4'>u</InteractiveCreativeFile>"),
       {"nothing-to-play 1 why=\"no-media\""}},
      {playable("", "4.0",
                "<InteractiveCreativeFile type='application/javascript' "
                "apiFramework='VPAID'>u</InteractiveCreativeFile>"),
       {}},
  });
}

TEST_F(FindingsTest, severalAdsAndLinears) {
  const std::string inLine = "<InLine>" + linear(mediaFiles(kFile)) + "</InLine>";
  serve("https://a.example/2", playable(""));
  const std::string wrapper = "<Wrapper><VASTAdTagURI>https://a.example/2</VASTAdTagURI></Wrapper>";
  check({
      {vast("4.0", "<Ad>" + inLine + "</Ad>\n<Ad>" + inLine + "</Ad><Ad/>"),
       {"ads-passed-over 1 2:1 count=2"}},
      {vast("4.0", "<Ad/>\n<Ad>" + inLine + "</Ad>"), {"ads-passed-over 1 1:21 count=1"}},
      {vast("4.0", "<Ad>" + inLine + "</Ad>\n <Ad>" + wrapper + "</Ad>"),
       {"second-ad-is-followed 1 2:2", "ads-passed-over 1 1:21 count=1"}},
      {vast("4.0", "<Ad>" + wrapper + "</Ad>\n <Ad>" + inLine + "</Ad>"),
       {"ads-passed-over 1 2:2 count=1"}},
      {vast("4.0", "<Ad><InLine><Creatives><Creative><Linear>" + mediaFiles(kFile) +
                       "</Linear></Creative><Creative>\n<Linear/></Creative><Creative><Linear>" +
                       mediaFiles(kFile) + "</Linear></Creative></Creatives></InLine></Ad>"),
       {"creatives-passed-over 1 2:1 count=2 usable=1"}},
  });
}

TEST_F(FindingsTest, timesThatCannotBeRead) {
  const auto duration = [](const std::string& text) {
    return withLinear("<Duration>" + text + "</Duration>");
  };
  check({
      {duration("30"), {"duration-unreadable 1 3:1 text=\"30\""}},
      {duration("00:30"), {"duration-unreadable 1 3:1 text=\"00:30\""}},
      {duration("00:00:1x"), {"duration-unreadable 1 3:1 text=\"00:00:1x\""}},
      {duration("00:00:00x"), {"duration-unreadable 1 3:1 text=\"00:00:00x\""}},
      {duration(" 00:00:30.5\n"), {}},
      {duration("00:00:00"), {}},
      {duration("00:00:00.250"), {}},
      {duration(""), {}},
      {withLinear("", " skipoffset='25%'"), {"skip-offset-unresolved 1 2:22 text=\"25%\""}},
      {withLinear("", " skipoffset='25%'", "3.0"), {"skip-offset-unresolved 1 2:22 text=\"25%\""}},
      {withLinear("", " skipoffset='25%'", "2.0"), {}},
      {withLinear("", " skipoffset='00:00:05'"), {}},
      {playable(vendor("<SkipOffset>10%</SkipOffset>")),
       {"skip-offset-unresolved 1 2:31 text=\"10%\""}},
  });
}

TEST_F(FindingsTest, extraActionsThatCannotBeRead) {
  const auto actions = [](const std::string& json) {
    return playable(vendor("<ExtraActions>" + json + "</ExtraActions>"));
  };
  check({
      {actions("{x"), {"extra-actions-unread 1 2:31 why=\"malformed\""}},
      {actions(std::string(600, '[') + std::string(600, ']')),
       {"extra-actions-unread 1 2:31 why=\"too-deep\""}},
      {actions("[1]"), {}},
      {actions(""), {}},
  });
}

TEST_F(FindingsTest, macrosThatAreLeft) {
  const std::string tag =
      "https://a.example/?a=[FOO]&amp;b=[bar_1]&amp;c=[FOO]&amp;d=[1x]&amp;"
      "e=[]&amp;f=[CACHEBUSTING]";
  const Lines found = findings(wrapperTo(tag));
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[1], "macro-unfilled 1 2:2 names=[\"FOO\", \"bar_1\"]");
}

TEST_F(FindingsTest, urlsThatAreNotSecure) {
  serve("http://a.example/2", withLinear(tracking("start", " http://t.example/1") +
                                         "<VideoClicks><ClickTracking>"
                                         "HTTP://t.example/2</ClickTracking></VideoClicks>"));
  EXPECT_EQ(findings(wrapperTo("http://a.example/2",
                               "<Impression>http://a.example/2</Impression>"
                               "<Impression>httpx://</Impression>")),
            (Lines{"insecure-url 1 2:2 count=1", "insecure-url 2 3:17 count=2"}));
}

TEST_F(FindingsTest, trackersThatAreCalledTwice) {
  serve("https://a.example/2",
        withLinear(tracking("start", "https://t/1") + tracking("start", "https://t/2")));
  const std::string wrapped = "<Creatives><Creative><Linear>" + tracking("start", "https://t/1") +
                              tracking("complete", "https://t/2") +
                              "</Linear></Creative></Creatives>";
  EXPECT_EQ(findings(wrapperTo("https://a.example/2", wrapped)),
            (Lines{"duplicate-tracker 2 3:17 event=\"start\" url=\"https://t/1\" hops=[1, 2]"}));
  check({{playable("<Impression>u</Impression>\n<Impression>u</Impression><Impression/>"
                   "<Impression/>"),
          {"duplicate-tracker 1 3:1 event=\"Impression\" url=\"u\" hops=[1, 1]"}}});
}

// The place of one is its element's, whatever brought it.
TEST_F(FindingsTest, trackersOfEachKindStandSomewhere) {
  const auto twice = [](const std::string& element, const std::string& url) {
    const std::string one = "<" + element + ">" + url + "</" + element.substr(0, element.find(' '));
    return one + ">\n" + one + ">";
  };
  const auto found = [](const std::string& event, const std::string& place) {
    return "duplicate-tracker 1 " + place + " event=\"" + event + "\" url=\"u\" hops=[1, 1]";
  };
  const auto inVideoClicks = [&](const std::string& element) {
    return withLinear("<VideoClicks>" + twice(element, "u") + "</VideoClicks>");
  };
  const auto viewable = [&](const std::string& element) {
    return playable("<ViewableImpression>" + twice(element, "u") + "</ViewableImpression>");
  };
  const std::string extra =
      vendor("<ExtraTrackingEvents>" + twice("Tracking event='x'", "u") + "</ExtraTrackingEvents>");
  check({
      {playable(twice("Impression", "u")), {found("Impression", "3:1")}},
      {playable(twice("Impression", "u"), "2.0"), {found("Impression", "3:1")}},
      {withLinear("<TrackingEvents>" + twice("Tracking event='x'", "u") + "</TrackingEvents>"),
       {found("x", "4:1")}},
      {inVideoClicks("ClickTracking"), {found("ClickTracking", "4:1")}},
      {inVideoClicks("CustomClick"), {found("CustomClickTracker", "4:1")}},
      {inVideoClicks("ClickThrough"), {}},
      {viewable("Viewable"), {found("Viewable", "3:1")}},
      {viewable("NotViewable"), {found("NotViewable", "3:1")}},
      {viewable("ViewUndetermined"), {found("ViewUndetermined", "3:1")}},
      {playable("<AdVerifications><Verification>" + twice("ViewableImpression", "u") +
                "</Verification></AdVerifications>"),
       {found("AdVerificationViewable", "3:1")}},
      {playable(extra), {found("x", "3:1")}},
      {playable(extra, "3.0"), {}},
      // A later one replaces an earlier one.
      {playable(vendor("<canReplay>u</canReplay><canReplay>u</canReplay>")), {}},
      {playable(vendor("<canReplay>http://u</canReplay>")), {"insecure-url 1 2:31 count=1"}},
      {playable("<Extensions><Extension><Tamzo><canReplay>http://u</canReplay></Tamzo></Extension>"
                "\n<Extension><Tamzo><canReplay>http://v</canReplay></Tamzo></Extension>"
                "</Extensions>"),
       {"insecure-url 1 3:19 count=1"}},
  });
}

TEST_F(FindingsTest, fetchesThatWereRedirectedOrSlow) {
  FetchResult slow;
  slow.body = playable("");
  slow.redirects = {"https://b.example/", "https://c.example/"};
  slow.finalUrl = "https://c.example/";
  slow.milliseconds.total = 1500.4;
  serve("https://a.example/2", slow);
  EXPECT_EQ(findings(wrapperTo("https://a.example/2")),
            (Lines{"redirected 2 count=2", "slow-hop 2 milliseconds=1500"}));
  slow.redirects.clear();
  slow.milliseconds.total = 1000.0;
  serve("https://a.example/2", slow);
  EXPECT_EQ(findings(wrapperTo("https://a.example/2")), Lines{});
}

TEST_F(FindingsTest, aFunctionOfTheHostThatThrows) {
  changeHost([](TamzoHost& host) {
    host.replaceMacros = [](const Text&, const MacroValues&) -> Text {
      throw std::runtime_error("no macros today");
    };
  });
  EXPECT_EQ(findings(wrapperTo("https://a.example/2")),
            (Lines{"exception 1 what=\"no macros today\""}));
}

TEST_F(FindingsTest, moreThanTwentyOfOneKindAreCounted) {
  std::string impressions;
  for (int i = 0; i < 25; ++i) {
    impressions += "<Impression>https://t/" + std::to_string(i) + "</Impression>\n";
  }
  const Lines found = findings(playable(impressions + impressions));
  ASSERT_EQ(found.size(), 20U);
  EXPECT_EQ(found[0].find("duplicate-tracker 1 27:1 "), 0U) << found[0];
  EXPECT_NE(found[19].find(" more=5"), std::string::npos) << found[19];
  EXPECT_EQ(found[18].find(" more="), std::string::npos);
}

// Trackers are looked at event by event, and these stand in another order in the document.
TEST_F(FindingsTest, theFirstTwentyAreThoseOfTheDocument) {
  const auto twice = [](const std::string& element, int count) {
    std::string all;
    for (int i = 0; i < 2 * count; ++i) {
      all += "<" + element + ">https://t/" + std::to_string(i / 2) + "</" +
             element.substr(0, element.find(' ')) + ">\n";
    }
    return all;
  };
  const Lines found = findings(withLinear(
      "<VideoClicks>\n" + twice("ClickTracking", 11) + "</VideoClicks><TrackingEvents>\n" +
      twice("Tracking event='start'", 15) + "</TrackingEvents>"));
  ASSERT_EQ(found.size(), 20U);
  for (std::size_t i = 0; i < 20; ++i) {
    const std::size_t line = i < 11 ? 5 + 2 * i : 28 + 2 * (i - 11);
    const std::string event = i < 11 ? "ClickTracking" : "start";
    EXPECT_EQ(found[i].find("duplicate-tracker 1 " + std::to_string(line) + ":1 event=\"" + event),
              0U)
        << found[i];
    EXPECT_EQ(found[i].find(" more=6") != std::string::npos, i == 19) << found[i];
  }
}

TEST_F(FindingsTest, worstComesFirstThenHopAndLine) {
  serve("https://a.example/2", playable("<Impression>http://t/1</Impression>", "9.0"));
  const Lines found = findings(wrapperTo("https://a.example/2",
                                         "<Impression>http://t/1</Impression><Impression>http://t/1"
                                         "</Impression>"));
  ASSERT_EQ(found.size(), 3U);
  EXPECT_EQ(found[0], "version-refused 2 1:1 version=\"9.0\"");
  EXPECT_EQ(found[1].find("insecure-url 1 2:"), 0U);
  EXPECT_EQ(found[2].find("duplicate-tracker 1 2:"), 0U);
}

TEST_F(FindingsTest, costsTimeLinearInTheResponse) {
  EXPECT_TRUE(growsLinearly(500, [this](std::size_t count) {
    std::string files;
    std::string impressions;
    for (std::size_t i = 0; i < count; ++i) {
      files += "<MediaFile type='video/mp4'/>";
      impressions +=
          "<Impression>http://t/" + std::to_string(i / 2) + "</Impression><!-- xmlns='a' -->";
    }
    const std::string response = playable(impressions, "4.0", files);
    return [this, response] { findings(response); };
  }));
}

}  // namespace
}  // namespace tamzo::testing
