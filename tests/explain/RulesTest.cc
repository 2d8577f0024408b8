#include "explain/Rules.h"

#include <gtest/gtest.h>

#include <fstream>
#include <optional>
#include <sstream>

#include "tests/explain/ExplainFixture.h"

namespace tamzo::testing {
namespace {

struct Answer {
  std::string url;
  std::string redirectedFrom;
  double milliseconds = 0.0;
  std::string body;
};

struct Example {
  std::string blockedCategories;
  bool throws = false;
  std::string response;
  std::vector<Answer> answers;
};

struct Document {
  Lines table;  // "id severity" of each row
  std::map<std::string, Example> examples;
};

std::string between(const std::string& text, const std::string& begin, const std::string& end) {
  const std::size_t at = text.find(begin);
  if (at == std::string::npos) {
    return "";
  }
  const std::size_t from = at + begin.size();
  return text.substr(from, text.find(end, from) - from);
}

Answer answerOf(const std::string& line) {
  Answer answer;
  answer.url = line.substr(0, line.find_first_of(",:", line.find("://") + 3));
  answer.redirectedFrom = between(line, "redirected from ", ":\n");
  const std::string time = between(line, "after ", " ms");
  answer.milliseconds = time.empty() ? 0.0 : std::stod(time);
  return answer;
}

// Reads what docs/findings.md says.
Document readDocument() {
  Document document;
  std::ifstream file(TAMZO_DOCS "/findings.md");
  std::string id;
  std::optional<Answer> answer;
  bool isInBlock = false;
  std::string block;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("```")) {
      if (isInBlock) {
        block.pop_back();
        if (answer) {
          answer->body = block;
          document.examples[id].answers.push_back(*std::exchange(answer, std::nullopt));
        } else {
          document.examples[id].response = block;
        }
      }
      isInBlock = !isInBlock;
      block.clear();
    } else if (isInBlock) {
      block += line + "\n";
    } else if (line.starts_with("### ")) {
      id = line.substr(4);
    } else if (line.starts_with("| [`")) {
      document.table.push_back(between(line, "[`", "`]") + " " + between(line, ") | ", " |"));
    } else if (line.starts_with("Answer of ")) {
      answer = answerOf(line.substr(10) + "\n");
    } else if (line.starts_with("With `--blocked-categories ")) {
      document.examples[id].blockedCategories = between(line, "categories ", "`");
    } else if (line.starts_with("With a function of the app that throws")) {
      document.examples[id].throws = true;
    }
  }
  return document;
}

class RulesTest : public ExplainTest {
 protected:
  void prepare(const Example& example) {
    blockCategories(example.blockedCategories.empty() ? Text() : Text(example.blockedCategories));
    changeHost([&](TamzoHost& host) {
      host.replaceMacros = {};
      if (example.throws) {
        host.replaceMacros = [](const Text&, const MacroValues&) -> Text {
          throw std::runtime_error("the app's own function failed");
        };
      }
    });
    for (const Answer& answer : example.answers) {
      FetchResult result;
      result.body = answer.body;
      result.milliseconds.total = answer.milliseconds;
      if (!answer.redirectedFrom.empty()) {
        result.redirects = {answer.url};
      }
      serve(answer.url, result);
    }
  }
};

TEST_F(RulesTest, theDocumentListsThemAll) {
  Lines rules;
  for (const explain::Rule& rule : explain::rules()) {
    rules.push_back(std::string(rule.id) + " " + std::string(explain::nameOf(rule.severity)));
  }
  EXPECT_THAT(readDocument().table, ::testing::UnorderedElementsAreArray(rules));
}

