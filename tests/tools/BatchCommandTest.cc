// "tamzo-vast batch": many responses, one line of JSON for each.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <regex>
#include <thread>

#include "tests/support/CommandFixture.h"
#include "tests/support/HttpServer.h"
#include "tests/support/RunningCommand.h"
#include "tests/support/Sanitized.h"

namespace tamzo::testing {
namespace {

using BatchCommandTest = CommandTest;

TEST_F(BatchCommandTest, ABatchAnswersEveryLineInItsPlace) {
  const std::string input =
      "\xEF\xBB\xBF" + requestLine(1, ad("a")) + "\n \t\r\n" + "not json\n" + "[1]\n" +
      R"({"id":{"k":[1.5,null]}})" + "\n" + R"({"id":"x","vast":7})" + "\n" +
      "{\"id\":1,\"vast\":\"\xFF\"}\n" + std::string(100'000, '[') + "\n" +
      requestLine(nullptr, "<VAST version='9'/>") + "{\"vast\":\"\\ufeff" + ad("b") + "\"}";
  const Result result = run({"batch", "-j", "3"}, input);
  EXPECT_EQ(result.status, 2);
  const auto lines = jsonLines(result.out);
  ASSERT_EQ(lines.size(), 9U) << result.out;
  const char* ids[] = {"1",    "null", "null", R"({"k":[1.5,null]})", R"("x")", "1",
                       "null", "null", "null"};
  for (std::size_t i = 0; i < lines.size(); ++i) {
    ASSERT_TRUE(lines[i].is_object()) << i;
    EXPECT_EQ(lines[i].begin().key(), "id") << i;
    EXPECT_EQ(lines[i].at("id").dump(), ids[i]) << i;
    const bool isAnswered = i == 0 || i >= 7;
    EXPECT_EQ(lines[i].contains("record"), isAnswered) << i;
    EXPECT_EQ(lines[i].size(), isAnswered ? 2U : 3U) << i;
    EXPECT_TRUE(isAnswered || lines[i].at("error").is_string()) << i;
    // Two blank lines stand behind the first line.
    EXPECT_TRUE(isAnswered || lines[i].at("line") == i + 3) << i;
  }
  EXPECT_EQ(lines[0].at("record").size(), 72U);
  EXPECT_EQ(lines[7].at("record").at("errorCode"), 102);
  EXPECT_EQ(lines[8].at("record").at("adID"), "b");
  EXPECT_TRUE(std::regex_search(result.err, std::regex(R"((^|\n) *2 +0 )"))) << result.err;
  EXPECT_TRUE(std::regex_search(result.err, std::regex(R"((^|\n) *1 +102 )"))) << result.err;
  EXPECT_TRUE(std::regex_search(result.err, std::regex(R"((^|\n) *6 +- )"))) << result.err;
}

TEST_F(BatchCommandTest, ABatchKeepsTheOrderOfManyLines) {
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

TEST_F(BatchCommandTest, ABatchOfVeryManyLinesKeepsTheirOrder) {
  constexpr int kLines = 20'000;
  std::string input;
  for (int i = 0; i < kLines; ++i) {
    input += "{\"id\":" + std::to_string(i) + R"(,"vast":"<VAST/>"})" + "\n";
  }
  const Result result = run({"batch", "-j", "8"}, input);
  EXPECT_EQ(result.status, 1);
  std::istringstream lines(result.out);
  std::string line;
  for (int i = 0; i < kLines; ++i) {
    ASSERT_TRUE(std::getline(lines, line)) << i;
    ASSERT_TRUE(line.starts_with("{\"id\": " + std::to_string(i) + ", \"record\": {")) << i;
  }
  EXPECT_FALSE(std::getline(lines, line));
}

TEST_F(BatchCommandTest, LinesMayBeLongAndTheLastMayHaveNoBreak) {
  std::string input;
  for (int i = 0; i < 2; ++i) {
    input += requestLine(i, ad("a", "<!--" + std::string(5'000'000, 'x') + "-->"));
  }
  input.pop_back();
  const Result result = run({"batch", "-j", "4"}, input);
  EXPECT_EQ(result.status, 0) << result.err;
  const auto lines = jsonLines(result.out);
  ASSERT_EQ(lines.size(), 2U);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    EXPECT_EQ(lines[i].at("id"), i);
    EXPECT_GT(lines[i].at("record").at("vastResponseStr").get<std::string>().size(), 5'000'000U);
  }
}

TEST_F(BatchCommandTest, ABatchTakesFilesAndFolders) {
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

TEST_F(BatchCommandTest, APathIsTakenAsItIsWritten) {
  fs::create_directories(path("[in]"));
  fs::create_directories(path("none"));
  fs::create_symlink(path("gone"), path("[in]/a.xml"));
  file("[in]/b.xml", ad("b"));
  file("[c,d]", ad("c"));
  const fs::path before = fs::current_path();
  fs::current_path(folder_);
  const Result result = run({"batch", "none", "[in]", "-j", "2", "[c,d]", "[]", ""});
  const Result nothing = run({"batch", "none"});
  fs::current_path(before);

  EXPECT_EQ(result.status, 2);
  const auto lines = jsonLines(result.out);
  const std::pair<const char*, bool> expected[] = {{"none", false},      {"[in]/a.xml", false},
                                                   {"[in]/b.xml", true}, {"[c,d]", true},
                                                   {"[]", false},        {"", false}};
  ASSERT_EQ(lines.size(), std::size(expected)) << result.out;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    EXPECT_EQ(lines[i].at("id"), expected[i].first);
    EXPECT_EQ(lines[i].contains("record"), expected[i].second) << expected[i].first;
  }
  EXPECT_EQ(nothing.status, 2) << "a folder without responses";
  EXPECT_EQ(nothing.out, "{\"id\": \"none\", \"error\": \"none: holds no *.xml file\"}\n");
}

TEST_F(BatchCommandTest, ABatchTakesTheOptionsOfParse) {
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

TEST_F(BatchCommandTest, SubFoldersAreEnteredWhenAskedFor) {
  fs::create_directories(path("in/sub"));
  file("in/sub/b.xml", ad("b"));
  const Result not_entered = run({"batch", path("in")});
  EXPECT_EQ(not_entered.status, 2);
  EXPECT_EQ(jsonLines(not_entered.out).at(0).at("id"), path("in"));
  EXPECT_NE(not_entered.err.find("tamzo-vast: " + path("in") +
                                 ": holds no *.xml file; sub-folders not entered (-r enters "
                                 "them): sub\n"),
            std::string::npos)
      << not_entered.err;
  for (const char* option : {"-r", "--recursive", "-rq", "-qr"}) {
    const Result entered = run({"batch", option, path("in")});
    EXPECT_EQ(entered.status, 0) << option << entered.err;
    EXPECT_EQ(jsonLines(entered.out).at(0).at("id"), path("in/sub/b.xml")) << option;
  }
}

TEST_F(BatchCommandTest, FilesOfLinesAreInputsToo) {
  file("a.jsonl",
       requestLine(1, ad("a")) + "\n{\"id\":\"x\",\"vast\":7}\n" + requestLine(2, ad("b")));
  file("b.jsonl", "\xEF\xBB\xBF" + requestLine(3, ad("c")));
  file("c.xml", ad("d"));
  const Result result =
      run({"batch", path("a.jsonl"), path("c.xml"), path("b.jsonl"), path("none.jsonl"), "-"},
          requestLine(4, ad("e")));
  EXPECT_EQ(result.status, 2);
  std::vector<std::string> ids;
  for (const auto& line : jsonLines(result.out)) {
    ids.push_back(line.at("id").dump());
  }
  EXPECT_EQ(ids, (Arguments{"1", "\"x\"", "2", "\"" + path("c.xml") + "\"", "3",
                            "\"" + path("none.jsonl") + "\"", "4"}));
  EXPECT_EQ(jsonLines(result.out).at(1).at("line"), 3);
  EXPECT_NE(result.err.find(path("a.jsonl") + ": line 3: has no text \"vast\"\n"),
            std::string::npos)
      << result.err;
  EXPECT_NE(result.err.find(path("none.jsonl") + ": No such file"), std::string::npos);
}

TEST_F(BatchCommandTest, URLsAreInputsToo) {
  HttpServer server;
  server.serve("/ad", ad("u"));
  const fs::path before = fs::current_path();
  fs::current_path(folder_);
  file("http.xml", ad("f"));
  const Result result = run({"batch", server.url("/ad"), "http.xml", server.url("/none")});
  fs::current_path(before);
  EXPECT_EQ(result.status, 1) << result.err;
  const auto lines = jsonLines(result.out);
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[0].at("id"), server.url("/ad"));
  EXPECT_EQ(lines[0].at("record").at("adID"), "u");
  EXPECT_EQ(lines[1].at("record").at("adID"), "f") << "a file of that name";
  EXPECT_EQ(lines[2].at("record").at("errorCode"), 301);
}

TEST_F(BatchCommandTest, XmlInPlaceOfLinesIsRecognised) {
  const std::string xml = "\xEF\xBB\xBF\n <?xml version='1.0'?>\n" + ad("a") + "\n<!--\n-->\n";
  const Result piped = run({"batch"}, xml);
  EXPECT_EQ(piped.status, 2);
  EXPECT_TRUE(piped.err.starts_with(
      "tamzo-vast: line 2: is XML, not JSON: \"tamzo-vast parse -\" takes a response as it is\n"))
      << piped.err;
  EXPECT_EQ(jsonLines(piped.out).size(), 1U) << "one answer to all of it";
  const Result named = run({"batch", file("a.jsonl", ad("a"))});
  EXPECT_NE(named.err.find("tamzo-vast parse " + path("a.jsonl")), std::string::npos);
  const Result later = run({"batch"}, requestLine(1, ad("a")) + "<VAST/>\n" + requestLine(2, ""));
  EXPECT_EQ(jsonLines(later.out).size(), 3U) << "a broken line among others is just that";
}

TEST_F(BatchCommandTest, ASummaryIsTheTableAlone) {
  const std::string input = requestLine(1, ad("a")) + "x\n" + requestLine(2, "<VAST/>");
  const std::string table = run({"batch"}, input).err;
  const Result summary = run({"batch", "--summary"}, input);
  EXPECT_EQ(summary.status, 2);
  EXPECT_TRUE(summary.out.starts_with("responses")) << summary.out;
  EXPECT_EQ(summary.err + summary.out, table);
  EXPECT_EQ(run({"batch", "--summary", "-q", "-o", path("out")}, input).out, "");
  EXPECT_EQ(contentOf(path("out")), summary.out);
}

TEST_F(BatchCommandTest, AQuietRunHasNoTable) {
  const std::string good = requestLine(1, ad("a"));
  for (const char* option : {"-q", "--quiet", "-qj2"}) {
    const Result result = run({"batch", option}, good);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "") << option;
    EXPECT_EQ(result.out, run({"batch"}, good).out);
  }
  EXPECT_TRUE(run({"batch", "-q"}, "x\n").err.starts_with("tamzo-vast: line 1: is not JSON"));
}

TEST_F(BatchCommandTest, TheResponsesTextMayBeLeftOut) {
  const std::string wrapper =
      "<VAST version='2.0'><Ad><Wrapper><VASTAdTagURI>http://127.0.0.1:1/</VASTAdTagURI>"
      "</Wrapper></Ad></VAST>";
  const std::string input =
      requestLine(1, ad("a")) + requestLine(2, wrapper) + requestLine(3, "no markup");
  const auto whole = jsonLines(run({"batch"}, input).out);
  auto lines = jsonLines(run({"batch", "--without-response"}, input).out);
  ASSERT_EQ(lines.size(), 3U);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    ordered_json expected = whole[i];
    expected["record"]["vastResponseStr"] = nullptr;
    if (i != 1) {
      expected["record"]["vastTagURI"] = nullptr;
    }
    EXPECT_EQ(lines[i].dump(), expected.dump()) << i;
  }
  EXPECT_EQ(lines[1].at("record").at("vastTagURI"), "http://127.0.0.1:1/") << "a URL stays";
}

TEST_F(BatchCommandTest, WithoutOrderEveryLineIsAnsweredAllTheSame) {
  std::string input;
  for (int i = 0; i < 300; ++i) {
    input += requestLine(i, ad("a"));
  }
  const Result result = run({"batch", "--unordered", "-j", "4"}, input);
  EXPECT_EQ(result.status, 0);
  std::vector<int> ids;
  for (const auto& line : jsonLines(result.out)) {
    ids.push_back(line.at("id"));
  }
  std::sort(ids.begin(), ids.end());
  ASSERT_EQ(ids.size(), 300U);
  for (int i = 0; i < 300; ++i) {
    EXPECT_EQ(ids[static_cast<std::size_t>(i)], i);
  }
}

TEST_F(BatchCommandTest, ASlowURLHoldsUpNoOtherResponse) {
  HttpServer server;
  std::atomic<bool> mayGoOn{false};
  server.on("/slow", [&](const Exchange& exchange) {
    while (!mayGoOn && !server.isClosing()) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    exchange.respond(ad("slow"));
  });
  RunningCommand batch({"batch", "--unordered", "-j", "2", "--timeout", "900"}, {});
  batch.write(requestLine("slow", server.url("/slow")));
  for (int i = 0; i < 500; ++i) {
    batch.write(requestLine(i, ad("a")));
    const auto line = batch.readLine();
    ASSERT_TRUE(line) << i;
    ASSERT_EQ(ordered_json::parse(*line).at("id"), i);
  }
  mayGoOn = true;
  EXPECT_EQ(ordered_json::parse(batch.readLine().value_or("{}")).value("id", ""), "slow");
}

// ---- While it runs -----------------------------------------------------------------------------

using Streams = RunningCommand::Streams;

TEST_F(BatchCommandTest, AnAnswerComesBeforeTheNextLineIsAskedFor) {
  for (const char* threads : {"1", "2", "4"}) {
    RunningCommand batch({"batch", "-j", threads}, {});
    for (int i = 0; i < 100; ++i) {
      batch.write(requestLine(i, ad("a")));
      const auto line = batch.readLine();
      ASSERT_TRUE(line) << threads << " threads, line " << i;
      ASSERT_EQ(ordered_json::parse(*line).at("id"), i);
    }
    for (int round = 0; round < 20; ++round) {  // and so do those to several lines
      std::string lines;
      for (int i = 0; i < 30; ++i) {
        lines += requestLine(i, ad("a"));
      }
      batch.write(lines);
      for (int i = 0; i < 30; ++i) {
        const auto line = batch.readLine();
        ASSERT_TRUE(line) << threads << " threads, round " << round << ", line " << i;
        ASSERT_EQ(ordered_json::parse(*line).at("id"), i);
      }
    }
    batch.closeInput();
    EXPECT_EQ(batch.wait(), 0) << threads;
  }
}

TEST_F(BatchCommandTest, AFailedOutputEndsARunWhoseInputIsIdle) {
  const auto ignorePipes = [] { std::signal(SIGPIPE, SIG_IGN); };
  const struct {
    const char* name;
    Streams streams;
    int status;
    std::string message;
  } rows[] = {
      {"closed", {"", "", path("err"), ignorePipes}, 2, "standard output: Broken pipe"},
      {"closed, of which nobody wants to hear", {"", "", path("err")}, 128 + SIGPIPE, ""},
      {"full", {"", "/dev/full", path("err")}, 2, "standard output: No space left on device"},
  };
  for (const auto& row : rows) {
    for (const char* threads : {"1", "4"}) {
      RunningCommand batch({"batch", "-j", threads}, row.streams);
      batch.closeOutput();
      batch.write(requestLine(1, ad("a")));
      EXPECT_EQ(batch.wait(), row.status) << row.name << ", " << threads;
      const std::string message = row.message.empty() ? "" : "tamzo-vast: " + row.message + "\n";
      EXPECT_EQ(contentOf(path("err")), message) << row.name << ", " << threads;
    }
  }
}

TEST_F(BatchCommandTest, StandardErrorMayBeClosedOrFull) {
  std::string input;
  for (int i = 0; i < 50; ++i) {
    input += requestLine(i, ad("a"));
  }
  const std::string output = run({"batch"}, input).out;
  const auto closed = [] { close(STDERR_FILENO); };
  const auto broken = [] {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) == 0) {
      dup2(ends[1], STDERR_FILENO);
      close(ends[0]);
      close(ends[1]);
    }
  };
  file("in", input);
  file("bad", input + "no JSON\n");
  const Streams good[] = {{path("in"), path("out"), "/dev/full"},
                          {path("in"), path("out"), "/dev/null", closed},
                          {path("in"), path("out"), "/dev/null", broken}};
  for (Streams streams : good) {
    EXPECT_EQ(RunningCommand({"batch"}, streams).wait(), 0);
    EXPECT_EQ(contentOf(path("out")), output);
    EXPECT_EQ(RunningCommand({"batch", "-o", path("file")}, streams).wait(), 0);
    EXPECT_EQ(contentOf(path("file")), output) << "with nothing of standard error in it";
    EXPECT_EQ(RunningCommand({"batch", "--debug"}, streams).wait(), 0);
    EXPECT_EQ(contentOf(path("out")), output);
    streams.inputFile = path("bad");
    EXPECT_EQ(RunningCommand({"batch"}, streams).wait(), 2);
    EXPECT_TRUE(contentOf(path("out")).starts_with(output));
  }
}

