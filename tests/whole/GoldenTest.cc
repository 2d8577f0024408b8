// Whole responses beside the records they must give.
//
// tests/data/TOPIC/CASE.xml is a response and CASE.json the record, in which only those properties
// stand that differ from a fresh record's; everything else must be as in a fresh one. The response
// text itself (vastResponseStr, and vastTagURI where it is the same) is left out. CASE.2.xml,
// CASE.3.xml … are served by a real HTTP server at {{HOST}}/2, {{HOST}}/3 …; {{HOST}} stands for
// its address in responses and records alike. CASE.options.json may set "blockedCategories".
//
// With TAMZO_UPDATE_GOLDEN=1 the records are rewritten, for review as a diff.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tamzo/net/TamzoUrlReader.h"
#include "tamzo/sdk/TamzoState.h"
#include "tamzo/vast/RecordJson.h"
#include "tests/support/HostHooks.h"
#include "tests/support/HttpServer.h"
#include "tests/support/Paths.h"

namespace tamzo::testing {
namespace {

namespace fs = std::filesystem;
using nlohmann::ordered_json;

std::string readFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::string replaceAll(std::string text, const std::string& what, const std::string& with) {
  for (std::size_t at = text.find(what); at != std::string::npos;
       at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
  return text;
}

// CASE.xml, but not CASE.2.xml.
std::vector<fs::path> allCases() {
  std::vector<fs::path> cases;
  for (const auto& entry : fs::recursive_directory_iterator(kTestData)) {
    const fs::path& path = entry.path();
    if (path.extension() == ".xml" && !path.stem().has_extension()) {
      cases.push_back(path);
    }
  }
  std::sort(cases.begin(), cases.end());
  return cases;
}

fs::path beside(const fs::path& response, const std::string& suffix) {
  return response.parent_path() / (response.stem().string() + suffix);
}

// What every record holds that no document has written to.
ordered_json recordOfNothing() {
  const auto fresh = TamzoVastAd::initWithVast("");
  return ordered_json::parse(recordAsJson(*fresh));
}

ordered_json differenceFromFresh(const TamzoVastAd& ad, const std::string& response) {
  ordered_json fresh = recordOfNothing();
  fresh["errorCode"] = 0;
  ordered_json difference = ordered_json::object();
  const ordered_json record = ordered_json::parse(recordAsJson(ad));
  for (const auto& [name, value] : record.items()) {
    const bool isResponse = (name == "vastResponseStr" || name == "vastTagURI") &&
                            value == TamzoVastAd::replaceWithPattern("xmlns", response).view();
    if (!isResponse && value != fresh[name]) {
      difference[name] = value;
    }
  }
  return difference;
}

class Golden : public ::testing::TestWithParam<fs::path> {
 protected:
  ~Golden() override { useState({}); }
};

TEST_P(Golden, ResponseGivesItsRecord) {
  const fs::path path = GetParam();
  HttpServer server;
  for (int i = 2; fs::exists(beside(path, "." + std::to_string(i) + ".xml")); ++i) {
    const std::string body = readFile(beside(path, "." + std::to_string(i) + ".xml"));
    server.serve("/" + std::to_string(i), replaceAll(body, "{{HOST}}", server.url()));
  }
  if (fs::exists(beside(path, ".options.json"))) {
    const auto options = ordered_json::parse(readFile(beside(path, ".options.json")));
    HostState state;
    state.blockedAdCategories = [text = Text(options.value("blockedCategories", ""))] {
      return text;
    };
    useState(std::move(state));
  }

  const std::string response = replaceAll(readFile(path), "{{HOST}}", server.url());
  const auto ad = TamzoVastAd::initWithVast(response);
  ASSERT_NE(ad, nullptr);
  const std::string actual =
      replaceAll(differenceFromFresh(*ad, response).dump(2) + "\n", server.url(), "{{HOST}}");

  const fs::path expected = beside(path, ".json");
  if (std::getenv("TAMZO_UPDATE_GOLDEN") != nullptr) {
    std::ofstream(expected, std::ios::binary) << actual;
  }
  EXPECT_EQ(actual, readFile(expected)) << expected;
}

std::string nameOf(const ::testing::TestParamInfo<fs::path>& info) {
  std::string name =
      info.param.parent_path().filename().string() + "_" + info.param.stem().string();
  std::replace_if(
      name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Responses, Golden, ::testing::ValuesIn(allCases()), nameOf);

}  // namespace
}  // namespace tamzo::testing
