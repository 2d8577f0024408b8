#include "tools/BatchLine.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "base/JsonReader.h"
#include "base/JsonText.h"
#include "base/Utf8.h"
#include "tamzo/vast/RecordJson.h"
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

const char* reasonOf(JsonFault fault, const std::string& line) {
  if (!isUtf8(line)) {
    return "is not UTF-8 text";
  }
  if (line.find('\0') != std::string::npos) {
    return "holds a NUL character";
  }
  switch (fault) {
    case JsonFault::tooDeep:
      return "is nested too deep";
    case JsonFault::tooLong:
      return "is longer than 4 GiB";
    case JsonFault::notText:
      return "holds half a surrogate pair";
    default:
      return "is not JSON";
  }
}

}  // namespace

std::string idOf(std::string_view text) {
  std::string json;
  appendJsonString(json, text);
  return json;
}

BatchAnswer refuse(const std::string& id, const std::string& why) {
  return {R"({"id": )" + id + R"(, "error": )" + idOf(why) + "}", why, 0};
}

BatchAnswer answerResponse(const std::string& id, std::string vast) {
  const auto ad = TamzoVastAd::initWithVast(Text(withoutByteOrderMark(std::move(vast))));
  if (ad == nullptr) {
    return refuse(id, "out of memory");
  }
  return {R"({"id": )" + id + R"(, "record": )" + recordAsJson(*ad) + "}", "", ad->errorCode()};
}

BatchAnswer answerBatchLine(const std::string& line) {
  RequestReader request;
  const JsonFault fault = readJson(line, request);
  if (fault != JsonFault::none) {
    return refuse(request.id(), reasonOf(fault, line));
  }
  if (!request.isObject()) {
    return refuse(kNoId, "is no JSON object");
  }
  if (!request.vast()) {
    return refuse(request.id(), "has no text \"vast\"");
  }
  return answerResponse(request.id(), *std::move(request.vast()));
}

}  // namespace tamzo::command