TEST_F(BatchCommandTest, AClosedStandardInputIsNoFile) {
  const Streams streams{"", path("out"), path("err"), [] { close(STDIN_FILENO); }};
  EXPECT_EQ(RunningCommand({"batch", "-o", path("file")}, streams).wait(), 2);
  EXPECT_EQ(contentOf(path("file")),
            "{\"id\": null, \"error\": \"standard input cannot be read\"}\n");
}

#ifndef TAMZO_SANITIZED  // sanitizers need what these tests take away: memory, stack, descriptors
TEST_F(BatchCommandTest, ItRunsOnTheThreadsThatThereAre) {
  std::string input;
  for (int i = 0; i < 50; ++i) {
    input += requestLine(i, ad("a"));
  }
  file("in", input);
  // A thread's stack is as large as this limit says, for which there is no room.
  const auto limit = [] {
    constexpr rlim_t kTooLarge = rlim_t{1} << (sizeof(void*) * 8 - 17);
    const rlimit stack{kTooLarge, RLIM_INFINITY};
    setrlimit(RLIMIT_STACK, &stack);
  };
  const Streams streams{path("in"), path("out"), path("err"), limit};
  EXPECT_EQ(RunningCommand({"batch", "-j", "8"}, streams).wait(), 0) << contentOf(path("err"));
  EXPECT_EQ(contentOf(path("out")), run({"batch", "-j", "8"}, input).out);
}

