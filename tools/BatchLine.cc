#include "tools/BatchLine.h"

#include <fmt/format.h>

#include <algorithm>
#include <new>
#include <optional>
#include <utility>

#include "base/JsonReader.h"
#include "base/JsonText.h"
#include "base/Utf8.h"
#include "explain/Explainer.h"
#include "explain/ExplanationJson.h"
#include "explain/Words.h"
#include "tamzo/base/JsonValue.h"
#include "tamzo/vast/TamzoVastAd.h"
#include "tools/HtmlReport.h"
#include "tools/IdSearch.h"
#include "tools/Input.h"

namespace tamzo::command {
namespace {

// Line breaks stand between the parts of a value only; in a string they are escaped.
std::string onOneLine(std::string_view json) {
  std::string line(json);
  std::replace(line.begin(), line.end(), '\r', ' ');
  std::replace(line.begin(), line.end(), '\n', ' ');
  return line;
}

/// Takes the two members that count out of a line. Of several of one name the last counts, as it
/// does for every JSON reader here.
class RequestReader : public JsonHandler {
 public:
  bool isObject() const noexcept { return isObject_; }
  std::string id() const { return onOneLine(id_); }
  std::optional<std::string>& vast() noexcept { return vast_; }

  bool scalar(std::string_view written) override {
    beginMember();
    endMember(written, written);
    return true;
  }
  bool string(std::string_view characters, std::string_view written) override {
    beginMember();
    if (depth_ == 1 && member_ == Member::vast) {
      vast_ = characters;
    }
    endMember(written, written);
    return true;
  }
  bool key(std::string_view characters) override {
    if (depth_ == 1) {
      member_ = characters == "id"     ? Member::id
                : characters == "vast" ? Member::vast
                                       : Member::other;
    }
    return true;
  }
  bool begin(std::string_view written) override {
    isObject_ = isObject_ || (depth_ == 0 && written.front() == '{');
    beginMember();
    if (depth_ == 1) {
      opening_ = written;
    }
    ++depth_;
    return true;
  }
  bool end(std::string_view written, std::size_t) override {
    --depth_;
    endMember(opening_, written);
    return true;
  }

 private:
  enum class Member { other, id, vast };

  void beginMember() noexcept {
    if (depth_ == 1 && member_ == Member::vast) {
      vast_.reset();
    }
  }

  // `first` and `last` are the first and the last token of the value.
  void endMember(std::string_view first, std::string_view last) noexcept {
    if (depth_ == 1 && isObject_ && member_ == Member::id) {
      const char* end = last.data() + last.size();
      id_ = {first.data(), static_cast<std::size_t>(end - first.data())};
    }
  }

  int depth_ = 0;
  bool isObject_ = false;
  Member member_ = Member::other;
  std::string_view opening_;
  std::string_view id_ = kNoId;
  std::optional<std::string> vast_;
};

std::size_t brokenByteOf(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size()) {
    const Utf8Sequence next = utf8SequenceAt(text, at);
    if (!next.isCharacter) {
      return at;
    }
    at += next.bytes;
  }
  return at;
}

// Bytes are counted from 1, as people do.
std::string reasonOf(JsonFault fault, const JsonProblem& problem, std::string_view line) {
  if (!isUtf8(line)) {
    return fmt::format("is not UTF-8 text at byte {}", brokenByteOf(line) + 1);
  }
  if (const std::size_t nul = line.find('\0'); nul != std::string_view::npos) {
    return fmt::format("holds a NUL character at byte {}", nul + 1);
  }
  const bool isJson = fault != JsonFault::malformed;
  return fmt::format("{}: {} at byte {}", isJson ? "cannot be held" : "is not JSON", problem.cause,
                     problem.offset + 1);
}

Text withoutMark(std::string vast) { return Text(withoutByteOrderMark(std::move(vast))); }

// With room for a line break, which is then no matter of memory.
BatchAnswer refused(std::string line, const std::string& why) {
  line.reserve(line.size() + 1);
  return {std::move(line), why};
}

}  // namespace

std::string idOf(std::string_view text) {
  std::string json;
  appendJsonString(json, text);
  return json;
}

BatchAnswer refuse(const std::string& id, const std::string& why) {
  return refused(fmt::format(R"({{"id": {}, "error": {}}})", id, idOf(why)), why);
}

