#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "tamzo/base/Text.h"

namespace tamzo {

/// Writes one JSON document from front to back, so that memory is that of the text alone.
class JsonWriter {
 public:
  explicit JsonWriter(bool isIndented) noexcept : isIndented_(isIndented) {}

  /// Makes room for a document of about that length.
  void reserve(std::size_t bytes) { out_.reserve(bytes); }

  void beginObject() { begin('{'); }
  void endObject() { end('}'); }
  void beginArray() { begin('['); }
  void endArray() { end(']'); }

  /// The key of the next value.
  void key(std::string_view name);

  void null() { raw("null"); }
  void value(bool flag) { raw(flag ? "true" : "false"); }
  void value(std::int64_t number);
  void value(std::int32_t number) { value(std::int64_t{number}); }
  /// The shortest text that reads back as the same value; "inf", "-inf" or "nan" as a string.
  void value(double number);
  void value(float number);
  void value(std::string_view text);
  /// Null for nil.
  void value(const Text& text);

  /// A value that is JSON text already.
  void raw(std::string_view json);

  std::string take() { return std::move(out_); }

 private:
  void begin(char bracket);
  void end(char bracket);
  void separate();
  void newLine();
  template <typename Float>
  void floating(Float number);

  std::string out_;
  int depth_ = 0;
  bool isIndented_;
  bool isFirst_ = true;
  bool followsKey_ = false;
};

}  // namespace tamzo
