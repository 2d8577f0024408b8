// The command as a person or a script runs it.

#include <gtest/gtest.h>

#include <chrono>
#include <regex>
#include <thread>

#include "tests/support/CommandFixture.h"
#include "tests/support/HttpServer.h"

namespace tamzo::testing {
namespace {

long countLines(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }

// ---- parse -----------------------------------------------------------------------------------

TEST_F(CommandTest, ParseTakesAFileOrStandardInput) {
  const std::string response = ad("a");
  const Result named = run({"parse", file("a.xml", response)});
  EXPECT_EQ(named.status, 0) << named.err;
  EXPECT_EQ(named.err, "");
  EXPECT_NE(named.out.find("OK"), std::string::npos) << named.out;
  EXPECT_EQ(run({"parse"}, response).out, named.out);
  EXPECT_EQ(run({"parse", "-"}, response).out, named.out);
  EXPECT_EQ(run({"parse", "--format", "text"}, response).out, named.out);
}

TEST_F(CommandTest, JsonIsTheWholeRecord) {
  const Result result = run({"parse", "--format", "json"}, ad("a"));
  EXPECT_EQ(result.status, 0);
  const auto json = ordered_json::parse(result.out);
  EXPECT_EQ(json.size(), 72U);
  EXPECT_EQ(json.begin().key(), "adID");
  EXPECT_EQ(json.at("adID"), "a");
  EXPECT_EQ(json.at("vastResponseStr"), ad("a"));
  EXPECT_EQ(result.out.back(), '\n');
}

TEST_F(CommandTest, AFailedAdIsPrintedWithStatus1) {
  const Result json = run({"parse", "--format", "json"}, "<VAST version='9'/>");
  EXPECT_EQ(json.status, 1);
  EXPECT_EQ(ordered_json::parse(json.out).at("errorCode"), 102);
  const Result text = run({"parse"}, "");
  EXPECT_EQ(text.status, 1);
  EXPECT_NE(text.out.find("error 100"), std::string::npos) << text.out;
}

TEST_F(CommandTest, OutputGoesToAFile) {
  const Result direct = run({"parse"}, ad("a"));
  const Result result = run({"parse", "-o", path("out")}, ad("a"));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(contentOf(path("out")), direct.out);
}

TEST_F(CommandTest, CategoriesAreBlockedAsGiven) {
  const std::string response = ad("a", "<Category>IAB26</Category>");
  EXPECT_EQ(record({"parse"}, response).at("errorCode"), 0);
  EXPECT_EQ(record({"parse", "--blocked-categories", "IAB1,IAB26"}, response).at("errorCode"), 205);
  EXPECT_EQ(record({"parse", "--blocked-categories", "IAB1, IAB26"}, response).at("errorCode"), 0);
  const std::string empty = ad("a", "<Category/>");
  EXPECT_EQ(record({"parse"}, empty).at("errorCode"), 0) << "nil without the option";
  EXPECT_EQ(record({"parse", "--blocked-categories", ""}, empty).at("errorCode"), 205);
}

TEST_F(CommandTest, AByteOrderMarkAndADeclaredEncodingChangeNothing) {
  const std::string mark = "\xEF\xBB\xBF";
  EXPECT_EQ(record({"parse"}, mark + ad("a")).at("vastResponseStr"), ad("a"));
  for (const char* encoding : {"UTF-16", "ISO-8859-1", "UTF-8", "nonsense"}) {
    const auto json = record({"parse"}, std::string("<?xml version='1.0' encoding='") + encoding +
                                            "'?>" + ad("\xC3\xA9"));
    EXPECT_EQ(json.at("adID"), "\xC3\xA9") << encoding;
  }
}

TEST_F(CommandTest, DebugLinesGoToStandardError) {
  HttpServer server;
  server.serve("/2", ad("b"));
  const Result quiet = run({"parse", "--format", "json", server.url("/2")});
  EXPECT_EQ(quiet.err, "");
  const Result result = run({"parse", "--debug", "--format", "json", server.url("/2")});
  EXPECT_EQ(result.out, quiet.out);
  std::istringstream lines(result.err);
  std::vector<std::string> fetch;
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("[TAMZO-LOG][v8.0.0 p0] ")) {
      fetch.push_back(line);
    }
  }
  EXPECT_EQ(fetch, (Arguments{"vastTagURI = " + server.url("/2"),
                              "url formed from vastTagURI = " + server.url("/2")}));
  EXPECT_NE(result.err.find("[TAMZO-LOG][v8.0.0 p0] VAST version is 4.0\n"), std::string::npos);
  EXPECT_EQ(result.err.back(), '\n');
  const Result nil = run({"parse", "--debug"}, ad("a", "<Category>c</Category>"));
  EXPECT_NE(nil.err.find("[Blocked ad category: (null)] and"), std::string::npos) << nil.err;
}

