// The page that plays a JavaScript VPAID unit: how a template is filled.

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "tests/support/SdkFixture.h"

namespace tamzo::testing {
namespace {

class VpaidPageTest : public SdkTest {
 protected:
  static void useTemplate(const Text& text) {
    useTemplateFrom([text] { return text; });
  }
  static void useSession(const Text& id) {
    HostState source;
    source.sessionId = [id] { return id; };
    useState(std::move(source));
  }
  static std::shared_ptr<TamzoVastAd> adWithTag(const Text& tag) {
    auto ad = TamzoVastAd::initWithVast("");
    ad->setVastTagURI(tag);
    return ad;
  }
};

TEST_F(VpaidPageTest, PlaceholdersAreFilled) {
  const char* flagAndTag = "a={{IS_TAG_A_URL}};b={{VAST_TAG}}";
  const struct {
    const char* name;
    const char* tag;
    const char* page;
    const char* expected;
  } rows[] = {
      {"a URL with the session", "https://t/v?sid=[TAMZO_SESSION_ID]", flagAndTag,
       "a=true;b=https://t/v?sid=S1"},
      {"http will do", "http://t/", flagAndTag, "a=true;b=http://t/"},
      {"any text that begins so", "httpx", flagAndTag, "a=true;b=httpx"},
      {"upper case is no URL", "HTTP://t/\n", flagAndTag, "a=false;b=HTTP://t/"},
      {"a blank before it", " http://t/\n", flagAndTag, "a=false;b= http://t/"},
      {"three letters of it", "htt", flagAndTag, "a=false;b=htt"},
      {"text over several lines", "<VAST>\n  <Ad>\r\n</Ad>\v\f</VAST>", flagAndTag,
       "a=false;b=<VAST>  <Ad></Ad></VAST>"},
      {"every newline of Unicode",
       "a\xC2\x85"
       "b\xE2\x80\xA8"
       "c\xE2\x80\xA9"
       "d\te\xC2\xA0"
       "f",
       "{{VAST_TAG}}",
       "abcd\te\xC2\xA0"
       "f"},
      {"a URL keeps its newlines", "http://t/\r\n\xE2\x80\xA8", "{{VAST_TAG}}",
       "http://t/\r\n\xE2\x80\xA8"},
      {"the session in a text, every time", "[TAMZO_SESSION_ID] [TAMZO_SESSION_ID]", "{{VAST_TAG}}",
       "S1 S1"},
      {"the session's name by case", "[tamzo_session_id]", "{{VAST_TAG}}", "[tamzo_session_id]"},
      {"the session in the template stays", "t", "[TAMZO_SESSION_ID]", "[TAMZO_SESSION_ID]"},
      {"every occurrence", "t",
       "{{VAST_TAG}}{{IS_TAG_A_URL}}{{VAST_TAG}}{{IS_TAG_A_URL}}{{MOAT_DATA}}{{MOAT_DATA}}",
       "tfalsetfalse{}{}"},
      {"no vendor data", "t", "<{{MOAT_DATA}}|{{MOAT_PARTNER_CODE}}>", "<{}|>"},
      {"no placeholder", "t", "page {{OTHER}} {{ VAST_TAG }} {VAST_TAG}",
       "page {{OTHER}} {{ VAST_TAG }} {VAST_TAG}"},
      {"nothing is escaped", "<a b=\"'&\">", "{{VAST_TAG}}", "<a b=\"'&\">"},
      {"no regular expressions, no templates", "$0 \\1 $&", "({{VAST_TAG}})", "($0 \\1 $&)"},
      {"overlapping braces", "t", "{{{VAST_TAG}}}", "{t}"},
  };
  useSession("S1");
  for (const auto& row : rows) {
    useTemplate(row.page);
    const auto ad = adWithTag(row.tag);
    EXPECT_EQ(ad->getVideoWAPView(), row.expected) << row.name;
    EXPECT_EQ(ad->vPaidHTML(), row.expected) << row.name;
    EXPECT_EQ(ad->vastTagURI(), row.tag) << row.name << ": the record keeps its tag";
    EXPECT_EQ(ad->getVideoWAPView(), row.expected) << row.name << ": the second time too";
  }
}

TEST_F(VpaidPageTest, MoatDataComesFromTheVendor) {
  useTemplate("{{MOAT_DATA}}|{{MOAT_PARTNER_CODE}}");
  const auto ad = adWithTag("t");
  ad->setAnalyticsData("{\"a\":1}\n");
  ad->setAnalyticsKey("<key>");
  EXPECT_EQ(ad->getVideoWAPView(), "{\"a\":1}\n|<key>");
  ad->setAnalyticsData("");
  ad->setAnalyticsKey("");
  EXPECT_EQ(ad->getVideoWAPView(), "{}|");
}

TEST_F(VpaidPageTest, AValueThatHoldsALaterPlaceholderIsFilledToo) {
  useTemplate("{{MOAT_PARTNER_CODE}};{{MOAT_DATA}};{{VAST_TAG}};{{IS_TAG_A_URL}}");
  const auto ad = adWithTag("{{IS_TAG_A_URL}}{{VAST_TAG}}{{MOAT_DATA}}");
  ad->setAnalyticsData("<{{MOAT_PARTNER_CODE}}{{MOAT_DATA}}{{VAST_TAG}}>");
  ad->setAnalyticsKey("K{{MOAT_DATA}}");
  const std::string data = "<K{{MOAT_DATA}}{{MOAT_DATA}}{{VAST_TAG}}>";
  EXPECT_EQ(ad->getVideoWAPView(),
            "K{{MOAT_DATA}};" + data + ";{{IS_TAG_A_URL}}{{VAST_TAG}}" + data + ";false");
}

TEST_F(VpaidPageTest, ThePlaceholderMayBeMadeByAValue) {
  useTemplate("{{MOAT_{{VAST_TAG}}");
  EXPECT_EQ(adWithTag("DATA}}")->getVideoWAPView(), "{}");
}

TEST_F(VpaidPageTest, WithoutTagOrTemplateThereIsNoPage) {
  const struct {
    const char* name;
    Text tag;
    Text page;
  } rows[] = {
      {"nil tag", Text(), "page"},
      {"empty tag", "", "page"},
      {"nil template", "t", Text()},
      {"empty template", "t", ""},
  };
  for (const auto& row : rows) {
    useTemplate(row.page);
    const auto ad = adWithTag(row.tag);
    EXPECT_EQ(ad->getVideoWAPView(), "") << row.name;
    EXPECT_TRUE(ad->vPaidHTML().isNil()) << row.name;
    ad->setVPaidHTML("earlier");
    EXPECT_EQ(ad->getVideoWAPView(), "") << row.name;
    EXPECT_EQ(ad->vPaidHTML(), "earlier") << row.name;
  }
}

TEST_F(VpaidPageTest, NoTemplateIsAskedForWithoutATag) {
  int asked = 0;
  useTemplateFrom([&asked] {
    ++asked;
    return Text("page");
  });
  adWithTag("")->getVideoWAPView();
  EXPECT_EQ(asked, 0);
  adWithTag("t")->getVideoWAPView();
  EXPECT_EQ(asked, 1);
}

TEST_F(VpaidPageTest, EveryCallFillsAnew) {
  useTemplate("{{VAST_TAG}}");
  const auto ad = adWithTag("[TAMZO_SESSION_ID]");
  useSession("1");
  EXPECT_EQ(ad->getVideoWAPView(), "1");
  useSession("2");
  EXPECT_EQ(ad->getVideoWAPView(), "2");
  useSession(Text());
  EXPECT_EQ(ad->getVideoWAPView(), "") << "a session id that is nil reads as empty";
  EXPECT_EQ(ad->vPaidHTML(), "") << "a page that came out empty is stored all the same";
}

TEST_F(VpaidPageTest, TheUrlTestLooksAtTheTagAsStored) {
  useTemplate("{{IS_TAG_A_URL}} {{VAST_TAG}}");
  useSession("http");
  EXPECT_EQ(adWithTag("[TAMZO_SESSION_ID]://t/\n")->getVideoWAPView(), "false http://t/");
  useSession("1\n2");
  EXPECT_EQ(adWithTag("<[TAMZO_SESSION_ID]>")->getVideoWAPView(), "false <12>");
  EXPECT_EQ(adWithTag("http://[TAMZO_SESSION_ID]")->getVideoWAPView(), "true http://1\n2");
}

TEST_F(VpaidPageTest, AParsedResponseIsInsertedOnOneLine) {
  useTemplate("{{IS_TAG_A_URL}}:{{VAST_TAG}}");
  const auto ad = TamzoVastAd::initWithVast("<VAST version='9'>\n<Ad/>\n</VAST>");
  EXPECT_EQ(ad->getVideoWAPView(), "false:<VAST version='9'><Ad/></VAST>");
}

TEST_F(VpaidPageTest, AHugeTemplateAndManyPlaceholdersTakeLinearTime) {
  std::string page(50U << 20U, ' ');
  page += "{{VAST_TAG}}";
  useTemplate(page);
  EXPECT_EQ(adWithTag("t")->getVideoWAPView().view().size(), (50U << 20U) + 1);

  std::string many;
  for (int i = 0; i < 200'000; ++i) {
    many += "{{MOAT_DATA}}";
  }
  useTemplate(many);
  EXPECT_EQ(adWithTag("t")->getVideoWAPView().view().size(), 400'000U);
}

TEST_F(VpaidPageTest, APageThatGrowsWithoutEndIsNone) {
  std::string placeholders;
  for (int i = 0; i < 100'000; ++i) {
    placeholders += "{{MOAT_DATA}}";
  }
  useTemplate("{{VAST_TAG}}");
  const auto ad = adWithTag(placeholders);
  ad->setAnalyticsData(std::string(1'000'000, 'x'));
  EXPECT_EQ(ad->getVideoWAPView(), "");
  EXPECT_TRUE(ad->vPaidHTML().isNil());

  useSession(std::string(1'000'000, 'x'));
  std::string sessions;
  for (int i = 0; i < 1000; ++i) {
    sessions += "[TAMZO_SESSION_ID]";
  }
  EXPECT_EQ(adWithTag(sessions)->getVideoWAPView(), "");
}

TEST_F(VpaidPageTest, APageIsAtMostSixteenTimesItsTemplateAndValues) {
  std::string sixteen;
  for (int i = 0; i < 16; ++i) {
    sixteen += "{{MOAT_DATA}}";
  }
  useSession("S");
  const auto ad = adWithTag("http://t");
  ad->setAnalyticsData(std::string(10'000, 'x'));
  useTemplate(sixteen);
  EXPECT_EQ(ad->getVideoWAPView().view().size(), 160'000U);
  ad->setVPaidHTML("earlier");
  useTemplate(sixteen + sixteen);
  EXPECT_EQ(ad->getVideoWAPView(), "");
  EXPECT_EQ(ad->vPaidHTML(), "earlier");
  // Each value is filled into the one before it, and little becomes much.
  std::string tag;
  for (int i = 0; i < 400; ++i) {
    tag += "{{MOAT_DATA}}";
  }
  std::string page;
  for (int i = 0; i < 400; ++i) {
    page += "{{VAST_TAG}}";
  }
  useTemplate(page);
  const auto multiplied = adWithTag(tag);
  multiplied->setAnalyticsData(std::string(7000, 'x'));
  EXPECT_EQ(multiplied->getVideoWAPView(), "");
}

TEST_F(VpaidPageTest, APageMayHave128MebibytesAndNoByteMore) {
  constexpr std::size_t kMost = std::size_t{128} << 20U;
  const auto ad = adWithTag("http://t");
  ad->setAnalyticsData(std::string(kMost / 4, 'x'));
  const std::string four = "{{MOAT_DATA}}{{MOAT_DATA}}{{MOAT_DATA}}{{MOAT_DATA}}";
  useTemplate(four);
  EXPECT_EQ(ad->getVideoWAPView().view().size(), kMost);
  for (const std::string& longer : {four + ".", "." + four}) {
    useTemplate(longer);
    EXPECT_FALSE(ad->getVideoWAPView().hasCharacters());
  }
}

TEST_F(VpaidPageTest, TheSdksOwnTemplateHasAllFourPlaceholders) {
  const Text own = TamzoAssetsManager::getVpaidWrapperData();
  for (const char* placeholder :
       {"{{IS_TAG_A_URL}}", "{{VAST_TAG}}", "{{MOAT_DATA}}", "{{MOAT_PARTNER_CODE}}"}) {
    EXPECT_NE(own.view().find(placeholder), std::string_view::npos) << placeholder;
  }
  const Text page = adWithTag("http://tag.example/")->getVideoWAPView();
  EXPECT_EQ(page.view().find("{{"), std::string_view::npos);
  EXPECT_NE(page.view().find("http://tag.example/"), std::string_view::npos);
}

TEST_F(VpaidPageTest, IsEmptyWhereTheHostThrowsAndTheRecordKeepsTheLastOne) {
  useTemplate("{{VAST_TAG}}");
  const auto ad = adWithTag("http://t/[TAMZO_SESSION_ID]");
  ASSERT_EQ(ad->getVideoWAPView(), "http://t/");
  HostState throwing;
  throwing.sessionId = []() -> Text { throw std::runtime_error("no session"); };
  useState(throwing);
  EXPECT_EQ(ad->getVideoWAPView(), "");
  useState({});
  useTemplateFrom([]() -> Text { throw std::bad_alloc(); });
  EXPECT_EQ(ad->getVideoWAPView(), "");
  EXPECT_EQ(ad->vPaidHTML(), "http://t/");
  EXPECT_EQ(ad->errorCode(), kException) << "of the parse, and as it was";

  useTemplateFrom([]() -> Text { throw 7; });  // NOLINT(hicpp-exception-baseclass)
  EXPECT_THROW(ad->getVideoWAPView(), int) << "what is no std::exception is the host's own";
}

}  // namespace
}  // namespace tamzo::testing