TEST_F(RulesTest, eachExampleOfTheDocumentGivesItsFinding) {
  const Document document = readDocument();
  for (const explain::Rule& rule : explain::rules()) {
    const auto example = document.examples.find(std::string(rule.id));
    ASSERT_NE(example, document.examples.end()) << rule.id;
    prepare(example->second);
    const auto explanation = explainResponse(example->second.response);
    const bool isFound =
        std::any_of(explanation.findings.begin(), explanation.findings.end(),
                    [&](const explain::Finding& finding) { return finding.id == rule.id; });
    EXPECT_TRUE(isFound) << rule.id << " in " << explain::explanationAsJson(explanation);
    const auto* error = explain::errorOf(explanation);
    EXPECT_TRUE(rule.severity != explain::Severity::error ||
                (error != nullptr && error->id == rule.id))
        << rule.id;
  }
}

// Responses that come near a finding and must not raise it. Served are https://ads.example/1, which
// leads to /2, an ad; /self, which leads to itself; /loop, where a macro makes each URL another;
// and /slow, which takes a second and no more.
const std::string kVideoFile = "<MediaFile type='video/mp4'>https://cdn.example/v.mp4</MediaFile>";

std::string adWith(const std::string& inLine = "", const std::string& inLinear = "",
                   const std::string& attributes = "", const std::string& version = "4.0") {
  return "<VAST version='" + version + "'><Ad id='1'><InLine>" + inLine +
         "<Creatives><Creative><Linear" + attributes + ">" + inLinear + "<MediaFiles>" +
         kVideoFile + "</MediaFiles></Linear></Creative></Creatives></InLine></Ad></VAST>";
}

std::string leadingTo(const std::string& tag) {
  return "<VAST version='4.0'><Ad id='w'><Wrapper><VASTAdTagURI>" + tag +
         "</VASTAdTagURI></Wrapper></Ad></VAST>";
}

std::string vendorBlock(const std::string& content) {
  return "<Extensions><Extension><Tamzo>" + content + "</Tamzo></Extension></Extensions>";
}

