#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/JsonText.h"
#include "base/RapidJson.h"
#include "tamzo/base/Text.h"

namespace tamzo {

/// Where a JsonWriter's text goes: what RapidJSON calls a stream.
class JsonOutput {
 public:
  using Ch = char;
  void Put(char c) { text_ += c; }
  static void Flush() noexcept {}

 protected:
  std::string text_;
  JsonAllocator allocator_;
};

/// Writes one JSON document from front to back, so that memory is that of the text alone. `Layout`
/// is RapidJSON's, which brings the structure; strings and numbers are written here.
template <typename Layout>
class JsonWriter : private JsonOutput, private Layout {
 public:
  JsonWriter() : Layout(static_cast<JsonOutput&>(*this), &allocator_) {
    if constexpr (kIsIndented) {
      Layout::SetIndent(' ', 2);
    }
  }

  /// Makes room for a document of about that length.
  void reserve(std::size_t bytes) { text_.reserve(bytes); }

  void beginObject() { Layout::StartObject(); }
  void endObject() { Layout::EndObject(); }
  void beginArray() { Layout::StartArray(); }
  void endArray() { Layout::EndArray(); }

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
    prefix(rapidjson::kNumberType);
    appendJsonFraction(text_, number);
  }
  void value(std::string_view text) {
    prefix(rapidjson::kStringType);
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
    prefix(rapidjson::kNumberType);
    text_ += json;
  }

  std::string take() { return std::move(text_); }

 private:
  static constexpr bool kIsIndented = requires(Layout & layout) { layout.SetIndent(' ', 2U); };

  void prefix(rapidjson::Type type) {
    if constexpr (kIsIndented) {
      Layout::PrettyPrefix(type);
    } else {
      Layout::Prefix(type);
    }
  }

  template <typename Number>
  void numeric(Number number) {
    prefix(rapidjson::kNumberType);
    appendJsonNumber(text_, number);
  }
};

using CompactJsonWriter =
    JsonWriter<rapidjson::Writer<JsonOutput, rapidjson::UTF8<>, rapidjson::UTF8<>, JsonAllocator>>;
using IndentedJsonWriter = JsonWriter<
    rapidjson::PrettyWriter<JsonOutput, rapidjson::UTF8<>, rapidjson::UTF8<>, JsonAllocator>>;

}  // namespace tamzo
