// What a person at a terminal sees of the command.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <thread>

#include "base/Utf8.h"
#include "tests/support/CommandFixture.h"
#include "tests/support/HttpServer.h"
#include "tests/support/RunningCommand.h"
#include "tools/Printable.h"

namespace tamzo::testing {
namespace {

using Streams = RunningCommand::Streams;
using Variables = std::vector<std::pair<const char*, const char*>>;

// Everything that may not reach a terminal as it is, in one text.
constexpr const char* kHostile =
    "\x1b[2J\x07\x7F\xC2\x9B\xC2\x85\xE2\x80\xAE\xE2\x81\xA6\xE2\x80\x8B\xE2\x80\x8F\xE2\x80\xA8"
    "\xE2\x80\xA9\xEF\xBB\xBF\xC2\xAD\xD8\x9C\xF3\xA0\x81\x81\xEF\xB8\x8F";
// That of it which XML can hold.
constexpr const char* kHostileXml =
    "\x7F\xC2\x9B\xC2\x85\xE2\x80\xAE\xE2\x81\xA6\xE2\x80\x8B\xE2\x80\x8F\xE2\x80\xA8"
    "\xE2\x80\xA9\xEF\xBB\xBF\xC2\xAD\xD8\x9C\xF3\xA0\x81\x81\xEF\xB8\x8F&#13;";

class TerminalTest : public CommandTest {
 protected:
  static void setVariables(const Variables& variables) {
    for (const char* name : {"NO_COLOR", "CLICOLOR_FORCE", "COLUMNS"}) {
      unsetenv(name);
    }
    setenv("TERM", "xterm", 1);
    for (const auto& [name, value] : variables) {
      setenv(name, value, 1);
    }
  }

  static Streams on(const std::string& which, const Variables& variables = {},
                    unsigned short columns = 80) {
    Streams streams;
    streams.onTerminal = which;
    streams.columns = columns;
    streams.inputFile = "/dev/null";
    streams.inChild = [variables] { setVariables(variables); };
    return streams;
  }

  // What comes to the terminal of a command that ends by itself.
  static std::string shown(const Arguments& arguments, const Streams& streams) {
    RunningCommand command(arguments, streams);
    std::string text = command.readTerminal();
    EXPECT_NE(command.wait(), -1);
    return text;
  }