TEST_F(CommandTest, FetchesAreLimited) {
  HttpServer server;
  server.serve("/ad", ad("a"));
  server.on("/slow", [&server](const Exchange&) {
    while (!server.isClosing()) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  });
  const std::string size = std::to_string(ad("a").size());
  const std::string less = std::to_string(ad("a").size() - 1);
  const struct {
    const char* name;
    Arguments arguments;
    int errorCode;
  } rows[] = {
      {"plain", {"parse", server.url("/ad")}, 0},
      {"missing", {"parse", server.url("/gone")}, 301},
      {"a body of that size", {"parse", "--max-body", size, server.url("/ad")}, 0},
      {"a larger body", {"parse", "--max-body", less, server.url("/ad")}, 301},
      {"enough time", {"parse", "--timeout", "30", server.url("/ad")}, 0},
      {"huge limits",
       {"parse", "--timeout", "99999999999999999999", "--max-body", "18446744073709551615",
        server.url("/ad")},
       0},
      {"too slow", {"parse", "--timeout", "0.3", server.url("/slow")}, 301},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(record(row.arguments).value("errorCode", -1), row.errorCode) << row.name;
  }
}

TEST_F(CommandTest, HostileTextPutsNoControlCharacterOnTheTerminal) {
  const std::string evil =
      "&#x85;&#x9B;2J\xC2\x9B"
      "1m&#x7F;&#10;&#13;&#9;x";
  std::string response = ad(
      evil, "<Impression>" + evil + "</Impression><Category>" + evil +
                "</Category><UniversalAdId idRegistry='" + evil + "' idValue='" + evil +
                "'/>"
                "<Extensions><Extension><Tamzo><ExtraActions>[\"\\u001b[2J\\u009b\"]</ExtraActions>"
                "<ExtraTrackingEvents><Tracking event='" +
                evil + "'>" + evil +
                "</Tracking>"
                "</ExtraTrackingEvents></Tamzo><AdVerifications><Verification vendor='" +
                evil +
                "'>"
                "<JavaScriptResource>" +
                evil +
                "</JavaScriptResource></Verification></AdVerifications>"
                "</Extension></Extensions>");
  const std::string linear = "<Linear><Icons><Icon program='" + evil + "'/></Icons><Duration>" +
                             evil + "</Duration><VideoClicks><ClickThrough>" + evil +
                             "</ClickThrough></VideoClicks>";
  response.replace(response.find("<Linear>"), 8, linear);
  const std::string companion = "<Creative><CompanionAds><Companion id='" + evil +
                                "'><IFrameResource>" + evil +
                                "</IFrameResource><CompanionClickThrough>" + evil +
                                "</CompanionClickThrough></Companion></CompanionAds></Creative>";
  response.insert(response.find("</Creatives>"), companion);
  const Result result = run({"parse"}, response);
  EXPECT_EQ(result.status, 0) << result.out;
  EXPECT_NE(result.out.find("\\u009b2J"), std::string::npos) << result.out;
  for (std::size_t at = 0; at < result.out.size(); ++at) {
    const auto byte = static_cast<unsigned char>(result.out[at]);
    const bool isC1 = byte == 0xC2 && static_cast<unsigned char>(result.out[at + 1]) < 0xA0;
    ASSERT_FALSE((byte < 0x20 && byte != '\n') || byte == 0x7F || isC1)
        << "byte " << int{byte} << " after " << result.out.substr(0, at);
  }
}

