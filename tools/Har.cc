#include "tools/Har.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <string_view>
#include <system_error>
#include <utility>

#include "base/Ascii.h"
#include "base/JsonWriter.h"
#include "base/Utf8.h"
#include "base/WhiteSpace.h"
#include "tamzo/base/JsonValue.h"
#include "tamzo/base/Version.h"
#include "tools/CommandError.h"

namespace tamzo::command {
namespace {

constexpr std::string_view kDigits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr int kRedirectsFrom = 300;
constexpr int kRedirectsTo = 400;

std::string stringOf(const JsonValue& value) { return std::string(value.asText().view()); }

// ---- Reading -------------------------------------------------------------------------------

// The UTF-16 unit of the escape that begins there; nothing where none does.
std::optional<std::uint32_t> unitAt(std::string_view text, std::size_t at) noexcept {
  constexpr std::size_t kLength = 6;
  if (text.size() < at + kLength || text[at] != '\\' || text[at + 1] != 'u') {
    return std::nullopt;
  }
  std::uint32_t unit = 0;
  const char* const end = text.data() + at + kLength;
  const auto [past, error] = std::from_chars(text.data() + at + 2, end, unit, 16);
  return error == std::errc() && past == end ? std::optional(unit) : std::nullopt;
}

bool isSurrogate(std::optional<std::uint32_t> unit, std::uint32_t from) noexcept {
  return unit && *unit >= from && *unit < from + 0x400U;
}

// Browsers write a binary body as text with halves of surrogate pairs in it, which are no text.
void replaceHalfPairs(std::string& text) {
  constexpr std::uint32_t kHigh = 0xD800U;
  constexpr std::uint32_t kLow = 0xDC00U;
  for (std::size_t at = text.find('\\'); at != std::string::npos; at = text.find('\\', at)) {
    const auto unit = unitAt(text, at);
    const bool isHigh = isSurrogate(unit, kHigh);
    if (isHigh && isSurrogate(unitAt(text, at + 6), kLow)) {
      at += 12;
      continue;
    }
    if (isHigh || isSurrogate(unit, kLow)) {
      text.replace(at + 2, 4, "fffd");
    }
    at += 2;
  }
}

// What a browser or a proxy asks beside the request itself, by the same URL.
bool asksForNoBody(const JsonValue& entry) {
  const Text method = entry.find("request").find("method").asText();
  return equalsInAnyCase(method, "OPTIONS") || equalsInAnyCase(method, "HEAD") ||
         equalsInAnyCase(method, "CONNECT");
}

std::optional<std::string> headerOf(const JsonValue& response, std::string_view name) {
  const JsonValue headers = response.find("headers");
  for (std::size_t i = 0; i < headers.size(); ++i) {
    if (equalsInAnyCase(headers.at(i).find("name").asText(), name)) {
      return stringOf(headers.at(i).find("value"));
    }
  }
  return std::nullopt;
}

std::optional<std::string> bodyOf(const JsonValue& content) {
  const JsonValue text = content.find("text");
  if (text.kind() != JsonValue::Kind::text) {
    // A browser that kept no body says how long it was.
    return content.find("size").asNumber() > 0 ? std::nullopt : std::optional<std::string>("");
  }
  return equalsInAnyCase(content.find("encoding").asText(), "base64") ? decodeBase64(text.asText())
                                                                      : stringOf(text);
}

double positive(const JsonValue& number) { return std::max(number.asNumber(), 0.0); }

FetchTimes timesOf(const JsonValue& entry) {
  const JsonValue timings = entry.find("timings");
  FetchTimes times;
  times.dns = positive(timings.find("dns"));
  times.tls = positive(timings.find("ssl"));
  times.connect = std::max(positive(timings.find("connect")) - times.tls, 0.0);
  times.total = positive(entry.find("time"));
  times.firstByte = std::max(times.total - positive(timings.find("receive")), 0.0);
  return times;
}

// By their numbers.
constexpr std::array<std::string_view, 12> kCauses{
    "",           "public-addresses", "https-stays-https",
    "proxy",      "ca-file",          "connect-time",
    "fetch-time", "chain-time",       "header-size",
    "body-size",  "chain-size",       "options"};
static_assert(kCauses.size() == static_cast<std::size_t>(FetchCause::options) + 1);

// None for a name that nobody knows.
FetchCause causeNamed(std::string_view name) {
  const auto found = std::find(kCauses.begin(), kCauses.end(), name);
  return found == kCauses.end() ? FetchCause::none
                                : static_cast<FetchCause>(found - kCauses.begin());
}

HarEntry entryOf(const JsonValue& value) {
  HarEntry entry;
  const JsonValue response = value.find("response");
  entry.url = stringOf(value.find("request").find("url"));
  const std::int64_t status = response.find("status").asInteger();
  entry.status = static_cast<int>(std::clamp<std::int64_t>(status, 0, 999));
  if (entry.status >= kRedirectsFrom && entry.status < kRedirectsTo) {
    entry.redirectUrl = stringOf(response.find("redirectURL"));
    if (entry.redirectUrl.empty()) {
      entry.redirectUrl = headerOf(response, "location").value_or("");
    }
  }
  entry.body = bodyOf(response.find("content"));
  entry.contentType = headerOf(response, "content-type");
  // Some makers have it with the response.
  const JsonValue failure = value.find("_failure");
  entry.failure = stringOf(failure.isNil() ? response.find("_failure") : failure);
  entry.cause = causeNamed(stringOf(value.find("_cause")));
  entry.milliseconds = timesOf(value);
  return entry;
}

// ---- Writing -------------------------------------------------------------------------------

std::string timeNow() {
  using std::chrono::milliseconds;
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  const auto since = std::chrono::floor<milliseconds>(now).count();
  const auto seconds = static_cast<std::time_t>(since / 1000);
  std::tm utc{};
  gmtime_r(&seconds, &utc);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &utc);
  return fmt::format("{}.{:03}Z", text.data(), since % 1000);
}

class HarWriter {
 public:
  std::string write(const Har& har) {
    json_.beginObject();
    json_.key("log");
    json_.beginObject();
    text("version", "1.2");
    json_.key("creator");
    json_.beginObject();
    text("name", "tamzo-vast");
    text("version", TAMZO_VERSION);
    json_.endObject();
    json_.key("entries");
    json_.beginArray();
    for (const HarEntry& entry : har.entries) {
      write(entry);
    }
    json_.endArray();
    if (!har.unaskedTags.empty()) {
      json_.key("_unaskedTags");
      json_.beginArray();
      for (const std::string& tag : har.unaskedTags) {
        json_.value(std::string_view(tag));
      }
      json_.endArray();
    }
    json_.endObject();
    json_.endObject();
    return json_.take() + "\n";
  }

