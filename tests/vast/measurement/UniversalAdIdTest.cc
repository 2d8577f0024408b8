// The ad's id in a registry.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using UniversalAdIdTest = SdkTest;

TEST_F(UniversalAdIdTest, IsReadFromAttributes) {
  const Text kept = "kept";
  const struct {
    const char* xml;
    Text registry;
    Text value;
  } rows[] = {
      {"<I><UniversalAdId idRegistry='r' idValue='v'>text</UniversalAdId></I>", "r", "v"},
      {"<I><UniversalAdId idRegistry='r'>text</UniversalAdId></I>", "r", kept},
      {"<I><UniversalAdId idValue=' v '/></I>", kept, " v "},
      {"<I><UniversalAdId idRegistry='' idValue=''/></I>", "", ""},
      {"<I><UniversalAdId/><UniversalAdId idRegistry='r' idValue='v'/></I>", kept, kept},
      {"<I><UniversalAdId idregistry='r' IdValue='v'/></I>", kept, kept},
      {"<I><Creatives><Creative><UniversalAdId idRegistry='r'/></Creative></Creatives></I>", kept,
       kept},
      {"<I/>", kept, kept},
  };
  for (const auto& row : rows) {
    const auto ad = freshRecord();
    ad->setUnivversalIDRegistry(kept);
    ad->setUniversalIDValue(kept);
    ad->updateUniversalAdIdInfo(rootOf(row.xml));
    EXPECT_EQ(ad->univversalIDRegistry(), row.registry) << row.xml;
    EXPECT_EQ(ad->universalIDValue(), row.value) << row.xml;
  }
}

TEST_F(UniversalAdIdTest, IsLoggedAsItThenStands) {
  const auto ad = freshRecord();
  collectLog();
  ad->updateUniversalAdIdInfo(rootOf("<I><UniversalAdId idRegistry='r'/></I>"));
  ad->updateUniversalAdIdInfo(rootOf("<I><UniversalAdId idValue='v'/></I>"));
  ad->updateUniversalAdIdInfo(rootOf("<I><Creative><UniversalAdId/></Creative></I>"));
  ad->updateUniversalAdIdInfo(NodeList());
  ad->updateUniversalAdIdInfo(NodeList::makeEmpty());
  const std::string prefix = "[TAMZO-LOG][v8.0.0 p0] Universal AdId ";
  EXPECT_EQ(log(), (std::vector<std::string>{
                       prefix + "Info idRegistryNode = r idValueNode = (null)",
                       prefix + "Info idRegistryNode = r idValueNode = v", prefix + "not available",
                       prefix + "not available", prefix + "not available"}));
}

}  // namespace
}  // namespace tamzo::testing