  // The same with the input from a file and everything else on the terminal.
  std::string shownOf(const Arguments& arguments, const std::string& input) const {
    Streams streams = on("oe");
    streams.inputFile = file("input", input);
    return shown(arguments, streams);
  }
};

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

// What stands on the screen at the end, and each line that an answer or a message made. Fails for
// what a line is overwritten by, save for another state of itself.
std::vector<std::string> screenOf(const std::string& bytes) {
  std::vector<std::string> lines{""};
  for (std::size_t at = 0; at < bytes.size();) {
    const std::string_view rest = std::string_view(bytes).substr(at);
    if (rest.starts_with("\r\x1b[K")) {
      lines.back().clear();
      at += 4;
    } else if (rest.front() == '\n') {
      lines.emplace_back();
      ++at;
    } else {
      EXPECT_NE(rest.front(), '\r');
      EXPECT_NE(rest.front(), '\x1b') << "another sequence";
      lines.back() += rest.front();
      ++at;
    }
  }
  return lines;
}

// Without the sequences that the command itself writes for colours.
std::string withoutColours(std::string text) {
  for (std::size_t at = 0; (at = text.find("\x1b[", at)) != std::string::npos;) {
    const std::size_t end = text.find_first_not_of("0123456789;", at + 2);
    const bool isColour = end != std::string::npos && text[end] == 'm';
    EXPECT_TRUE(isColour) << "another sequence";
    text.erase(at, isColour ? end + 1 - at : 1);
  }
  return text;
}

void expectHarmless(const std::string& shown, const std::string& what) {
  for (const std::string& line : linesOf(withoutColours(shown))) {
    EXPECT_EQ(command::shownOnTerminal(line), line) << what;
  }
}

TEST_F(TerminalTest, NothingHostileReachesIt) {
  const std::string evil = kHostileXml;
  std::string response =
      ad(evil, "<Impression>" + evil + "</Impression><Category>" + evil + "</Category>");
  response.replace(
      response.find("<Linear>"), 8,
      "<Linear><Icons><Icon program='" + evil + "'/></Icons><Duration>" + evil + "</Duration>");
  for (const Arguments& arguments : {Arguments{"parse"},
                                     {"parse", "--format", "json"},
                                     {"parse", "--format", "html"},
                                     {"parse", "--debug"},
                                     {"page"}}) {
    const std::string text = shownOf(arguments, response);
    EXPECT_NE(text.find("\\u202e"), std::string::npos) << arguments.back();
    expectHarmless(text, arguments.back());
  }
  const std::string lines = requestLine(kHostile, response) + "{\"id\":\"" + evil +
                            "\",\"x\":\"\xFF\"}\n{\"vast\":\"" + evil + "\",\"id\":1\n";
  for (const Arguments& arguments : {Arguments{"batch"}, {"batch", "--debug", "-j", "1"}}) {
    const std::string text = shownOf(arguments, lines);
    EXPECT_NE(text.find("\\u202e"), std::string::npos);
    std::string written;
    for (const std::string& line : screenOf(text)) {
      written += line + "\n";
    }
    expectHarmless(written, "batch");
  }
}

TEST_F(TerminalTest, NorDoesAHostileNameOrURL) {
  const std::string evil = std::string("x") + kHostile + "\xFF";
  for (const Arguments& arguments :
       {Arguments{"parse", evil},
        {"parse", "--debug", "http://127.0.0.1:1/" + std::string(kHostile)},
        {"parse", "http://" + evil},
        {"parse", "--" + evil},
        {evil},
        {"parse", "--format", evil},
        {"parse", "-o", evil + "/x", file("a.xml", ad("a"))}}) {
    const std::string text = shown(arguments, on("oe"));
    EXPECT_NE(text.find("\\u202e"), std::string::npos) << text;
    expectHarmless(text, arguments.front());
  }
  fs::create_directories(path(evil) + "/" + evil);
  file(evil + "/a\n" + evil + ".xml", "\xFF");
  for (const Arguments& arguments :
       {Arguments{"batch", path(evil)}, {"batch", path(evil) + "/" + evil}}) {
    std::string written;
    for (const std::string& line : screenOf(shown(arguments, on("oe")))) {
      written += line + "\n";
    }
    expectHarmless(written, "batch");
  }
}

TEST_F(TerminalTest, APipeGetsWhatIsThere) {
  const std::string evil = kHostileXml;
  Streams streams = on("e");
  streams.inputFile = file("input", ad(evil));
  RunningCommand parse({"parse", "--format", "json"}, streams);
  EXPECT_NE(parse.readAll().find("\xE2\x80\xAE\xE2\x81\xA6\xE2\x80\x8B"), std::string::npos);
  RunningCommand page({"page", "--template", file("page", "{{VAST_TAG}}")}, streams);
  EXPECT_NE(page.readAll().find("\xE2\x80\xAE\xE2\x81\xA6\xE2\x80\x8B"), std::string::npos);
}

TEST_F(TerminalTest, ALogLineCannotLookLikeAnother) {
  const std::string text = shownOf({"parse", "--debug"}, "<VAST version='4\n[TAMZO-LOG] x'/>");
  for (const std::string& line : linesOf(text)) {
    EXPECT_FALSE(line.starts_with("[TAMZO-LOG] x"));
  }
}

TEST_F(TerminalTest, ColoursAreAChoice) {
  const std::string input = file("a.xml", ad("a"));
  const struct {
    const char* name;
    const char* terminal;
    Variables variables;
    const char* option;
    bool areShown;
  } rows[] = {
      {"a terminal", "o", {}, "", true},
      {"no terminal", "e", {}, "", false},
      {"NO_COLOR", "o", {{"NO_COLOR", "1"}}, "", false},
      {"NO_COLOR set to nothing", "o", {{"NO_COLOR", ""}}, "", true},
      {"a dumb terminal", "o", {{"TERM", "dumb"}}, "", false},
      {"forced", "e", {{"CLICOLOR_FORCE", "1"}}, "", true},
      {"forced on a dumb terminal", "o", {{"CLICOLOR_FORCE", "1"}, {"TERM", "dumb"}}, "", true},
      {"not forced", "e", {{"CLICOLOR_FORCE", "0"}}, "", false},
      {"not forced either", "e", {{"CLICOLOR_FORCE", ""}}, "", false},
      {"always", "e", {{"NO_COLOR", "1"}}, "--color=always", true},
      {"never", "o", {{"CLICOLOR_FORCE", "1"}}, "--color=never", false},
      {"auto", "o", {}, "--color=auto", true},
  };
  for (const auto& row : rows) {
    Arguments arguments{"parse", input};
    if (*row.option != '\0') {
      arguments.emplace_back(row.option);
    }
    RunningCommand parse(arguments, on(row.terminal, row.variables));
    const std::string text = *row.terminal == 'o' ? parse.readTerminal() : parse.readAll();
    EXPECT_EQ(text.find("\x1b[") != std::string::npos, row.areShown) << row.name;
    EXPECT_NE(text.find("OK"), std::string::npos) << row.name;
  }
}

TEST_F(TerminalTest, LongTextsAreCutToItsWidth) {
  const std::string url = "https://cdn.example/" + std::string(200, 'x') + "/end.mp4";
  const std::string input =
      file("a.xml", ad("a", "<Impression>" + url + "</Impression><Category>" + url +
                                "</Category><Impression>\xE6\xBC\xA2" + url + "</Impression>"));
  for (const unsigned short columns : std::initializer_list<unsigned short>{60, 80, 200}) {
    const std::string text = withoutColours(shown({"parse", input}, on("o", {}, columns)));
    for (const std::string& line : linesOf(text)) {
      EXPECT_LE(command::columnsOf(line), columns) << line;
    }
    EXPECT_NE(text.find("..."), std::string::npos);
    EXPECT_NE(text.find("end.mp4"), std::string::npos) << "the middle is cut, not the end";
  }
  EXPECT_NE(shown({"parse", input}, on("o", {}, 300)).find(url), std::string::npos);
  EXPECT_NE(run({"parse", input}).out.find(url), std::string::npos) << "whole in a pipe";
}

// Sentences are left to the terminal to break.
TEST_F(TerminalTest, TablesFitIntoIt) {
  const std::string url = "https://cdn.example/" + std::string(200, 'x') + "/end.mp4";
  const std::string input = file(
      "a.xml",
      ad("a", "<Impression>" + url + "</Impression><Category>\xE6\xBC\xA2" + url + "</Category>"));
  for (unsigned short columns = 20; columns <= 90; ++columns) {
    const std::string text = withoutColours(shown({"parse", input}, on("o", {}, columns)));
    const std::size_t chain = text.find("\nChain");
    ASSERT_NE(chain, std::string::npos);
    for (const std::string& line : linesOf(text.substr(chain))) {
      EXPECT_LE(command::columnsOf(line), columns) << line;
    }
    for (const char* shown : {"AdSystem", "version", "Impression", "video/mp4", ".mp4"}) {
      EXPECT_NE(text.find(shown), std::string::npos) << columns << shown << text;
    }
  }
  const std::string narrow = withoutColours(shown({"parse", input}, on("o", {}, 24)));
  EXPECT_NE(narrow.find("  hop       1\n  fetch     -\n"), std::string::npos) << narrow;
}

TEST_F(TerminalTest, HelpFitsIntoIt) {
  for (const Arguments& command : {Arguments{}, {"parse"}, {"page"}, {"batch"}}) {
    Arguments help = command;
    help.emplace_back("--help");
    for (const unsigned short columns : std::initializer_list<unsigned short>{50, 80, 200}) {
      for (const std::string& line : linesOf(shown(help, on("o", {}, columns)))) {
        EXPECT_LE(line.size(), std::min<std::size_t>(columns, 80)) << line;
      }
    }
  }
}

TEST_F(TerminalTest, WhatIsAwaitedFromItIsSaid) {
  for (const char* name : {"parse", "page", "batch"}) {
    RunningCommand command({name}, on("ioe"));
    const std::string hint = command.readTerminal("--help)\n");
    EXPECT_NE(hint.find("from this terminal"), std::string::npos) << name;
    EXPECT_NE(hint.find(std::string("tamzo-vast ") + name + " --help"), std::string::npos);
    command.write("\4");
    EXPECT_EQ(command.wait(), name == std::string("batch") ? 0 : 1) << name;
  }
  EXPECT_EQ(run({"parse"}, ad("a")).err, "") << "nothing of it in a pipe";
}

TEST_F(TerminalTest, ASlowURLGivesASignOfLife) {
  HttpServer server;
  std::atomic<bool> mayGoOn{false};
  server.on("/slow", [&](const Exchange& exchange) {
    while (!mayGoOn && !server.isClosing()) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    exchange.respond(ad("slow"));
  });
  server.serve("/quick", ad("quick"));
  const std::string url = server.url("/slow");
  RunningCommand parse({"parse", url}, on("e"));
  EXPECT_NE(parse.readTerminal(" s").find("waiting for " + url + "  0 s"), std::string::npos);
  mayGoOn = true;
  EXPECT_NE(parse.readAll().find("slow"), std::string::npos);
  EXPECT_EQ(screenOf(parse.readTerminal()), (Arguments{""})) << "and takes it away";
  EXPECT_EQ(shown({"parse", url}, on("e", {{"TERM", "dumb"}})), "");
}

// ---- The bar -----------------------------------------------------------------------------------

TEST_F(TerminalTest, ABarShowsRateAndTimeLeft) {
  fs::create_directories(path("in"));
  for (const char* name : {"in/a.xml", "in/b.xml", "in/c.xml"}) {
    file(name, ad("a"));
  }
  const std::string text = shown({"batch", path("in")}, on("e"));
  EXPECT_NE(text.find("] 0/3  0.0/s  ? left"), std::string::npos) << text;
  EXPECT_NE(text.find("[########################################] 3/3  "), std::string::npos);
  EXPECT_NE(text.find("/s  0 s left\r\x1b[Kresponses "), std::string::npos) << text;
  EXPECT_EQ(shown({"batch", "-q", path("in")}, on("e")), "");
  const std::string dumb = shown({"batch", path("in")}, on("e", {{"TERM", "dumb"}}));
  EXPECT_TRUE(dumb.starts_with("responses ")) << dumb;
}

TEST_F(TerminalTest, TheBarNeverSharesALineWithAnAnswer) {
  std::string input;
  for (int i = 0; i < 400; ++i) {
    input += i % 20 == 0 ? "broken\n" : requestLine(i, ad("a"));
  }
  Streams streams = on("oe", {}, 70);
  streams.inputFile = file("in.jsonl", input);
  const auto screen = screenOf(shown({"batch", "-j", "3"}, streams));
  std::size_t answers = 0;
  for (const std::string& line : screen) {
    const bool isAnswer = ordered_json::accept(line);
    answers += isAnswer ? 1U : 0U;
    EXPECT_TRUE(isAnswer || line.empty() || line.starts_with("tamzo-vast: line ") ||
                line.starts_with(" ") || line.starts_with("responses "))
        << line;
    EXPECT_TRUE(isAnswer || line.find("left") == std::string::npos) << line;
  }
  EXPECT_EQ(answers, 400U);
}

TEST_F(TerminalTest, ASignalTakesTheBarAway) {
  Streams streams = on("e");
  streams.inputFile = "";
  RunningCommand batch({"batch"}, streams);
  const std::string before = batch.readTerminal("/s");
  EXPECT_NE(before.find("0 responses"), std::string::npos);
  batch.signal(SIGINT);
  EXPECT_EQ(batch.wait(), 128 + SIGINT);
  EXPECT_EQ(screenOf(before + batch.readTerminal()).back(), "");
}

}  // namespace
}  // namespace tamzo::testing
