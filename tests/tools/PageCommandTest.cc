// "tamzo-vast page": the page that plays a response.

#include <gtest/gtest.h>

#include "tests/support/CommandFixture.h"

namespace tamzo::testing {
namespace {

using PageCommandTest = CommandTest;

TEST_F(PageCommandTest, ThePageIsPrintedExactly) {
  const std::string page = file("page.html", "{{IS_TAG_A_URL}}|{{VAST_TAG}}|{{MOAT_DATA}}");
  const std::string response = "<VAST version='9'>\n[TAMZO_SESSION_ID]</VAST>";
  const Result result = run({"page", "--template", page, "--session-id", "S"}, response);
  EXPECT_EQ(result.out, "false|<VAST version='9'>S</VAST>|{}");
  EXPECT_EQ(result.status, 1) << "the ad failed";
  EXPECT_EQ(run({"page", "--template", page}, response).out, "false|<VAST version='9'></VAST>|{}");
  EXPECT_EQ(run({"page", "--template", file("none", "")}, response).out, "") << "no template";
  const Result own = run({"page", "-o", path("out"), file("a.xml", ad("a"))});
  EXPECT_EQ(own.status, 0) << own.err;
  EXPECT_NE(contentOf(path("out")).find(ad("a")), std::string::npos);
}

TEST_F(PageCommandTest, APageThatIsNotMadeSaysSo) {
  std::string placeholders;
  for (int i = 0; i < 5000; ++i) {
    placeholders += "{{VAST_TAG}}";
  }
  const std::string response = file("a.xml", ad("a") + "<!--" + std::string(2000, 'x') + "-->");
  for (const std::string& page : {file("none", ""), file("long", placeholders)}) {
    const Result result = run({"page", "--template", page, response});
    EXPECT_EQ(result.out.size(), 0U);
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.err.starts_with("tamzo-vast: no page: ")) << result.err;
    EXPECT_EQ(result.err.find('\n'), result.err.size() - 1) << result.err;
  }
  const Result empty =
      run({"page", "--template", file("session", "{{MOAT_PARTNER_CODE}}"), response});
  EXPECT_EQ(empty.out, "");
  EXPECT_EQ(empty.err, "") << "an empty page is one";
  EXPECT_EQ(empty.status, 0);
}

}  // namespace
}  // namespace tamzo::testing