TEST_F(BatchCommandTest, ALineTooLongForMemoryIsOneThatFails) {
  constexpr rlim_t kMemory = rlim_t{192} << 20U;
  fs::resize_file(file("in", requestLine(1, ad("a"))), kMemory);
  std::ofstream(path("in"), std::ios::app) << "\n" << requestLine(3, ad("a"));
  const auto limit = [] {
    const rlimit memory{kMemory, kMemory};
    setrlimit(RLIMIT_AS, &memory);
  };
  for (const char* threads : {"1", "4"}) {
    const Streams streams{path("in"), path("out"), path("err"), limit};
    EXPECT_EQ(RunningCommand({"batch", "-j", threads}, streams).wait(), 2);
    EXPECT_TRUE(contentOf(path("err")).starts_with("tamzo-vast: line 2: out of memory\n"))
        << contentOf(path("err"));
    const auto lines = jsonLines(contentOf(path("out")));
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[1].at("error"), "out of memory");
    EXPECT_EQ(lines[2].at("id"), 3);
  }
}

TEST_F(BatchCommandTest, AnswersThatNobodyReadsYetStayWithinTheLimitOfData) {
  constexpr int kLines = 30'000;
  std::string input;
  for (int i = 0; i < kLines; ++i) {
    input += requestLine(i, ad("a"));
  }
  const auto limit = [] {
    constexpr rlim_t kMemory = rlim_t{16} << 20U;
    const rlimit memory{kMemory, kMemory};
    setrlimit(RLIMIT_DATA, &memory);
  };
  RunningCommand batch({"batch", "-q", "-j", "2"}, {file("in", input), "", path("err"), limit});
  std::this_thread::sleep_for(std::chrono::seconds(1));  // more answers than there is memory for
  const std::string answers = batch.readAll();
  EXPECT_EQ(batch.wait(), 0);
  EXPECT_EQ(std::count(answers.begin(), answers.end(), '\n'), kLines);
  EXPECT_EQ(contentOf(path("err")), "");
}

