// JSON in ExtraActions: decoded by itself, and on its way through a response that has icons too.

#include <cstdint>
#include <cstring>
#include <string>

#include "base/Utf8.h"
#include "fuzz/Fuzzing.h"
#include "tamzo/sdk/TamzoExtraActions.h"
#include "tamzo/vast/TamzoVastAd.h"

using namespace tamzo;
using namespace tamzo::fuzz;
using nlohmann::json;

namespace {

// A vendor value, taken apart through what hosts see of it.
json asJson(const JsonValue& value) {
  switch (value.kind()) {
    case JsonValue::Kind::null:
      return {};
    case JsonValue::Kind::boolean:
      return value.asBool();
    case JsonValue::Kind::number:
      return json::parse(value.dump());  // requireSameNumbers looks at the rest
    case JsonValue::Kind::text:
      return std::string(value.asText().view());
    case JsonValue::Kind::list: {
      json list = json::array();
      for (std::size_t i = 0; i < value.size(); ++i) {
        list.push_back(asJson(value.at(i)));
      }
      return list;
    }
    case JsonValue::Kind::map: {
      json map = json::object();
      for (std::size_t i = 0; i < value.size(); ++i) {
        const Text key = value.keyAt(i);
        require(map.emplace(std::string(key.view()), asJson(value.at(i))).second,
                "two members of one name");
        require(value.find(key) == value.at(i), "a member is not found");
      }
      return map;
    }
  }
  return {};
}

void requireSameNumbers(const json& expected, const JsonValue& value) {
  if (expected.is_number()) {
    const double number = value.asNumber();
    const auto whole = expected.get<double>();
    require(std::memcmp(&number, &whole, sizeof(number)) == 0, "another number");
    const bool isInteger =
        expected.is_number_integer() && !(expected.is_number_unsigned() &&
                                          expected.get<std::uint64_t>() > std::uint64_t{INT64_MAX});
    require(!isInteger || expected.get<std::int64_t>() == value.asInteger(), "another integer");
  } else if (expected.is_array()) {
    for (std::size_t i = 0; i < expected.size(); ++i) {
      requireSameNumbers(expected[i], value.at(i));
    }
  } else if (expected.is_object()) {
    for (const auto& [key, member] : expected.items()) {
      requireSameNumbers(member, value.find(key));
    }
  }
}

json entriesOf(const TamzoExtraActions& actions) {
  if (!actions.isList()) {
    return asJson(actions.value());
  }
  json entries = json::array();
  for (const auto& entry : *actions.list()) {
    entries.push_back(asJson(std::get<JsonValue>(entry)));
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
  const std::string_view text = asText(data, size);
  const bool isGood = isShallowJson(text) && json::accept(text);
  const auto actions = TamzoExtraActions::fromJson(text);
  require(actions.isNil() == !isGood, "malformed and well-formed JSON are confused");
  if (isGood) {
    const json expected = json::parse(text);
    requireEqual(dump(entriesOf(actions)), dump(expected), "the decoded value");
    const JsonValue value = JsonValue::parse(text);
    requireSameNumbers(expected, value);
    requireEqual(dump(json::parse(value.dump())), dump(expected), "the value written again");
  }
  if (const auto markup = escaped(text); markup && !text.empty() && isUtf8(text)) {
    throughResponse(*markup, actions);
  }
  return 0;
}