 private:
  void text(std::string_view key, std::string_view value) {
    json_.key(key);
    json_.value(value);
  }
  void number(std::string_view key, double value) {
    json_.key(key);
    json_.value(value);
  }
  void none(std::string_view key) {
    json_.key(key);
    json_.beginArray();
    json_.endArray();
  }

  void writeRequest(const HarEntry& entry) {
    json_.key("request");
    json_.beginObject();
    text("method", "GET");
    text("url", entry.url);
    text("httpVersion", "HTTP/1.1");
    none("cookies");
    none("headers");
    none("queryString");
    number("headersSize", -1);
    number("bodySize", 0);
    json_.endObject();
  }

  void writeHeaders(const HarEntry& entry) {
    json_.key("headers");
    json_.beginArray();
    const auto header = [this](std::string_view name, const std::string& value) {
      json_.beginObject();
      text("name", name);
      text("value", value);
      json_.endObject();
    };
    if (entry.contentType) {
      header("Content-Type", *entry.contentType);
    }
    if (!entry.redirectUrl.empty()) {
      header("Location", entry.redirectUrl);
    }
    json_.endArray();
  }

  void writeResponse(const HarEntry& entry) {
    const std::string_view body = entry.body ? std::string_view(*entry.body) : std::string_view();
    json_.key("response");
    json_.beginObject();
    number("status", entry.status);
    text("statusText", "");
    text("httpVersion", "HTTP/1.1");
    none("cookies");
    writeHeaders(entry);
    json_.key("content");
    json_.beginObject();
    number("size", static_cast<double>(body.size()));
    text("mimeType", entry.contentType.value_or("application/xml"));
    if (!isUtf8(body)) {
      text("text", encodeBase64(body));
      text("encoding", "base64");
    } else if (entry.body) {
      text("text", body);
    }
    json_.endObject();
    text("redirectURL", entry.redirectUrl);
    number("headersSize", -1);
    number("bodySize", entry.body ? static_cast<double>(body.size()) : -1);
    json_.endObject();
  }