TEST_F(BatchCommandTest, AFileThatMayNotGrowIsAnOutputThatCannotBeWritten) {
  const auto limit = [] {
    const rlimit size{1000, 1000};
    setrlimit(RLIMIT_FSIZE, &size);
  };
  const Streams streams{file("in", requestLine(1, ad("a"))), "", path("err"), limit};
  EXPECT_EQ(RunningCommand({"batch", "-o", path("file")}, streams).wait(), 2);
  EXPECT_EQ(contentOf(path("err")), "tamzo-vast: " + path("file") + ": File too large\n");
}

TEST_F(BatchCommandTest, WhereDescriptorsRunOutTheFileIsRefusedAndTheNextOneRead) {
  const auto leaveFive = [] {
    for (int inherited = 3; inherited < 64; ++inherited) {
      close(inherited);
    }
    const rlimit five{5, 5};
    setrlimit(RLIMIT_NOFILE, &five);
  };
  const std::string lines = file("a.jsonl", requestLine(1, ad("a")));
  RunningCommand batch({"batch", "-j", "1", lines, file("b.xml", ad("b"))},
                       {"", "", "/dev/null", leaveFive});
  const auto answers = jsonLines(batch.readAll());
  EXPECT_EQ(batch.wait(), 2);
  ASSERT_EQ(answers.size(), 2U);
  EXPECT_EQ(answers[0]["error"], lines + ": Too many open files");
  EXPECT_EQ(answers[1]["record"]["adID"], "b");
}

