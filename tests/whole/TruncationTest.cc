// A connection may break anywhere. A good response that holds everything a record can, cut at every
// byte, must end in a defined error and in a record that can be written.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "base/Utf8.h"
#include "tamzo/vast/RecordJson.h"
#include "tests/support/Paths.h"
#include "tests/support/Responses.h"
#include "tests/support/SdkFixture.h"

namespace tamzo::testing {
namespace {

using nlohmann::json;

// The fuzzers begin with the same responses.
std::string wholeResponse(const std::string& name) {
  const auto path = std::filesystem::path(kFuzzSeeds) / "response" / name;
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file) << path;
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

// The cut just behind the end tag of the root is the first that is a document.
std::size_t lengthOfDocument(const std::string& response) {
  return response.rfind("</VAST>") + std::string_view("</VAST>").size();
}

json recordOf(const TamzoVastAd& ad) {
  json record = json::parse(recordAsJson(ad), nullptr, /*allow_exceptions=*/false);
  EXPECT_TRUE(record.is_object());
  return record;
}

class TruncationTest : public SdkTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(TruncationTest, ResponseCutAtEveryByteEndsInADefinedError) {
  const std::string response = wholeResponse(GetParam());
  const std::size_t whole = lengthOfDocument(response);
  ASSERT_GT(whole, 4000U);
  for (std::size_t cut = 0; cut <= response.size(); ++cut) {
    SCOPED_TRACE("cut at " + std::to_string(cut));
    const auto ad = TamzoVastAd::initWithVast(std::string_view(response).substr(0, cut));
    ASSERT_NE(ad, nullptr);
    // Fewer than four characters cannot be asked whether they are a URL.
    const int expected = cut < 4 ? kException : (cut < whole ? kNotXml : kNoError);
    ASSERT_EQ(ad->errorCode(), expected);
    const json record = recordOf(*ad);
    ASSERT_EQ(record["errorCode"], expected);
    // Nothing of a document is read that is not whole.
    ASSERT_EQ(record["trackers"].empty(), cut < whole);
    ASSERT_EQ(record["adID"].is_null(), cut < whole);
  }
}

TEST_P(TruncationTest, FetchedDocumentCutAtEveryByteEndsInADefinedError) {
  // A fetched document is parsed as it stands, so it must declare no namespace.
  std::string fetched = wholeResponse(GetParam());
  const std::string declaration = R"( xmlns="http://ads.example/vast")";
  ASSERT_NE(fetched.find(declaration), std::string::npos);
  fetched.erase(fetched.find(declaration), declaration.size());
  const std::size_t whole = lengthOfDocument(fetched);
  const Text response = wrapper("3.0", "<Impression>i</Impression>");

  std::size_t cut = 0;
  readUrlsWith([&](const Text&) { return std::optional(fetched.substr(0, cut)); });
  for (; cut <= fetched.size(); ++cut) {
    SCOPED_TRACE("cut at " + std::to_string(cut));
    const auto ad = TamzoVastAd::initWithVast(response);
    ASSERT_NE(ad, nullptr);
    // A body cut inside a character is no text at all.
    const bool isText = cut > 0 && isUtf8(std::string_view(fetched).substr(0, cut));
    const int expected = !isText ? kEmptyContent : (cut < whole ? kNotXml : kNoError);
    ASSERT_EQ(ad->errorCode(), expected);
    const json record = recordOf(*ad);
    // What the Wrapper brought stays.
    ASSERT_EQ(record["adID"], "wrapper");
    ASSERT_EQ(record["trackers"]["Impression"][0]["url"], "i");
    ASSERT_EQ(record["trackers"].contains("progress"), cut >= whole);
  }
}

std::string nameOf(const ::testing::TestParamInfo<const char*>& info) {
  const std::string name = info.param;
  return std::string(name.find("vpaid") == 0 ? "Vpaid" : "Everything") + name[name.find(".") - 1];
}

INSTANTIATE_TEST_SUITE_P(Responses, TruncationTest,
                         ::testing::Values("everything-v2.xml", "everything-v3.xml",
                                           "everything-v4.xml", "vpaid-v3.xml", "vpaid-v4.xml"),
                         nameOf);

}  // namespace
}  // namespace tamzo::testing