std::map<std::string, Lines> nearMisses() {
  const std::string tracking = "<TrackingEvents><Tracking event='start'>https://t/</Tracking>";
  const std::string ended = "</TrackingEvents>";
  const std::string second =
      "<Creatives><Creative><Linear><MediaFiles>" + kVideoFile +
      "</MediaFiles></Linear></Creative><Creative><Linear><Duration>x</Duration>"
      "<TrackingEvents><Tracking/></TrackingEvents><MediaFiles><MediaFile type='video/mp4'/>"
      "</MediaFiles></Linear></Creative></Creatives>";
  const std::string secondLinear =
      "<VAST version='4.0'><Ad><InLine>" + second + "</InLine></Ad></VAST>";
  return {
      {"tag-too-short", {"abcd", "    ", leadingTo("abcd"), leadingTo("http")}},
      {"tracking-without-event",
       {adWith("", "<TrackingEvents><Tracking event=''>https://t/</Tracking></TrackingEvents>"),
        adWith("", "<VideoClicks><Tracking/></VideoClicks>"), secondLinear,
        adWith(vendorBlock("<ExtraTrackingEvents><Tracking/></ExtraTrackingEvents>"), "", "",
               "3.0")}},
      {"exception", {"", adWith(), leadingTo("ab")}},
      {"collapse-took-tag-end",
       {"<VAST version='4.0' xmlns:a='u'><Ad/></VAST>",
        "<VAST version='4.0' xmlns='u' id='1'><Ad/></VAST>",
        "<VAST version='4.0'><Ad>xmlns='u'> </Ad></VAST>", "<VAST version='4.0' xmlns='u'> <a>&"}},
      {"collapse-broke-markup",
       {"<VAST version='4.0' xmlns='u'> <Ad/></VAST>", "<VAST version='4.0'><!-- xmlns= --></VAST>",
        "<VAST version='4.0' xmlns='u' ><a>&</a></VAST>"}},
      {"unescaped-ampersand",
       {"<VAST version='4.0'><a b='&amp;&#38;'>&#x26;<![CDATA[a&b]]><!-- & --></a></VAST>",
        "<VAST version='4.0'>&copy;</VAST>", "<VAST version='4.0'>&am"}},
      {"undefined-entity",
       {"<!DOCTYPE VAST [<!ENTITY nbsp ' '>]><VAST version='4.0'>&nbsp;</VAST>",
        "<VAST version='4.0'><![CDATA[&nbsp;]]>&lt;&gt;&quot;&apos;&amp;&#160;</VAST>",
        "<VAST version='4.0'>&nbsp</VAST>"}},
      {"duplicate-attribute",
       {"<VAST version='4.0' Version='4.0' a:version='4.0'/>",
        "<VAST version='4.0'><a b='1'/><a b='1'/></VAST>",
        "<VAST version='4.0' a=\" a='' a=''\"/>"}},
      {"control-character",
       {"<VAST version='4.0'>\t\r\n&#9;&#xA;\x7F\xC2\x80\xEF\xBF\xBD</VAST>",
        "<VAST version='4.0'>&amp;#8;<![CDATA[&#8;]]></VAST>"}},
      {"blank-before-declaration",
       {"\n <VAST version='4.0'/>", "\xEF\xBB\xBF<?xml version='1.0'?><VAST version='4.0'/>",
        "<?xml version='1.0'?>\n<VAST version='4.0'/>", " <?xml-stylesheet?><VAST version='4.0'/>",
        "text <VAST version='4.0'/>"}},
      {"cut-off",
       {"<VAST version='4.0'/>\n<!--", "<VAST version='4.0'><Ad></VAST>", "VAST", "<!DOCTYPE VAST",
        "<?xml version='1.0'?>"}},
      {"html-page",
       {"<htm/>", "<VAST version='4.0'><html/></VAST>", "<!DOCTYPE htmlx><a/>", "html: none",
        "<VAST version='4.0'><Ad><InLine><AdTitle><html/></AdTitle></InLine></Ad></VAST>"}},
      {"json-body", {"{\"a\": 1", "{} x", "12345", "\"text\"", "null", "{{macro}}"}},
      {"escaped-xml", {"\"text\"", "lt;VAST", "&amp;lt;VAST", "'<VAST/>", "{\"a\": \"&lt;\"}"}},
      {"beyond-bounds", {"<!DOCTYPE VAST [<!ENTITY a 'b'>]><VAST version='4.0'>&a;</VAST>"}},
      {"not-xml", {"<VAST version='4.0'/>", "<VAST version='4.0'>&", "<html><br></html>"}},
      {"tag-not-fetched",
       {leadingTo("https://ads.example/2"), leadingTo("https://ads.example/2 "),
        leadingTo("http:nowhere"), "//ads.example/2", "relative.xml"}},
      {"vast-1", {"<VideoAdServingTemplat/>", "<VAST><VideoAdServingTemplate/></VAST>"}},
      {"not-vast", {"<VAST/>", "<VAST xmlns='u'><Ad/></VAST>", "<VideoAdServingTemplate/>"}},
      {"namespaced-root",
       {"<VAST xmlns:v='u' version='4.0'/>", "<VAST xmlns='' version='1.0'/>",
        "<v:VAST version='4.0'/>", "<v:VMAP xmlns:v='u'/>", "<v:Vast xmlns:v='u' version='4'/>"}},
      {"collapse-took-version",
       {"<VAST version='4.0' xmlns='u' id='1'/>", "<VAST xmlns='u' id='1'/>",
        "<VAST xmlns='u' id='1' version='4.0'/>", "<VAST xmlns='u' version=''/>"}},
      {"version-missing",
       {"<VAST version='0'/>", "<VAST version=' '/>", "<VAST xmlns='u' version='4.0'/>", "<a/>"}},
      {"version-refused",
       {"<VAST version='4.2 '/>", "<VAST version=' 2'/>", "<VAST version='4x'/>",
        "<VAST version=''/>", "<vmap version='1.0'/>"}},
      {"category-blocked",
       {adWith("<Category>iab26</Category><Category>IAB2</Category>"),
        adWith("<Category>IAB26</Category>", "", "", "3.0"),
        adWith("<Category>IAB25,IAB26</Category>")}},
      {"no-wrapper-or-inline",
       {"<VAST version='4.0'/>", "<VAST version='4.0'><Ad/><Ad><InLine/></Ad></VAST>"}},
      {"fetch-failed", {leadingTo("https://ads.example/2"), leadingTo("ftp://ads.example/2")}},
      {"chain-of-five",
       {leadingTo("https://ads.example/1"), leadingTo("https://ads.example/self")}},
      {"no-ad", {"<VAST version='4.0'><Ad/></VAST>", "<VAST version='9'/>"}},
      {"no-linear",
       {secondLinear,
        "<VAST version='4.0'><Ad><InLine><Creatives><Creative><Linear/></Creative>"
        "</Creatives></InLine></Ad></VAST>"}},
      {"no-usable-media",
       {adWith(), "<VAST version='4.0'><Ad><InLine/></Ad></VAST>",
        "<VAST version='4.0'><Ad><InLine><Creatives><Creative><Linear><MediaFiles>"
        "<InteractiveCreativeFile type='application/javascript' apiFramework='VPAID'/></MediaFiles>"
        "</Linear></Creative></Creatives></InLine></Ad></VAST>"}},
      {"nothing-to-play", {adWith(), secondLinear, leadingTo("https://ads.example/2")}},
      {"chain-loop",
       {leadingTo("https://ads.example/1"), leadingTo("https://ads.example/loop?[CACHEBUSTING]")}},
      {"second-ad-is-followed",
       {"<VAST version='4.0'><Ad/><Ad><Wrapper><VASTAdTagURI>https://ads.example/2</VASTAdTagURI>"
        "</Wrapper></Ad></VAST>",
        "<VAST version='4.0'><Ad><InLine/><Wrapper><VASTAdTagURI>https://ads.example/2"
        "</VASTAdTagURI></Wrapper></Ad></VAST>",
        "<VAST version='4.0'><Ad/>" + adWith().substr(20)}},
      {"media-without-url",
       {adWith(), secondLinear, adWith("", "<MediaFile type='video/mp4'/>"),
        adWith().replace(adWith().find("</MediaFiles>"), 0,
                         "<InteractiveCreativeFile type='a'/><Mezzanine/>")}},
      {"duration-unreadable",
       {adWith("", "<Duration>00:00:30</Duration>"),
        adWith("", "<Duration>\n 00:00:30.5 </Duration>"),
        adWith("", "<Duration>00:00:00</Duration>"), adWith("", "<Duration/>"), secondLinear,
        adWith("<Duration>x</Duration>")}},
      {"skip-offset-unresolved",
       {adWith("", "", " skipoffset='00:00:05'"), adWith("", "", " skipoffset='5'"),
        adWith("", "", " skipoffset='25%'", "2.0"), adWith("", "", " skipOffset='25%'"),
        adWith(vendorBlock("<SkipOffset>5</SkipOffset>"))}},
      {"category-near-miss",
       {adWith("<Category>IAB26</Category>"), adWith("<Category>IAB-26</Category>"),
        adWith("<Category/>"), adWith("<Category> </Category>"),
        adWith("<Category>iab26</Category>", "", "", "3.0")}},
      {"extra-actions-unread",
       {adWith(vendorBlock("<ExtraActions>{}</ExtraActions>")),
        adWith(vendorBlock("<ExtraActions>null</ExtraActions>")),
        adWith(vendorBlock("<ExtraActions/>")),
        adWith("<Extensions><ExtraActions>[</ExtraActions>"
               "</Extensions>"),
        adWith(vendorBlock("<ExtraActions>\n [\"]\"] </ExtraActions>"))}},
      {"ads-passed-over", {adWith(), "<VAST version='4.0'><Ad/><Ad/></VAST>"}},
      {"creatives-passed-over",
       {adWith(), adWith("<Creatives><Creative><NonLinearAds/></Creative></Creatives>"),
        adWith("", "<Linear/>")}},
      {"macro-unfilled",
       {leadingTo("https://ads.example/2?[CACHEBUSTING]"), leadingTo("https://ads.example/[1]"),
        leadingTo("https://[::1]/[]"), leadingTo("https://ads.example/[a b][a-b]"),
        adWith("<Impression>https://t/[FOO]</Impression>")}},
      {"collapse-took-attributes",
       {"<VAST version='4.0' xmlns:a='u' id='7'/>", "<VAST version='4.0' xmlns='u' id='7'",
        "<VAST xmlns='u' version='4.0'/>", "<VAST version='4.0'><!-- xmlns='u' id='7' --></VAST>"}},
      {"insecure-url",
       {adWith("<Impression>https://t/?http://u</Impression><Error>http://t/</Error>"),
        adWith("<Impression>http//t</Impression><Survey>http://t/</Survey>"),
        adWith("", "<VideoClicks><ClickThrough>http://t/</ClickThrough></VideoClicks>")}},
      {"duplicate-tracker",
       {adWith("<Impression>https://t/</Impression>", tracking + ended),
        adWith("", tracking + "<Tracking event='start'>https://t/ </Tracking>" + ended),
        adWith("", tracking + "<Tracking event='Start'>https://t/</Tracking>" + ended),
        adWith("<Impression/><Impression> </Impression><Impression/>")}},
      {"redirected", {leadingTo("https://ads.example/2")}},
      {"slow-hop", {leadingTo("https://ads.example/slow"), leadingTo("https://ads.example/1")}},
  };
}

