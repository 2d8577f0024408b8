#include "tamzo/sdk/TamzoMeasurementProviderModel.h"

#include <gtest/gtest.h>

#include "tests/support/SdkFixture.h"

namespace tamzo::testing {
namespace {

TEST(TamzoMeasurementProviderModelTest, AVerificationIsReadWhole) {
  const auto provider = TamzoMeasurementProviderModel::init()->createMeasurementProviderFromXML(
      rootOf(R"(<Verification vendor="v.example-omid">
        <JavaScriptResource apiFramework="omid" browserOptional="true"> https://v.example/1.js
        </JavaScriptResource>
        <JavaScriptResource browserOptional=""><![CDATA[https://v.example/2.js]]></JavaScriptResource>
        <JavaScriptResource/>
        <ExecutableResource apiFramework="omid" type="x"> https://v.example/exe </ExecutableResource>
        <ExecutableResource/>
        <TrackingEvents>
          <Tracking event="verificationNotExecuted"> https://v.example/no?r=[REASON] </Tracking>
          <Tracking event="verificationNotExecuted">https://v.example/2</Tracking>
        </TrackingEvents>
        <VerificationParameters> {"a": 1}
</VerificationParameters>
        <VerificationParameters>second</VerificationParameters>
      </Verification>)"));
  EXPECT_EQ(provider->vendor(), "v.example-omid");
  const auto scripts = provider->javaScriptResources();
  ASSERT_EQ(scripts.size(), 3U);
  EXPECT_EQ(scripts[0].url, "https://v.example/1.js");
  EXPECT_EQ(scripts[0].apiFramework, "omid");
  EXPECT_EQ(scripts[0].browserOptional, true);
  EXPECT_EQ(scripts[1].url, "https://v.example/2.js");
  EXPECT_TRUE(scripts[1].apiFramework.isNil());
  EXPECT_EQ(scripts[1].browserOptional, false);
  EXPECT_EQ(scripts[2].url, "");
  EXPECT_FALSE(scripts[2].browserOptional.has_value());
  const auto executables = provider->executableResources();
  ASSERT_EQ(executables.size(), 2U);
  EXPECT_EQ(executables[0].url, "https://v.example/exe");
  EXPECT_EQ(executables[0].apiFramework, "omid");
  EXPECT_EQ(executables[0].type, "x");
  EXPECT_TRUE(executables[1].type.isNil());
  EXPECT_EQ(provider->verificationParameters(), " {\"a\": 1}\n");
  const TrackerList refused = provider->trackers().find("verificationNotExecuted");
  ASSERT_EQ(refused->size(), 2U);
  EXPECT_EQ(refused->front()->url(), "https://v.example/no?r=[REASON]");
}

TEST(TamzoMeasurementProviderModelTest, AnEmptyVerificationIsStillAProvider) {
  for (const NodeList& nodes : {rootOf("<Verification/>"), NodeList(), NodeList::makeEmpty()}) {
    const auto provider =
        TamzoMeasurementProviderModel::init()->createMeasurementProviderFromXML(nodes);
    ASSERT_NE(provider, nullptr);
    EXPECT_TRUE(provider->vendor().isNil());
    EXPECT_TRUE(provider->javaScriptResources().empty());
    EXPECT_TRUE(provider->executableResources().empty());
    EXPECT_TRUE(provider->verificationParameters().isNil());
    EXPECT_EQ(provider->trackers().size(), 0U);
  }
}

TEST(TamzoMeasurementProviderModelTest, OnlyTheFirstElementOfAListIsRead) {
  const auto document = parseDocument("<A><V vendor='1'/><V vendor='2'/></A>");
  const auto provider = TamzoMeasurementProviderModel::init()->createMeasurementProviderFromXML(
      document->nodesForXPath("/A/V"));
  EXPECT_EQ(provider->vendor(), "1");
}

}  // namespace
}  // namespace tamzo::testing