BatchAnswer refuseLine(const std::string& id, std::size_t number, const std::string& why) {
  return refused(fmt::format(R"({{"id": {}, "line": {}, "error": {}}})", id, number, idOf(why)),
                 why);
}

namespace {

// Every finding counts, those beyond the first twenty too.
std::size_t countOf(const explain::Finding& finding) {
  const std::string more(detailOf(finding, "more"));
  return more.empty() ? 1 : 1 + std::stoul(more);
}

bool hasAnyOf(const BatchAnswer& answer, const std::vector<std::string>& ids) {
  return std::any_of(ids.begin(), ids.end(),
                     [&](const std::string& id) { return answer.findings.contains(id); });
}

std::string lineOf(const std::string& id, const TamzoVastAd& ad,
                   const std::optional<explain::Explanation>& explanation, const AnswerForm& form) {
  const std::string record = recordAsJson(ad, JsonLayout::compact, form.content);
  const std::string reasons =
      explanation && form.hasExplanation ? explain::explanationAsJson(*explanation) : "";
  constexpr std::string_view kBegin = R"({"id": )";
  constexpr std::string_view kMiddle = R"(, "record": )";
  constexpr std::string_view kReasons = R"(, "explanation": )";
  std::string line;
  line.reserve(kBegin.size() + id.size() + kMiddle.size() + record.size() + kReasons.size() +
               reasons.size() + 2);
  line.append(kBegin).append(id).append(kMiddle).append(record);
  if (!reasons.empty()) {
    line.append(kReasons).append(reasons);
  }
  return line.append("}");
}

void addReport(BatchAnswer& answer, const std::string& id, const TamzoVastAd& ad,
               const explain::Explanation& explanation) {
  const Text text = JsonValue::parse(Text(id)).asText();
  answer.id = text.isNil() ? id : std::string(text.view());
  answer.sentence = explanation.sentence;
  const explain::Finding* error = errorOf(explanation);
  const std::size_t hop =
      error != nullptr && error->hop ? static_cast<std::size_t>(*error->hop) : 1;
  answer.host = explain::originOf(explanation.hops[hop - 1]);
  if (error != nullptr) {
    answer.mainFinding = error->id;
    answer.report = htmlReport(ad, explanation, {});
  }
}

}  // namespace

BatchAnswer answerResponse(const std::string& id, const Text& vast, const AnswerForm& form) {
  explain::Explainer explainer;
  ParseOptions options;
  options.observer = form.countsFindings ? &explainer : nullptr;
  const auto ad = TamzoVastAd::initWithVast(vast, options);
  if (ad == nullptr) {
    throw std::bad_alloc();
  }
  BatchAnswer answer;
  answer.errorCode = ad->errorCode();
  std::optional<explain::Explanation> explanation;
  if (form.countsFindings) {
    explanation = explainer.explain(*ad);
    for (const explain::Finding& finding : explanation->findings) {
      answer.findings[finding.id] += countOf(finding);
    }
    if (form.hasReport) {
      addReport(answer, id, *ad, *explanation);
    }
    answer.isLeftOut = !form.only.empty() && !hasAnyOf(answer, form.only);
  }
  if (form.hasRecord && !answer.isLeftOut) {
    answer.line = lineOf(id, *ad, explanation, form);
  }
  return answer;
}

BatchAnswer answerBatchLine(std::string_view line, std::size_t number, const AnswerForm& form) {
  RequestReader request;
  JsonProblem problem;
  const JsonFault fault = readJson(line, request, &problem);
  if (fault != JsonFault::none) {
    const std::string id = request.id() == kNoId ? onOneLine(searchId(line)) : request.id();
    return refuseLine(id, number, reasonOf(fault, problem, line));
  }
  if (!request.isObject()) {
    return refuseLine(kNoId, number, "is JSON, but no object");
  }
  const std::string id = request.id();
  if (!request.vast()) {
    return refuseLine(id, number, "has no text \"vast\"");
  }
  try {
    return answerResponse(id, withoutMark(*std::move(request.vast())), form);
  } catch (const std::bad_alloc&) {
    return refuseLine(id, number, "out of memory");
  }
}

}  // namespace tamzo::command
