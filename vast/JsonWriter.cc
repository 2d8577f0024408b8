#include "vast/JsonWriter.h"

#include <fmt/format.h>

#include <iterator>
#include <nlohmann/json.hpp>

namespace tamzo {

void JsonWriter::key(std::string_view name) {
  value(name);
  out_ += isIndented_ ? ": " : ":";
  followsKey_ = true;
}

void JsonWriter::value(std::int64_t number) { raw(std::to_string(number)); }
void JsonWriter::value(double number) { floating(number); }
void JsonWriter::value(float number) { floating(number); }

void JsonWriter::value(std::string_view text) {
  using nlohmann::json;
  raw(json(text).dump(-1, ' ', false, json::error_handler_t::replace));
}

void JsonWriter::value(const Text& text) {
  if (text.isNil()) {
    null();
  } else {
    value(text.view());
  }
}

void JsonWriter::raw(std::string_view json) {
  separate();
  out_ += json;
}

void JsonWriter::begin(char bracket) {
  separate();
  out_ += bracket;
  ++depth_;
  isFirst_ = true;
}

void JsonWriter::end(char bracket) {
  --depth_;
  if (!isFirst_) {
    newLine();
  }
  out_ += bracket;
  isFirst_ = false;
}

void JsonWriter::separate() {
  if (followsKey_) {
    followsKey_ = false;
    return;
  }
  if (!isFirst_) {
    out_ += ',';
  }
  isFirst_ = false;
  if (depth_ > 0) {
    newLine();
  }
}

void JsonWriter::newLine() {
  if (isIndented_) {
    out_ += '\n';
    out_.append(static_cast<std::size_t>(depth_) * 2, ' ');
  }
}

template <typename Float>
void JsonWriter::floating(Float number) {
  if (std::isnan(number)) {
    value(std::string_view("nan"));
  } else if (std::isinf(number)) {
    value(std::string_view(number > 0 ? "inf" : "-inf"));
  } else if (number == 0 && std::signbit(number)) {
    raw("-0.0");  // many readers take "-0" for an integer, which has no negative zero
  } else {
    raw(fmt::format("{}", number));
  }
}

}  // namespace tamzo
