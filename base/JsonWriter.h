#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/JsonText.h"
#include "base/RapidJson.h"
#include "tamzo/base/Text.h"

namespace tamzo {

/// How JSON is laid out.
enum class JsonSpacing {
  compact,   ///< on one line, without blanks
  indented,  ///< two blanks a level
};

/// Where a JsonWriter's text goes: what RapidJSON calls a stream. Only structure comes this way, so
/// that what is no more than spacing can be left out.
class JsonOutput {
 public:
  using Ch = char;
  explicit JsonOutput(JsonSpacing spacing) noexcept : spacing_(spacing) {}
  void Put(char c) {
    if (spacing_ == JsonSpacing::indented || c > ' ') {
      text_ += c;
    }
  }
  static void Flush() noexcept {}

 protected:
  JsonSpacing spacing_;
  std::string text_;
  JsonAllocator allocator_;
};

/// RapidJSON's, which brings the structure.
using JsonLayouter =
    rapidjson::PrettyWriter<JsonOutput, rapidjson::UTF8<>, rapidjson::UTF8<>, JsonAllocator>;

/// Writes one JSON document from front to back, so that memory is that of the text alone. Strings
/// and numbers are written here.
class JsonWriter : private JsonOutput, private JsonLayouter {
 public:
  explicit JsonWriter(JsonSpacing spacing)
      : JsonOutput(spacing), JsonLayouter(static_cast<JsonOutput&>(*this), &allocator_) {
    SetIndent(' ', spacing == JsonSpacing::indented ? 2 : 0);
  }

  /// Makes room for a document of about that length.
  void reserve(std::size_t bytes) { text_.reserve(bytes); }

  void beginObject() { StartObject(); }
  void endObject() { EndObject(); }
  void beginArray() { StartArray(); }
  void endArray() { EndArray(); }

  /// The key of the next value.
  void key(std::string_view name) { value(name); }

  void null() { raw("null"); }
  void value(bool flag) { raw(flag ? "true" : "false"); }
  void value(std::int32_t number) { value(std::int64_t{number}); }
  void value(std::int64_t number) { numeric(number); }
  void value(std::uint64_t number) { numeric(number); }
  void value(double number) { numeric(number); }
  void value(float number) { numeric(number); }
  /// Never as an integer: 150.0.
  void fraction(double number) {
    PrettyPrefix(rapidjson::kNumberType);
    appendJsonFraction(text_, number);
  }
  void value(std::string_view text) {
    PrettyPrefix(rapidjson::kStringType);
    appendJsonString(text_, text);
  }
  /// Null for nil.
  void value(const Text& text) {
    if (text.isNil()) {
      null();
    } else {
      value(text.view());
    }
  }

  /// A value that is JSON text already.
  void raw(std::string_view json) {
    PrettyPrefix(rapidjson::kNumberType);
    text_ += json;
  }

  std::string take() { return std::move(text_); }

 private:
  template <typename Number>
  void numeric(Number number) {
    PrettyPrefix(rapidjson::kNumberType);
    appendJsonNumber(text_, number);
  }
};

}  // namespace tamzo
