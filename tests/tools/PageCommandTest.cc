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

}  // namespace
}  // namespace tamzo::testing
