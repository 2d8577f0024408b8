// JSON in ExtraActions: decoded by itself, and on its way through a response that has icons too.

#include <algorithm>
#include <string>

#include "base/JsonDepth.h"
#include "base/Utf8.h"
#include "fuzz/Fuzzing.h"
#include "tamzo/sdk/TamzoExtraActions.h"
#include "tamzo/vast/TamzoVastAd.h"

using namespace tamzo;
using namespace tamzo::fuzz;
using nlohmann::json;

namespace {

constexpr std::size_t kDeepest = 512;

// Follows the nesting while a text is read, without building anything.
class DepthMeter : public json::json_sax_t {
 public:
  std::size_t deepest() const { return deepest_; }

  bool null() override { return true; }
  bool boolean(bool) override { return true; }
  bool number_integer(json::number_integer_t) override { return true; }
  bool number_unsigned(json::number_unsigned_t) override { return true; }
  bool number_float(json::number_float_t, const std::string&) override { return true; }
  bool string(std::string&) override { return true; }
  bool binary(json::binary_t&) override { return true; }
  bool key(std::string&) override { return true; }
  bool start_object(std::size_t) override { return open(); }
  bool start_array(std::size_t) override { return open(); }
  bool end_object() override { return close(); }
  bool end_array() override { return close(); }
  bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override {
    return false;
  }

 private:
  bool open() {
    deepest_ = std::max(deepest_, ++depth_);
    return true;
  }
  bool close() {
    --depth_;
    return true;
  }

  std::size_t depth_ = 0;
  std::size_t deepest_ = 0;
};

json entriesOf(const TamzoExtraActions& actions) {
  if (!actions.isList()) {
    return *actions.value();
  }
  json entries = json::array();
  for (const auto& entry : *actions.list()) {
    entries.push_back(*std::get<TamzoExtraActions::JsonValue>(entry));
  }
  return entries;
}

// The text as XML character data; nothing when XML cannot carry it.
std::optional<std::string> escaped(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const bool isControl =
        static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n' && c != '\r';
    const std::string_view here = text.substr(i, 3);
    if (isControl || here == "\xEF\xBF\xBE" || here == "\xEF\xBF\xBF") {
      return std::nullopt;
    }
    switch (c) {
      case '<':
        out += "&lt;";
        break;
      case '&':
        out += "&amp;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '\r':
        out += "&#13;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

void throughResponse(const std::string& markup, const TamzoExtraActions& expected) {
  const std::string response =
      "<VAST version=\"3.0\"><Ad><InLine><Creatives><Creative><Linear><MediaFiles><MediaFile "
      "type=\"video/mp4\">m</MediaFile></MediaFiles><Icons><Icon program=\"a\"/><Icon "
      "program=\"b\"/><Icon program=\"a\" id=\"2\"/></Icons></Linear></Creative></Creatives>"
      "<Extensions><Extension><Tamzo><ExtraActions>" +
      markup + "</ExtraActions></Tamzo></Extension></Extensions></InLine></Ad></VAST>";
  TamzoVastAd ad;
  ad.parseVast(Text(response));
  require(ad.errorCode() == kNoError, "JSON makes an ad fail");
  const auto actual = json::parse(recordAsJson(ad), nullptr, false);
  require(actual.is_object(), "the record is not written as a JSON object");
  json wanted = expected.isNil() ? json() : entriesOf(expected);
  if (expected.isList()) {
    wanted.push_back({{"icon", {{"program", "a"}, {"xml", "<Icon program=\"a\" id=\"2\"/>"}}}});
    wanted.push_back({{"icon", {{"program", "b"}, {"xml", "<Icon program=\"b\"/>"}}}});
  }
  requireEqual(actual["extraActions"].dump(), wanted.dump(), "extra actions of the record");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  makeDeterministic();
  // No XML holds a NUL, which the JSON library takes for the end.
  const std::string_view text = asText(data, size).substr(0, asText(data, size).find('\0'));
  DepthMeter meter;
  const bool isGood = json::sax_parse(text, &meter) && meter.deepest() <= kDeepest;
  require(!isGood || isShallowJson(text), "shallow JSON counts as deep");

  const auto actions = TamzoExtraActions::fromJson(text);
  require(actions.isNil() == !isGood, "malformed and well-formed JSON are confused");
  if (isGood) {
    requireEqual(entriesOf(actions).dump(-1, ' ', false, json::error_handler_t::replace),
                 json::parse(text).dump(-1, ' ', false, json::error_handler_t::replace),
                 "the decoded value");
  }
  if (const auto markup = escaped(text); markup && !text.empty() && isUtf8(text)) {
    throughResponse(*markup, actions);
  }
  return 0;
}
