#include "base/JsonReader.h"

#include <cstdint>
#include <limits>

#include "base/Ascii.h"
#include "base/JsonText.h"
#include "base/RapidJson.h"
#include "base/Utf8.h"

namespace tamzo {
namespace {

/// The text as RapidJSON takes it. Numbers are read here, and RapidJSON is shown a 0 in place of
/// each: it refuses some that are valid, such as 0e999 and integers of 309 digits.
class JsonStream {
 public:
  using Ch = char;

  explicit JsonStream(std::string_view text) noexcept
      : begin_(text.data()), at_(begin_), end_(begin_ + text.size()), token_(begin_) {}

  Ch Peek() const noexcept {
    if (isNumber_) {
      return isNumberTaken_ ? charAt(numberEnd_) : '0';
    }
    return charAt(at_);
  }
  Ch Take() noexcept {
    if (isNumber_) {
      isNumberTaken_ = true;
      return '0';
    }
    return *at_++;
  }
  std::size_t Tell() const noexcept { return static_cast<std::size_t>(at_ - begin_); }

  /// Goes on to the next token. RapidJSON calls it between any two.
  void skipWhiteSpace() noexcept {
    if (isNumber_) {
      at_ = numberEnd_;
      isNumber_ = false;
    }
    while (at_ != end_ && (*at_ == ' ' || *at_ == '\n' || *at_ == '\r' || *at_ == '\t')) {
      ++at_;
    }
    token_ = at_;
    if (at_ != end_ && (*at_ == '-' || isAsciiDigit(*at_))) {
      beginNumber();
    }
  }

  /// The characters of a string up to the next that is something else.
  std::string_view takePlain() noexcept {
    const std::string_view plain(at_, plainJsonBytes(at_, end_));
    at_ += plain.size();
    return plain;
  }

  bool isAtEnd() const noexcept { return at_ == end_; }
  /// What has been read since the last white space was skipped.
  std::string_view token() const noexcept { return from(token_, isNumber_ ? numberEnd_ : at_); }
  /// The character that is next.
  std::string_view next() const noexcept { return from(at_, at_ + 1); }

  // What RapidJSON would use to decode strings in place, which it is not asked to.
  static void* Push(std::size_t) noexcept { return nullptr; }
  static Ch* PutBegin() noexcept { return nullptr; }
  static void Put(Ch) noexcept {}
  static void Flush() noexcept {}
  static std::size_t PutEnd(Ch*) noexcept { return 0; }

 private:
  static std::string_view from(const char* begin, const char* end) noexcept {
    return {begin, static_cast<std::size_t>(end - begin)};
  }

  char charAt(const char* at) const noexcept { return at == end_ ? '\0' : *at; }

  const char* endOfDigits(const char* at) const noexcept {
    while (isAsciiDigit(charAt(at))) {
      ++at;
    }
    return at;
  }

  // The end of the number at the current place; null where that is none.
  const char* endOfNumber() const noexcept {
    const char* integer = at_ + (*at_ == '-' ? 1 : 0);
    const char* at = charAt(integer) == '0' ? integer + 1 : endOfDigits(integer);
    if (at == integer) {
      return nullptr;
    }
    if (charAt(at) == '.') {
      const char* fraction = at + 1;
      at = endOfDigits(fraction);
      if (at == fraction) {
        return nullptr;
      }
    }
    if (charAt(at) == 'e' || charAt(at) == 'E') {
      const char* exponent = at + 1;
      exponent += charAt(exponent) == '+' || charAt(exponent) == '-' ? 1 : 0;
      at = endOfDigits(exponent);
      if (at == exponent) {
        return nullptr;
      }
    }
    // What RapidJSON would take for more of the number is left to it, to be refused.
    const char next = charAt(at);
    return isAsciiDigit(next) || next == '.' || next == 'e' || next == 'E' ? nullptr : at;
  }

  void beginNumber() noexcept {
    numberEnd_ = endOfNumber();
    isNumber_ = numberEnd_ != nullptr;
    isNumberTaken_ = false;
  }

  const char* begin_;
  const char* at_;
  const char* end_;
  const char* token_;
  const char* numberEnd_ = nullptr;
  bool isNumber_ = false;
  bool isNumberTaken_ = false;
};

/// UTF-8 that is copied as it is, many characters at once.
struct PlainRuns : rapidjson::UTF8<> {};

}  // namespace

namespace rapidjson {

template <>
inline void SkipWhitespace(JsonStream& stream) {
  stream.skipWhiteSpace();
}

template <>
struct Transcoder<PlainRuns, PlainRuns> {
  template <typename Output>
  static bool Transcode(JsonStream& in, Output& out) {
    const std::string_view plain = in.takePlain();
    std::memcpy(out.Push(static_cast<SizeType>(plain.size())), plain.data(), plain.size());
    return true;
  }
  template <typename Output>
  static bool Validate(JsonStream& in, Output& out) {
    return Transcode(in, out);
  }
};

}  // namespace rapidjson

namespace {

/// Hands on what RapidJSON reads, and holds it to what it does not look at: the depth, and that
/// strings are text.
class CheckedHandler {
 public:
  CheckedHandler(const JsonStream& stream, JsonHandler& handler) noexcept
      : stream_(stream), handler_(handler) {}

  JsonFault fault() const noexcept { return fault_; }

  bool Null() { return handler_.scalar(stream_.token()); }
  bool Bool(bool) { return handler_.scalar(stream_.token()); }
  bool Uint(unsigned) { return handler_.scalar(stream_.token()); }
  // A valid number is shown as 0, which is none of these.
  bool Int(int) { return stop(JsonFault::malformed); }
  bool Int64(std::int64_t) { return stop(JsonFault::malformed); }
  bool Uint64(std::uint64_t) { return stop(JsonFault::malformed); }
  bool Double(double) { return stop(JsonFault::malformed); }
  bool RawNumber(const char*, rapidjson::SizeType, bool) { return stop(JsonFault::malformed); }

