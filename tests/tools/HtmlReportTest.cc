#include "tools/HtmlReport.h"

#include <gtest/gtest.h>

#include "explain/Explainer.h"
#include "tests/support/Responses.h"
#include "tests/support/SdkFixture.h"
#include "tests/support/StrictXml.h"
#include "tools/HtmlText.h"

namespace tamzo::testing {
namespace {

class HtmlReportTest : public SdkTest {
 protected:
  static std::string reportOf(const std::string& response) {
    explain::Explainer explainer;
    ParseOptions options;
    options.observer = &explainer;
    const auto ad = TamzoVastAd::initWithVast(Text(response), options);
    return command::htmlReport(*ad, explainer.explain(*ad), {"a <line>"});
  }
};

TEST_F(HtmlReportTest, markupOfTheResponseIsText) {
  const std::string hostile = "&lt;script>alert(1)&lt;/script>&lt;img src=x onerror=alert(1)>";
  const std::string report = reportOf(
      inlineAd("4.0", "<AdSystem>" + hostile + "</AdSystem><AdTitle>\"'</AdTitle><Impression>" +
                          hostile + "</Impression><Category>" + hostile + "</Category>"));
  EXPECT_EQ(report.find("<script"), std::string::npos);
  EXPECT_EQ(report.find("<img"), std::string::npos);
  EXPECT_NE(report.find("&lt;script&gt;alert(1)"), std::string::npos);
  EXPECT_NE(report.find("a &lt;line&gt;"), std::string::npos);
}

TEST_F(HtmlReportTest, nothingIsLoaded) {
  const std::string report =
      reportOf(inlineAd("4.0", "<Impression>https://t.example/</Impression>"));
  EXPECT_NE(report.find("content=\"default-src 'none'; style-src 'unsafe-inline'"),
            std::string::npos);
  for (const char* loading : {" src=", "url(", "@import", "href=\"http", "<link", "<iframe"}) {
    EXPECT_EQ(report.find(loading), std::string::npos) << loading;
  }
}

TEST_F(HtmlReportTest, theSentenceAndThePlacesAreThere) {
  const std::string report = reportOf("<VAST version='4.0'>\n <a b='1' b='2'/></VAST>");
  EXPECT_NE(report.find("FAILED 101"), std::string::npos);
  EXPECT_NE(report.find("[duplicate-attribute]"), std::string::npos);
  EXPECT_NE(
      report.find("An element has the attribute &quot;b&quot; twice (hop 1, line 2, column 11)."),
      std::string::npos);
  EXPECT_NE(report.find("<mark>b=&#39;2&#39;/</mark>"), std::string::npos);
}

TEST_F(HtmlReportTest, weighsLittleBesideItsDocuments) {
  std::string impressions;
  for (int i = 0; i < 20000; ++i) {
    impressions += "<Impression>https://t.example/" + std::to_string(i) + "</Impression>\n";
  }
  const std::string response = inlineAd("4.0", impressions);
  EXPECT_LT(reportOf(inlineAd("4.0")).size(), 100'000U);
  EXPECT_LT(reportOf(response).size(), 2 * response.size() + 700'000U);
}

TEST_F(HtmlReportTest, whatIsInvisibleIsWritten) {
  EXPECT_EQ(command::htmlText("a\xE2\x80\xAE<b>\x01\xFF"), "a\\u202e&lt;b&gt;\\u0001\xEF\xBF\xBD");
}

}  // namespace
}  // namespace tamzo::testing