  void writeTimings(const FetchTimes& times) {
    json_.key("timings");
    json_.beginObject();
    number("blocked", -1);
    number("dns", times.dns > 0 ? times.dns : -1);
    number("connect", times.connect + times.tls > 0 ? times.connect + times.tls : -1);
    number("ssl", times.tls > 0 ? times.tls : -1);
    number("send", 0);
    number("wait", std::max(times.firstByte - times.dns - times.connect - times.tls, 0.0));
    number("receive", std::max(times.total - times.firstByte, 0.0));
    json_.endObject();
  }

  void write(const HarEntry& entry) {
    json_.beginObject();
    text("startedDateTime", started_);
    number("time", entry.milliseconds.total);
    writeRequest(entry);
    writeResponse(entry);
    json_.key("cache");
    json_.beginObject();
    json_.endObject();
    writeTimings(entry.milliseconds);
    if (!entry.failure.empty()) {
      text("_failure", entry.failure);
    }
    if (entry.cause != FetchCause::none) {
      text("_cause", kCauses[static_cast<std::size_t>(entry.cause)]);
    }
    json_.endObject();
  }

  JsonWriter json_{JsonSpacing::indented};
  std::string started_ = timeNow();
};

}  // namespace

Har readHar(std::string text) {
  replaceHalfPairs(text);
  const JsonValue log = JsonValue::parse(Text(std::move(text))).find("log");
  const JsonValue entries = log.find("entries");
  if (entries.kind() != JsonValue::Kind::list || entries.isNil()) {
    throw CommandError("is no HAR: it has no log with entries");
  }
  Har har;
  har.entries.reserve(entries.size());
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (const JsonValue entry = entries.at(i); !asksForNoBody(entry)) {
      har.entries.push_back(entryOf(entry));
    }
  }
  const JsonValue tags = log.find("_unaskedTags");
  for (std::size_t i = 0; i < tags.size(); ++i) {
    har.unaskedTags.push_back(stringOf(tags.at(i)));
  }
  return har;
}

std::string writeHar(const Har& har) { return HarWriter().write(har); }

FetchFailure fetchFailureNamed(const std::string& name) noexcept {
  for (int i = 0; i <= static_cast<int>(FetchFailure::other); ++i) {
    const auto failure = static_cast<FetchFailure>(i);
    if (fetchFailureName(failure) == name) {
      return failure;
    }
  }
  return FetchFailure::other;
}

std::string encodeBase64(std::string_view bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      group = (group << 8U) | (i + k < bytes.size() ? static_cast<std::uint8_t>(bytes[i + k]) : 0U);
    }
    for (std::size_t k = 0; k < 4; ++k) {
      const bool isThere = i + k <= bytes.size();
      text += isThere ? kDigits[(group >> (18U - 6U * k)) & 0x3FU] : '=';
    }
  }
  return text;
}

std::optional<std::string> decodeBase64(std::string_view text) {
  std::array<std::uint8_t, 256> values{};
  values.fill(0xFFU);
  for (std::size_t i = 0; i < kDigits.size(); ++i) {
    values[static_cast<std::uint8_t>(kDigits[i])] = static_cast<std::uint8_t>(i);
  }
  values[static_cast<std::uint8_t>('-')] = 62;  // as URLs have it
  values[static_cast<std::uint8_t>('_')] = 63;
  std::string bytes;
  bytes.reserve(text.size() / 4 * 3);
  std::uint32_t group = 0;
  unsigned bits = 0;
  for (const char c : text) {
    if (c == '=' || c == ' ' || c == '\t' || c == '\r' || c == '\n') {
      continue;
    }
    const std::uint8_t value = values[static_cast<std::uint8_t>(c)];
    if (value == 0xFFU) {
      return std::nullopt;
    }
    group = ((group << 6U) | value) & 0xFFFFFFU;
    bits += 6;
    if (bits >= 8) {
      bits -= 8;
      bytes += static_cast<char>((group >> bits) & 0xFFU);
    }
  }
  return bytes;
}

}  // namespace tamzo::command