  bool String(const char* characters, rapidjson::SizeType length, bool) {
    const std::string_view text(characters, length);
    return isText(text) && handler_.string(text, stream_.token());
  }
  bool Key(const char* characters, rapidjson::SizeType length, bool) {
    const std::string_view text(characters, length);
    return isText(text) && handler_.key(text);
  }

  bool StartObject() { return open(); }
  bool StartArray() { return open(); }
  bool EndObject(rapidjson::SizeType count) { return close(count); }
  bool EndArray(rapidjson::SizeType count) { return close(count); }

 private:
  static constexpr int kMaxNesting = 512;

  bool stop(JsonFault fault) noexcept {
    fault_ = fault;
    return false;
  }
  // RapidJSON decodes the second half of a surrogate pair, standing alone, to what is not UTF-8.
  bool isText(std::string_view text) noexcept { return isUtf8(text) || stop(JsonFault::notText); }
  bool open() {
    return ++depth_ > kMaxNesting ? stop(JsonFault::tooDeep) : handler_.begin(stream_.next());
  }
  bool close(std::size_t count) {
    --depth_;
    return handler_.end(stream_.next(), count);
  }

  const JsonStream& stream_;
  JsonHandler& handler_;
  JsonFault fault_ = JsonFault::stopped;
  int depth_ = 0;
};

JsonFault faultOf(rapidjson::ParseErrorCode error, const CheckedHandler& handler) noexcept {
  switch (error) {
    case rapidjson::kParseErrorTermination:
      return handler.fault();
    case rapidjson::kParseErrorStringUnicodeSurrogateInvalid:
      return JsonFault::notText;
    default:
      return JsonFault::malformed;
  }
}

// `at` is what stands where the error is.
std::string_view causeOf(rapidjson::ParseErrorCode error, char at) noexcept {
  switch (error) {
    case rapidjson::kParseErrorDocumentEmpty:
      return "there is no value";
    case rapidjson::kParseErrorDocumentRootNotSingular:
      return "something follows the end of the value";
    case rapidjson::kParseErrorObjectMissName:
      return "the name of a member is missing";
    case rapidjson::kParseErrorObjectMissColon:
      return "a colon is missing after the name of a member";
    case rapidjson::kParseErrorObjectMissCommaOrCurlyBracket:
      return "a comma or \"}\" is missing";
    case rapidjson::kParseErrorArrayMissCommaOrSquareBracket:
      return "a comma or \"]\" is missing";
    case rapidjson::kParseErrorStringUnicodeEscapeInvalidHex:
      return "\"\\u\" is not followed by four hexadecimal digits";
    case rapidjson::kParseErrorStringUnicodeSurrogateInvalid:
      return "half a surrogate pair is no character";
    case rapidjson::kParseErrorStringEscapeInvalid:
      return at == '\\' ? "there is no such escape" : "a string holds a control character";
    case rapidjson::kParseErrorStringMissQuotationMark:
      return "a string does not end";
    default:
      return "this is no value";
  }
}

std::string_view causeOf(JsonFault fault) noexcept {
  switch (fault) {
    case JsonFault::notText:
      return "a string holds what is no character";
    case JsonFault::tooDeep:
      return "brackets nest deeper than 512";
    default:
      return causeOf(rapidjson::kParseErrorValueInvalid, '\0');
  }
}

// Takes anything.
class AnyJson : public JsonHandler {
 public:
  bool scalar(std::string_view) override { return true; }
  bool string(std::string_view, std::string_view) override { return true; }
  bool key(std::string_view) override { return true; }
  bool begin(std::string_view) override { return true; }
  bool end(std::string_view, std::size_t) override { return true; }
};

}  // namespace

JsonFault readJson(std::string_view text, JsonHandler& handler, JsonProblem* problem) {
  JsonProblem ignored;
  JsonProblem& found = problem == nullptr ? ignored : *problem;
  if (text.size() >= std::numeric_limits<rapidjson::SizeType>::max()) {
    found = {0, "it is 4 GiB long or longer"};
    return JsonFault::tooLong;
  }
  const std::size_t begin = text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
  text.remove_prefix(begin);

  JsonStream stream(text);
  CheckedHandler checked(stream, handler);
  JsonAllocator allocator;
  rapidjson::GenericReader<PlainRuns, PlainRuns, JsonAllocator> reader(&allocator);
  const auto result = reader.Parse<rapidjson::kParseIterativeFlag>(stream, checked);
  if (result.IsError()) {
    const bool isOurs = result.Code() == rapidjson::kParseErrorTermination;
    const JsonFault fault = faultOf(result.Code(), checked);
    const std::size_t token = static_cast<std::size_t>(stream.token().data() - text.data());
    const char at = result.Offset() < text.size() ? text[result.Offset()] : '\0';
    found = {begin + (isOurs ? token : result.Offset()),
             isOurs ? causeOf(fault) : causeOf(result.Code(), at)};
    return fault;
  }
  // A NUL character, which no JSON holds, ends the reading like the end of the text.
  if (!stream.isAtEnd()) {
    found = {begin + stream.Tell(), causeOf(rapidjson::kParseErrorDocumentRootNotSingular, '\0')};
    return JsonFault::malformed;
  }
  return JsonFault::none;
}

JsonFault checkJson(std::string_view text) {
  AnyJson any;
  return readJson(text, any);
}

}  // namespace tamzo