#endif

TEST_F(BatchCommandTest, ASignalLeavesNoHalfOfALine) {
  const std::string line = requestLine(1, ad("a", "<!--" + std::string(1'000'000, 'x') + "-->"));
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    RunningCommand batch({"batch", "-j", "2"}, {});
    batch.write(line);
    // More than a pipe holds, so that the command waits in the middle of the line.
    std::array<char, 1> first{};
    ASSERT_EQ(read(batch.output(), first.data(), first.size()), 1);
    batch.signal(signal);
    EXPECT_EQ(batch.wait(200), -1) << "ends when the line is out";
    const std::string rest = batch.readAll();
    EXPECT_EQ(batch.wait(), 128 + signal);
    EXPECT_TRUE(ordered_json::accept(first[0] + rest));
    EXPECT_EQ(rest.back(), '\n');
  }
}

TEST_F(BatchCommandTest, ASecondSignalIsNotPutOff) {
  RunningCommand batch({"batch", "-j", "2"}, {});
  batch.write(requestLine(1, ad("a", "<!--" + std::string(1'000'000, 'x') + "-->")));
  std::array<char, 1> first{};
  ASSERT_EQ(read(batch.output(), first.data(), first.size()), 1);
  batch.signal(SIGINT);
  EXPECT_EQ(batch.wait(200), -1);
  batch.signal(SIGINT);
  EXPECT_EQ(batch.wait(), 128 + SIGINT);
}