// ---- Wrong usage -----------------------------------------------------------------------------

TEST_F(CommandTest, WrongUsageIsOneLineAndStatus2) {
  const std::string good = file("good.xml", ad("a"));
  file("bad.xml", "<VAST>\xFF</VAST>");
  fs::create_directory(path("folder"));
  fs::create_symlink(path("loop"), path("loop"));
  struct Row {
    Arguments arguments;
    std::string named;  // what the line must name
  };
  std::vector<Row> rows = {
      {{}, "tamzo-vast"},
      {{"nonsense"}, ""},
      {{"parse", "--nonsense"}, "--nonsense"},
      {{"page", "--format", "json", good}, "--format"},
      {{"batch", "--format", "json", good}, "--format"},
      {{"parse", good, good}, ""},
      {{"parse", "--timeout"}, "--timeout"},
      {{"parse", path("none.xml")}, "none.xml"},
      {{"parse", path("folder")}, "folder"},
      {{"parse", good + "/x"}, "good.xml/x"},
      {{"parse", path("loop")}, "loop"},
      {{"parse", path("bad.xml")}, "bad.xml: is not UTF-8"},
      {{"parse", path("line\nbreak\x1B.xml")}, "line\\u000abreak\\u001b"},
      {{"parse", "--format", "html", good}, "html"},
      {{"parse", "--format", "xml", good}, "xml"},
      {{"parse", "--format", "", good}, "--format"},
      {{"parse", "-o", path("none/out"), good}, "none/out"},
      {{"parse", "-o", path("folder"), good}, "folder"},
      {{"parse", "--blocked-categories", "\xFF", good}, "--blocked-categories"},
      {{"page", "--session-id", "\xC3", good}, "--session-id"},
      {{"page", "--template", "", good}, "--template"},
      {{"page", "--template=", good}, "--template"},
      {{"parse", ""}, "INPUT"},
      {{"page", ""}, "INPUT"},
      {{"parse", "--format=", good}, "--format"},
      {{"parse", "--nope=", good}, "--nope"},
      {{"page", "--template", path("none.html"), good}, "none.html"},
      {{"batch", "-j", "0", good}, "-j"},
      {{"batch", "-j", "x", good}, "-j"},
      {{"batch", "-j", "2x", good}, "-j"},
      {{"batch", "-j", "-1", good}, "-j"},
      {{"batch", "-j", "1.5", good}, "-j"},
  };
  for (const char* value :
       {"0", "0.0", "-1", "x", "", "1s", "nan", "inf", "1e3", "1,5", ".", "0x1"}) {
    rows.push_back({{"parse", "--timeout", value, good}, "--timeout"});
  }
  for (const char* value : {"0", "-1", "x", "", "1k", "1.5", "+1", " 1", "18446744073709551616"}) {
    rows.push_back({{"parse", "--max-body", value, good}, "--max-body"});
  }
  if (geteuid() != 0) {  // to root nothing is unreadable
    fs::permissions(file("secret.xml", ad("a")), fs::perms::none);
    rows.push_back({{"parse", path("secret.xml")}, "secret.xml"});
  }
  for (const Row& row : rows) {
    std::string shown;
    for (const std::string& argument : row.arguments) {
      shown += argument + " ";
    }
    const Result result = run(row.arguments);
    EXPECT_EQ(result.status, 2) << shown;
    EXPECT_EQ(result.out, "") << shown;
    EXPECT_EQ(countLines(result.err), 1) << shown << result.err;
    EXPECT_NE(result.err.find(row.named), std::string::npos) << shown << result.err;
  }
  const Result input = run({"parse"}, "\xC3\x28");
  EXPECT_EQ(input.status, 2);
  EXPECT_NE(input.err.find("standard input"), std::string::npos) << input.err;
}

