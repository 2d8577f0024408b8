// How the command takes its arguments, as a person or a script gives them.

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/CommandFixture.h"
#include "tests/support/RunningCommand.h"

namespace tamzo::testing {
namespace {

using MainTest = CommandTest;

long countLines(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }

TEST_F(MainTest, WrongUsageIsOneLineAndStatus2) {
  const std::string good = file("good.xml", ad("a"));
  file("bad.xml", "<VAST>\xFF</VAST>");
  fs::create_directory(path("folder"));
  fs::create_symlink(path("loop"), path("loop"));
  struct Row {
    Arguments arguments;
    std::string named;  // what the line must name
  };
  std::vector<Row> rows = {
      {{}, "a command is missing; take parse, page or batch (see tamzo-vast --help)"},
      {{"nonsense"}, "there is no command \"nonsense\""},
      {{"nonsense", "parse"}, "\"nonsense\""},
      {{"--nonsense", "parse"}, "unknown option --nonsense"},
      {{"--", "parse"}, "a command is missing"},
      {{"parse", "--nonsense"}, "--nonsense"},
      {{"page", "--format", "json", good}, "--format"},
      {{"batch", "--format", "json", good}, "--format"},
      {{"parse", good, good}, "one input at a time"},
      {{"page", "--", good, good}, "one input at a time"},
      {{"parse", good, good, "--nonsense"}, "unknown option --nonsense"},
      {{"parse", "--nonsense", "--", good}, "unknown option --nonsense"},
      {{"parse", "--timeout", "1", "--timeout", "2", good},
       "--timeout: is given more than once (see tamzo-vast parse --help)"},
      {{"parse", "--timeout"}, "--timeout: takes SECONDS, which is missing (see"},
      {{"parse", "--total-timeout", "0", good}, "--total-timeout"},
      {{"parse", "--header", "no colon", good}, "--header"},
      {{"parse", "--header", "X-A: b\r\nX-C: d", good}, "X-A"},
      {{"parse", "--header", "Host: other", good}, "Host"},
      {{"parse", "--user-agent", "a\nb", good}, "user agent"},
      {{"parse", "--proxy", "", good}, "--proxy"},
      {{"parse", "--public-only", "--proxy", "http://p.example", good}, "proxy"},
      {{"parse", "--ca", path("none.pem"), good}, "none.pem"},
      {{"parse", "--ca", path("folder"), good}, "folder"},
      {{"parse", path("none.xml")}, "none.xml"},
      {{"parse", path("folder")}, "folder"},
      {{"parse", good + "/x"}, "good.xml/x"},
      {{"parse", path("loop")}, "loop"},
      {{"parse", path("bad.xml")}, "bad.xml: is not UTF-8"},
      {{"parse", path("line\nbreak\x1B.xml")}, "line\\u000abreak\\u001b"},
      {{"parse", "--format", "yaml", good}, "yaml"},
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

TEST_F(MainTest, WhatWasMeantIsGuessed) {
  const std::string good = file("good.xml", ad("a"));
  const std::pair<Arguments, std::string> rows[] = {
      {{"pasre", good}, "did you mean parse? (see tamzo-vast --help)"},
      {{good}, "did you mean tamzo-vast parse " + good + "?"},
      {{"https://a.example/"}, "did you mean tamzo-vast parse https://a.example/?"},
      {{"parse", "--formt", "json"}, "did you mean --format? (see tamzo-vast parse --help)"},
      {{"parse", "--formt=json"}, "unknown option --formt; did you mean --format?"},
      {{"batch", "--unorderd"}, "did you mean --unordered? (see tamzo-vast batch --help)"},
      {{"page", "--frob"}, "unknown option --frob (see tamzo-vast page --help)"},
      {{"parse", "--format", "jsno"}, "text, json or html, not \"jsno\"; did you mean json? (see"},
      {{"parse", "--color", "sometimes"}, "auto, always or never, not \"sometimes\" (see"},
      {{"batch", "-j", "0"}, "(see tamzo-vast batch --help)"},
      {{"--verison"}, "did you mean --version? (see tamzo-vast --help)"},
  };
  for (const auto& [arguments, hint] : rows) {
    const Result result = run(arguments);
    EXPECT_EQ(result.status, 2) << hint;
    EXPECT_EQ(countLines(result.err), 1) << result.err;
    EXPECT_NE(result.err.find(hint), std::string::npos) << result.err;
  }
}

TEST_F(MainTest, OptionsMayBeGlued) {
  const std::string good = file("good.xml", ad("a"));
  const std::string report = run({"parse", good}).out;
  for (const Arguments& glued : {Arguments{"-o" + path("out")}, {"-o", path("out")}}) {
    Arguments arguments{"parse", good};
    arguments.insert(arguments.end(), glued.begin(), glued.end());
    EXPECT_EQ(run(arguments).status, 0) << glued.front();
    EXPECT_EQ(contentOf(path("out")), report) << glued.front();
    fs::remove(path("out"));
  }
  EXPECT_EQ(run({"batch", "-rqj2", "-o" + path("out"), good}).status, 0);
  EXPECT_EQ(jsonLines(contentOf(path("out"))).size(), 1U);
}

TEST_F(MainTest, HelpAndVersionMayNotGetThrough) {
  for (const Arguments& arguments :
       {Arguments{"--help"}, {"--version"}, {"batch", "--help"}, {"parse", "--version"}}) {
    RunningCommand command(arguments, {"", "/dev/full", path("err")});
    EXPECT_EQ(command.wait(), 2);
    EXPECT_EQ(contentOf(path("err")), "tamzo-vast: standard output: No space left on device\n");
  }
}

TEST_F(MainTest, EachHelpHasExamplesAndExitStatuses) {
  for (const Arguments& command : {Arguments{}, {"parse"}, {"page"}, {"batch"}}) {
    Arguments help = command;
    help.emplace_back("-h");
    const std::string text = run(help).out;
    EXPECT_NE(text.find("\nExamples:\n  "), std::string::npos) << text;
    EXPECT_NE(text.find("\nExit status:\n  0  "), std::string::npos) << text;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
      EXPECT_LE(line.size(), 80U) << line;
    }
  }
}

TEST_F(MainTest, HelpAndVersionAreThereForEveryCommand) {
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

TEST_F(MainTest, AnOptionsValueMayEndWithAnEqualsSignOrBeEmpty) {
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

TEST_F(MainTest, WhatFollowsTwoDashesIsNoOption) {
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
