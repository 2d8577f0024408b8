// Icons among the extra actions, one for each program.

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <variant>

#include <nlohmann/json.hpp>

#include "tests/support/Growth.h"
#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using Pairs = UrlsAndOffsets;

class IconsTest : public UpdaterTest {
 protected:
  // Programs and ids of the icons in the record.
  Pairs icons() const {
    Pairs found;
    for (const auto& entry : *ad_->extraActions().list()) {
      const auto& icon = std::get<DDXMLElement>(entry);
      found.emplace_back(icon.attributeValue("program").view(), icon.attributeValue("id").view());
    }
    return found;
  }
  static NodeList linearWith(const std::string& icons) {
    return rootOf("<Linear><Icons>" + icons + "</Icons></Linear>");
  }
};

TEST_F(IconsTest, ALaterOneOfAProgramTakesThePlaceOfTheEarlier) {
  collectLog();
  ad_->updateIcons(
      linearWith("<Icon program='AdChoices' id='1'/><Icon program='Other' id='2'/>"
                 "<Icon program='AdChoices' id='3'/>"));
  EXPECT_EQ(icons(), (Pairs{{"AdChoices", "3"}, {"Other", "2"}}));
  EXPECT_EQ(log(), (Names{"[TAMZO-LOG][v8.0.0 p0] scsd", "[TAMZO-LOG][v8.0.0 p0] scsd",
                          "[TAMZO-LOG][v8.0.0 p0] Added Extra Action"}));
  ad_->updateIcons(linearWith("<Icon program='Other' id='4'/>"));
  EXPECT_EQ(icons(), (Pairs{{"AdChoices", "3"}, {"Other", "4"}}));
}

TEST_F(IconsTest, ProgramsAreToldApartByEveryCharacter) {
  ad_->updateIcons(
      linearWith("<Icon program='AdChoices'/><Icon program='adchoices'/>"
                 "<Icon program='AdChoices '/>"));
  EXPECT_EQ(icons().size(), 3U);
}

TEST_F(IconsTest, OneWithoutAProgramIsPassedOver) {
  collectLog();
  ad_->updateIcons(linearWith("<Icon/><Icon program=''/><Icon Program='x'/>"));
  EXPECT_EQ(icons(), Pairs{});
  EXPECT_EQ(log(), Names{"[TAMZO-LOG][v8.0.0 p0] Added Extra Action"}) << "logged all the same";
}

TEST_F(IconsTest, ALinearWithoutAnyChangesNothing) {
  ad_->updateIcons(linearWith("<Icon program='p' id='1'/>"));
  collectLog();
  ad_->updateIcons(linearWith(""));
  ad_->updateIcons(rootOf("<Linear/>"));
  ad_->updateIcons(NodeList());
  EXPECT_EQ(icons(), (Pairs{{"p", "1"}}));
  EXPECT_TRUE(log().empty());
}

TEST_F(IconsTest, ThereIsNoPlaceForOneWhereExtraActionsAreNil) {
  ad_->setExtraActions({});
  ad_->updateIcons(linearWith("<Icon program='p'/>"));
  ad_->checkProgramExist("p", rootOf("<Icon program='p'/>").at(0));
  EXPECT_TRUE(ad_->extraActions().isNil());
}

TEST_F(IconsTest, OfSeveralEntriesOfAProgramTheLastIsReplaced) {
  const NodeList old = rootOf("<Icon program='p' id='old'/>");
  ad_->extraActions().list()->emplace_back(old.at(0));
  ad_->extraActions().list()->emplace_back(old.at(0));
  collectLog();
  ad_->checkProgramExist("p", rootOf("<Icon program='p' id='new'/>").at(0));
  EXPECT_EQ(icons(), (Pairs{{"p", "old"}, {"p", "new"}}));
  ad_->checkProgramExist("q", rootOf("<Icon program='q' id='new'/>").at(0));
  EXPECT_EQ(icons().back(), (std::pair<std::string, std::string>{"q", "new"}));
  EXPECT_EQ(log().size(), 2U);
  ad_->extraActions().list()->emplace_back(rootOf("<Icon program='' id='e'/>").at(0));
  ad_->checkProgramExist(Text(), rootOf("<Icon id='n'/>").at(0));
  EXPECT_EQ(icons().size(), 5U) << "nil equals no program, not even an empty one";
}

TEST_F(IconsTest, JsonAmongTheActionsStaysWhereItIs) {
  ad_->setExtraActions(TamzoExtraActions::fromJson("[{\"program\": \"p\"}, 2]"));
  ad_->updateIcons(linearWith("<Icon program='p'/><Icon program='q'/><Icon program='p' id='2'/>"));
  const auto& actions = *ad_->extraActions().list();
  ASSERT_EQ(actions.size(), 4U);
  EXPECT_EQ(std::get<JsonValue>(actions[0]).dump(), R"({"program":"p"})");
  EXPECT_EQ(std::get<DDXMLElement>(actions[2]).attributeValue("id"), Text("2"));
  EXPECT_EQ(std::get<DDXMLElement>(actions[3]).attributeValue("program"), Text("q"));
}

TEST_F(IconsTest, ThereIsNoPlaceForOneWhereExtraActionsAreASingleValue) {
  ad_->setExtraActions(TamzoExtraActions::fromJson("{}"));
  ad_->updateIcons(linearWith("<Icon program='p'/>"));
  ad_->checkProgramExist("p", rootOf("<Icon program='p'/>").at(0));
  EXPECT_FALSE(ad_->extraActions().isList());
  EXPECT_EQ(ad_->extraActions().value().dump(), "{}");
}

TEST_F(IconsTest, ElementsAreKeptThemselvesAndOutliveTheirDocument) {
  DDXMLElement icon;
  {
    const NodeList linears =
        linearWith("<Icon program='p'><StaticResource>u</StaticResource></Icon>");
    icon = linears.firstMatch("Icons/Icon");
    ad_->updateIcons(linears);
  }
  const auto& kept = std::get<DDXMLElement>(ad_->extraActions().list()->at(0));
  EXPECT_EQ(kept, icon);
  EXPECT_EQ(kept.XMLString(),
            Text("<Icon program=\"p\"><StaticResource>u</StaticResource></Icon>"));
}

TEST_F(IconsTest, ManyAreRead) {
  std::string many;
  for (int i = 0; i < 50000; ++i) {
    many += "<Icon program='p" + std::to_string(i) + "'/>";
  }
  ad_->updateIcons(linearWith(many + many));
  EXPECT_EQ(icons().size(), 50000U);
}

TEST_F(IconsTest, ManyAreReadInNoTime) {
  EXPECT_TRUE(growsLinearly(1000, [](std::size_t size) {
    std::string many;
    for (std::size_t i = 0; i < size; ++i) {
      many += "<Icon program='p" + std::to_string(i) + "'/>";
    }
    return [nodes = linearWith(many + many)] { freshRecord()->updateIcons(nodes); };
  }));
}

}  // namespace
}  // namespace tamzo::testing
