// The command as a person or a script runs it.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>
#include <thread>

#include "tests/support/HttpServer.h"

namespace tamzo::testing {
namespace {

namespace fs = std::filesystem;
using nlohmann::ordered_json;
using Arguments = std::vector<std::string>;

struct Result {
  int status;
  std::string out;
  std::string err;
};

class CommandTest : public ::testing::Test {
 protected:
  CommandTest() {
    std::string name = (fs::temp_directory_path() / "tamzo-vast-XXXXXX").string();
    folder_ = mkdtemp(name.data());
  }
  ~CommandTest() override {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

  std::string path(const std::string& name) const { return (folder_ / name).string(); }

  std::string file(const std::string& name, const std::string& content) const {
    std::ofstream(path(name), std::ios::binary) << content;
    return path(name);
  }

  static std::string contentOf(const std::string& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
  }

  Result run(const Arguments& arguments, const std::string& input = "") const {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    const std::string in = file("stdin", input);
    posix_spawn_file_actions_addopen(&actions, 0, in.c_str(), O_RDONLY, 0);
    const int kWrite = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_addopen(&actions, 1, path("stdout").c_str(), kWrite, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, path("stderr").c_str(), kWrite, 0600);
    Arguments all = arguments;
    all.insert(all.begin(), TAMZO_COMMAND);
    std::vector<char*> pointers;
    for (std::string& argument : all) {
      pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    pid_t child = 0;
    const int failed =
        posix_spawn(&child, TAMZO_COMMAND, &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    if (failed != 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
      return {-1, "", "the command did not run, or did not exit"};
    }
    return {WEXITSTATUS(status), contentOf(path("stdout")), contentOf(path("stderr"))};
  }

  ordered_json record(Arguments arguments, const std::string& input = "") const {
    arguments.insert(arguments.begin() + 1, {"--format", "json"});
    return ordered_json::parse(run(arguments, input).out, nullptr, false);
  }

  fs::path folder_;
};

// A playable ad; `more` goes into its InLine element.
std::string ad(const std::string& id, const std::string& more = "") {
  return "<VAST version='4.0'><Ad id='" + id + "'><InLine>" + more +
         "<Creatives><Creative><Linear><MediaFiles><MediaFile type='video/mp4'>u</MediaFile>"
         "</MediaFiles></Linear></Creative></Creatives></InLine></Ad></VAST>";
}

std::string requestLine(const ordered_json& id, const std::string& vast) {
  return ordered_json({{"id", id}, {"vast", vast}}).dump() + "\n";
}

std::vector<ordered_json> jsonLines(const std::string& text) {
  std::vector<ordered_json> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(ordered_json::parse(line, nullptr, false));
  }
  return lines;
}

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

// ---- batch -----------------------------------------------------------------------------------

TEST_F(CommandTest, ABatchAnswersEveryLineInItsPlace) {
  const std::string input =
      "\xEF\xBB\xBF" + requestLine(1, ad("a")) + "\n \t\r\n" + "not json\n" + "[1]\n" +
      R"({"id":{"k":[1.5,null]}})" + "\n" + R"({"id":"x","vast":7})" + "\n" +
      "{\"id\":1,\"vast\":\"\xFF\"}\n" + std::string(100'000, '[') + "\n" +
      requestLine(nullptr, "<VAST version='9'/>") + "{\"vast\":\"\\ufeff" + ad("b") + "\"}";
  const Result result = run({"batch", "-j", "3"}, input);
  EXPECT_EQ(result.status, 2);
  const auto lines = jsonLines(result.out);
  ASSERT_EQ(lines.size(), 9U) << result.out;
  const char* ids[] = {"1",    "null", "null", R"({"k":[1.5,null]})", R"("x")", "null",
                       "null", "null", "null"};
  for (std::size_t i = 0; i < lines.size(); ++i) {
    ASSERT_TRUE(lines[i].is_object()) << i;
    EXPECT_EQ(lines[i].size(), 2U) << i;
    EXPECT_EQ(lines[i].begin().key(), "id") << i;
    EXPECT_EQ(lines[i].at("id").dump(), ids[i]) << i;
    const bool isAnswered = i == 0 || i >= 7;
    EXPECT_EQ(lines[i].contains("record"), isAnswered) << i;
    EXPECT_TRUE(isAnswered || lines[i].at("error").is_string()) << i;
  }
  EXPECT_EQ(lines[0].at("record").size(), 72U);
  EXPECT_EQ(lines[7].at("record").at("errorCode"), 102);
  EXPECT_EQ(lines[8].at("record").at("adID"), "b");
  EXPECT_TRUE(std::regex_search(result.err, std::regex(R"((^|\n) *2 +0 )"))) << result.err;
  EXPECT_TRUE(std::regex_search(result.err, std::regex(R"((^|\n) *1 +102 )"))) << result.err;
  EXPECT_TRUE(std::regex_search(result.err, std::regex(R"((^|\n) *6 +- )"))) << result.err;
}

TEST_F(CommandTest, ABatchKeepsTheOrderOfManyLines) {
  std::string input;
  for (int i = 0; i < 2000; ++i) {
    input += requestLine(
        i, i % 7 == 0
               ? "<VAST/>"
               : ad(std::to_string(i), std::string(static_cast<std::size_t>(i * 37 % 5000), ' ')));
  }
  const Result one = run({"batch", "-j", "1"}, input);
  EXPECT_EQ(one.status, 1);
  const auto lines = jsonLines(one.out);
  ASSERT_EQ(lines.size(), 2000U);
  for (int i = 0; i < 2000; ++i) {
    ASSERT_EQ(lines[static_cast<std::size_t>(i)].at("id"), i);
  }
  for (const Arguments& arguments : {Arguments{"batch"}, {"batch", "-j", "8"}}) {
    const Result many = run(arguments, input);
    EXPECT_EQ(many.out, one.out);
    EXPECT_EQ(many.err, one.err);
  }
}

TEST_F(CommandTest, ABatchTakesFilesAndFolders) {
  fs::create_directories(path("in/folder.xml"));
  for (const char* name : {"in/b.xml", "in/a.xml", "in/c.txt", "in/folder.xml/d.xml", "z.txt"}) {
    file(name, ad(name));
  }
  const Result result =
      run({"batch", path("z.txt"), path("in"), path("none.xml"), path("in/b.xml")});
  EXPECT_EQ(result.status, 2);
  const auto lines = jsonLines(result.out);
  const char* names[] = {"z.txt", "in/a.xml", "in/b.xml", "none.xml", "in/b.xml"};
  ASSERT_EQ(lines.size(), std::size(names)) << result.out;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    EXPECT_EQ(lines[i].at("id"), path(names[i]));
    EXPECT_EQ(lines[i].contains("error"), i == 3) << names[i];
  }
  EXPECT_EQ(lines[1].at("record").at("adID"), "in/a.xml");
  EXPECT_NE(result.err.find("none.xml"), std::string::npos);
}

TEST_F(CommandTest, ABatchTakesTheOptionsOfParse) {
  const std::string response = file("a.xml", ad("a", "<Category>IAB26</Category>"));
  const Result result = run({"batch", "--blocked-categories", "IAB26", "-o", path("out"), "--debug",
                             "--timeout", "1", "--max-body", "9", response});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(jsonLines(contentOf(path("out"))).at(0).at("record").at("errorCode"), 205);
  EXPECT_NE(result.err.find("[TAMZO-LOG][v8.0.0 p0] Vast Ad Category is blocked\n"),
            std::string::npos);
  const Result nothing = run({"batch"}, "\n\n");
  EXPECT_EQ(nothing.status, 0);
  EXPECT_EQ(nothing.out, "");
}

}  // namespace
}  // namespace tamzo::testing
