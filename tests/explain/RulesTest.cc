#include "explain/Rules.h"

#include <gtest/gtest.h>

#include <fstream>
#include <optional>
#include <sstream>

#include "tests/explain/ExplainFixture.h"

namespace tamzo::testing {
namespace {

struct Answer {
  std::string url;
  std::string redirectedFrom;
  double milliseconds = 0.0;
  std::string body;
};

struct Example {
  std::string blockedCategories;
  bool throws = false;
  std::string response;
  std::vector<Answer> answers;
};

struct Document {
  Lines table;  // "id severity" of each row
  std::map<std::string, Example> examples;
};

std::string between(const std::string& text, const std::string& begin, const std::string& end) {
  const std::size_t at = text.find(begin);
  if (at == std::string::npos) {
    return "";
  }
  const std::size_t from = at + begin.size();
  return text.substr(from, text.find(end, from) - from);
}

Answer answerOf(const std::string& line) {
  Answer answer;
  answer.url = line.substr(0, line.find_first_of(",:", line.find("://") + 3));
  answer.redirectedFrom = between(line, "redirected from ", ":\n");
  const std::string time = between(line, "after ", " ms");
  answer.milliseconds = time.empty() ? 0.0 : std::stod(time);
  return answer;
}

// Reads what docs/findings.md says.
Document readDocument() {
  Document document;
  std::ifstream file(TAMZO_DOCS "/findings.md");
  std::string id;
  std::optional<Answer> answer;
  bool isInBlock = false;
  std::string block;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("```")) {
      if (isInBlock) {
        block.pop_back();
        if (answer) {
          answer->body = block;
          document.examples[id].answers.push_back(*std::exchange(answer, std::nullopt));
        } else {
          document.examples[id].response = block;
        }
      }
      isInBlock = !isInBlock;
      block.clear();
    } else if (isInBlock) {
      block += line + "\n";
    } else if (line.starts_with("### ")) {
      id = line.substr(4);
    } else if (line.starts_with("| [`")) {
      document.table.push_back(between(line, "[`", "`]") + " " + between(line, ") | ", " |"));
    } else if (line.starts_with("Answer of ")) {
      answer = answerOf(line.substr(10) + "\n");
    } else if (line.starts_with("With `--blocked-categories ")) {
      document.examples[id].blockedCategories = between(line, "categories ", "`");
    } else if (line.starts_with("With a function of the app that throws")) {
      document.examples[id].throws = true;
    }
  }
  return document;
}

class RulesTest : public ExplainTest {
 protected:
  void prepare(const Example& example) {
    blockCategories(example.blockedCategories.empty() ? Text() : Text(example.blockedCategories));
    changeHost([&](TamzoHost& host) {
      host.replaceMacros = {};
      if (example.throws) {
        host.replaceMacros = [](const Text&, const MacroValues&) -> Text {
          throw std::runtime_error("the app's own function failed");
        };
      }
    });
    for (const Answer& answer : example.answers) {
      FetchResult result;
      result.body = answer.body;
      result.milliseconds.total = answer.milliseconds;
      if (!answer.redirectedFrom.empty()) {
        result.redirects = {answer.url};
      }
      serve(answer.url, result);
    }
  }
};

TEST_F(RulesTest, theDocumentListsThemAll) {
  Lines rules;
  for (const explain::Rule& rule : explain::rules()) {
    rules.push_back(std::string(rule.id) + " " + std::string(explain::nameOf(rule.severity)));
  }
  EXPECT_THAT(readDocument().table, ::testing::UnorderedElementsAreArray(rules));
}

TEST_F(RulesTest, eachExampleOfTheDocumentGivesItsFinding) {
  const Document document = readDocument();
  for (const explain::Rule& rule : explain::rules()) {
    const auto example = document.examples.find(std::string(rule.id));
    ASSERT_NE(example, document.examples.end()) << rule.id;
    prepare(example->second);
    const auto explanation = explainResponse(example->second.response);
    const bool isFound =
        std::any_of(explanation.findings.begin(), explanation.findings.end(),
                    [&](const explain::Finding& finding) { return finding.id == rule.id; });
    EXPECT_TRUE(isFound) << rule.id << " in " << explain::explanationAsJson(explanation);
    const auto* error = explain::errorOf(explanation);
    EXPECT_TRUE(rule.severity != explain::Severity::error ||
                (error != nullptr && error->id == rule.id))
        << rule.id;
  }
}

TEST_F(RulesTest, everyErrorSaysWhatToDo) {
  const Document document = readDocument();
  for (const auto& [id, example] : document.examples) {
    prepare(example);
    for (const explain::Finding& finding : explainResponse(example.response).findings) {
      EXPECT_FALSE(finding.message.empty()) << finding.id;
      EXPECT_FALSE(finding.advice.empty()) << finding.id;
    }
  }
}

TEST_F(RulesTest, anUnknownIdIsNone) {
  EXPECT_EQ(explain::findRule("no-such-thing"), nullptr);
  EXPECT_EQ(explain::findRule("cut-off")->severity, explain::Severity::error);
}

}  // namespace
}  // namespace tamzo::testing