class NearMisses : public RulesTest {
 protected:
  NearMisses() {
    blockCategories("IAB25,IAB26");
    serve("https://ads.example/1", timed(leadingTo("https://ads.example/2"), 1400));
    serve("https://ads.example/2", timed(adWith(), 1400));
    serve("https://ads.example/self", leadingTo("https://ads.example/self"));
    serve("https://ads.example/slow", timed(adWith(), 1000));
    changeHost(
        [](TamzoHost& host) { host.random = [n = 0U](std::uint32_t) mutable { return ++n; }; });
    serve("https://ads.example/loop?10000001",
          leadingTo("https://ads.example/loop?[CACHEBUSTING]"));
    serve("https://ads.example/loop?10000002", adWith());
  }

 private:
  static FetchResult timed(const std::string& body, double milliseconds) {
    FetchResult result;
    result.body = body;
    result.milliseconds.total = milliseconds;
    return result;
  }
};

TEST_F(NearMisses, eachFindingHasSomeThatDoNotRaiseIt) {
  const auto misses = nearMisses();
  for (const explain::Rule& rule : explain::rules()) {
    const auto responses = misses.find(std::string(rule.id));
    ASSERT_NE(responses, misses.end()) << rule.id;
    for (const std::string& response : responses->second) {
      const auto explanation = explainResponse(response);
      for (const explain::Finding& finding : explanation.findings) {
        EXPECT_NE(finding.id, rule.id) << response << finding.message;
      }
    }
  }
}

TEST_F(RulesTest, everyErrorSaysWhatToDo) {
  const Document document = readDocument();
  ASSERT_FALSE(document.examples.empty());
  for (const auto& [id, example] : document.examples) {
    prepare(example);
    for (const explain::Finding& finding : explainResponse(example.response).findings) {
      EXPECT_FALSE(finding.message.empty()) << finding.id;
      EXPECT_FALSE(finding.advice.empty()) << finding.id;
    }
  }
}

TEST_F(RulesTest, anUnknownIdIsNone) {
  EXPECT_EQ(explain::findRule("no-such-thing"), nullptr);
  EXPECT_EQ(explain::findRule("cut-off")->severity, explain::Severity::error);
}

}  // namespace
}  // namespace tamzo::testing