TEST_F(CommandTest, LimitsMayBeWrittenInAnyDecimalForm) {
  for (const char* value : {"1", "0.5", ".5", "5.", "007"}) {
    EXPECT_EQ(run({"parse", "--timeout", value}, ad("a")).status, 0) << value;
  }
  EXPECT_EQ(run({"parse", "--max-body", "1"}, ad("a")).status, 0);
}

TEST_F(CommandTest, HelpAndVersionAreThereForEveryCommand) {
  for (const Arguments& command : {Arguments{}, {"parse"}, {"page"}, {"batch"}}) {
    const std::string name = command.empty() ? "tamzo-vast" : command[0];
    Arguments help = command;
    help.emplace_back("--help");
    const Result helped = run(help);
    EXPECT_EQ(helped.status, 0) << name;
    EXPECT_EQ(helped.err, "") << name;
    EXPECT_NE(helped.out.find(name), std::string::npos) << helped.out;
    EXPECT_NE(helped.out.find(command.empty() ? "batch" : "--blocked-categories"),
              std::string::npos)
        << helped.out;
    Arguments version = command;
    version.emplace_back("--version");
    const Result versioned = run(version);
    EXPECT_EQ(versioned.status, 0) << name;
    EXPECT_EQ(versioned.out, "tamzo-vast 8.0.0\n") << name;
  }
}

// ---- page ------------------------------------------------------------------------------------

TEST_F(CommandTest, ThePageIsPrintedExactly) {
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

TEST_F(CommandTest, AnOptionsValueMayEndWithAnEqualsSignOrBeEmpty) {
  const std::string page = file("page.html", "{{VAST_TAG}}");
  const std::string response = "<VAST version='9' id='[TAMZO_SESSION_ID]'/>";
  for (const Arguments& id : {Arguments{"--session-id=QUJD=="}, {"--session-id", "QUJD=="}}) {
    Arguments arguments{"page", "--template", page};
    arguments.insert(arguments.end(), id.begin(), id.end());
    EXPECT_EQ(run(arguments, response).out, "<VAST version='9' id='QUJD=='/>") << id.front();
  }
  const std::string nameless = ad("a", "<Category></Category>");
  EXPECT_EQ(record({"parse"}, nameless).at("errorCode"), 0);
  EXPECT_EQ(record({"parse", "--blocked-categories="}, nameless).at("errorCode"), 205);
  EXPECT_EQ(record({"parse", "--blocked-categories", ""}, nameless).at("errorCode"), 205);
}

TEST_F(CommandTest, WhatFollowsTwoDashesIsNoOption) {
  const fs::path before = fs::current_path();
  fs::current_path(folder_);
  file("-a.xml", ad("a"));
  file("--debug", ad("d"));
  const Result one = run({"parse", "--format", "json", "--", "-a.xml"});
  const Result two = run({"parse", "--", "-a.xml", "--debug"});
  const Result many = run({"batch", "-j", "1", "--", "-a.xml", "--debug"});
  fs::current_path(before);
  EXPECT_EQ(one.status, 0) << one.err;
  EXPECT_EQ(two.status, 2);
  EXPECT_NE(two.err.find("\"--debug\" is one too many"), std::string::npos) << two.err;
  const auto lines = jsonLines(many.out);
  ASSERT_EQ(lines.size(), 2U) << many.err;
  EXPECT_EQ(lines[0].at("record").at("adID"), "a");
  EXPECT_EQ(lines[1].at("record").at("adID"), "d");
}

}  // namespace
}  // namespace tamzo::testing
