#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "tamzo/net/TamzoUrlReader.h"
#include "tamzo/sdk/TamzoMacroReplacementUtil.h"
#include "tamzo/sdk/TamzoState.h"
#include "tamzo/vast/RecordJson.h"
#include "tests/support/HostHooks.h"

// What the fuzzers have in common.

namespace tamzo::fuzz {

inline std::string_view asText(const std::uint8_t* data, std::size_t size) noexcept {
  return size == 0 ? std::string_view("")
                   : std::string_view(reinterpret_cast<const char*>(data), size);
}

/// Ends the program with `what` when `holds` is false: that is a finding. In force in every build,
/// unlike assert.
inline void require(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "FINDING: %s\n", what);
    std::abort();
  }
}

/// As above, and shows the two values that should be equal.
inline void requireEqual(std::string_view actual, std::string_view expected, const char* what) {
  if (actual != expected) {
    std::fprintf(stderr, "FINDING: %s\n--- actual:\n%.*s\n--- expected:\n%.*s\n", what,
                 static_cast<int>(actual.size()), actual.data(), static_cast<int>(expected.size()),
                 expected.data());
    std::abort();
  }
}

/// Takes the text up to the next `separator` off the front of `rest`, which loses the separator
/// too; all of it when there is none.
inline std::string_view takeUpTo(std::string_view& rest, char separator) {
  const std::size_t end = rest.find(separator);
  const std::string_view part = rest.substr(0, end);
  rest = end == std::string_view::npos ? rest.substr(rest.size()) : rest.substr(end + 1);
  return part;
}

/// Takes away all that would make two runs of one input differ: the network, the clock, chance.
inline void makeDeterministic() {
  testing::readUrlsWith([](const Text&) { return std::optional<std::string>(); });
  testing::MacroHooks hooks;
  hooks.now = [] { return std::chrono::system_clock::time_point(); };
  hooks.random = [](std::uint32_t) { return std::uint32_t{7}; };
  testing::fillMacrosWith(std::move(hooks));
  testing::HostState state;
  state.blockedAdCategories = [] { return Text::literal("IAB1-1,IAB2, IAB3"); };
  testing::useState(std::move(state));
}

/// True when a text nests no deeper than the 512 that are taken, and holds no NUL, which
/// nlohmann-json takes for the end. Whether it is JSON besides is not looked at.
inline bool isShallowJson(std::string_view text) {
  int depth = 0;
  bool inString = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '\0') {
      return false;
    }
    if (inString) {
      i += c == '\\' ? 1 : 0;
      inString = c != '"';
    } else if (c == '"') {
      inString = true;
    } else if (c == '[' || c == '{') {
      if (++depth > 512) {
        return false;
      }
    } else if (c == ']' || c == '}') {
      --depth;
    }
  }
  return true;
}

/// A JSON value of nlohmann-json, whatever the texts in it, as text.
template <typename Json>
std::string dump(const Json& value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

/// The record as JSON, after a check that both layouts are JSON and say the same.
inline nlohmann::ordered_json checkedRecord(const TamzoVastAd& ad) {
  require(findVastError(ad.errorCode()) != nullptr, "the error code is none of the table's");
  auto compact = nlohmann::ordered_json::parse(recordAsJson(ad), nullptr, false);
  require(compact.is_object(), "the record is not written as a JSON object");
  const auto indented =
      nlohmann::ordered_json::parse(recordAsJson(ad, JsonLayout::indented), nullptr, false);
  require(compact == indented, "the two layouts of a record differ");
  return compact;
}

}  // namespace tamzo::fuzz