TEST_F(BatchCommandTest, ASignalEndsAnIdleRun) {
#ifdef TAMZO_SANITIZED  // the thread sanitizer puts a signal off while the main thread waits for
                        // another
  const std::vector<const char*> manyThreads{"1"};
#else
  const std::vector<const char*> manyThreads{"1", "4"};
#endif
  for (const char* threads : manyThreads) {
    RunningCommand batch({"batch", "-j", threads}, {});
    batch.write(requestLine(1, ad("a")));
    ASSERT_TRUE(batch.readLine());
    batch.signal(SIGTERM);
    EXPECT_EQ(batch.wait(), 128 + SIGTERM) << threads;
  }
  RunningCommand patient({"batch"}, {"", "", "/dev/null", [] { std::signal(SIGHUP, SIG_IGN); }});
  patient.write(requestLine(1, ad("a")));
  ASSERT_TRUE(patient.readLine());
  patient.signal(SIGHUP);
  patient.write(requestLine(2, ad("a")));
  EXPECT_TRUE(patient.readLine()) << "what was ignored is still ignored";
}

TEST_F(BatchCommandTest, AnOutputThatDoesNotWaitIsWaitedFor) {
  RunningCommand batch({"batch"}, {"", "", "/dev/null", [] {
                                     fcntl(STDOUT_FILENO, F_SETFL,
                                           fcntl(STDOUT_FILENO, F_GETFL) | O_NONBLOCK);
                                   }});
  batch.write(requestLine(1, ad("a", "<!--" + std::string(1'000'000, 'x') + "-->")));
  batch.closeInput();
  EXPECT_EQ(batch.wait(200), -1);
  EXPECT_TRUE(ordered_json::accept(batch.readAll()));
  EXPECT_EQ(batch.wait(), 0);
}

TEST_F(BatchCommandTest, AnUnreadableLineKeepsItsId) {
  const std::string input =
      std::string(R"({"id":"a","vast":"b"})") + '\0' + "\n" + R"({"id":1e999,"vast":"})" + "\n";
  const Result result = run({"batch"}, input);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out,
            "{\"id\": \"a\", \"line\": 1, \"error\": \"holds a NUL character at byte 22\"}\n"
            "{\"id\": 1e999, \"line\": 2, \"error\": "
            "\"is not JSON: a string does not end at byte 22\"}\n");
  EXPECT_NE(result.err.find("line 2: is not JSON: a string"), std::string::npos) << result.err;
}

}  // namespace
}  // namespace tamzo::testing
