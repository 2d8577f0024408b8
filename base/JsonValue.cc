#include "tamzo/base/JsonValue.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

#include "base/JsonReader.h"
#include "base/JsonWriter.h"
#include "base/NeverDestroyed.h"
#include "base/Numbers.h"

namespace tamzo {
namespace {

using Pool = rapidjson::MemoryPoolAllocator<JsonAllocator>;
using Document = rapidjson::GenericDocument<rapidjson::UTF8<>, Pool, JsonAllocator>;
using Node = Document::ValueType;

std::string_view viewOf(const Node& text) noexcept {
  return {text.GetString(), text.GetStringLength()};
}

// The members of a map. RapidJSON's own iterators do not compare without warnings in C++20.
template <typename Map>
auto membersOf(Map& map) noexcept {
  using Member = std::remove_reference_t<decltype(*map.MemberBegin())>;
  return map.ObjectEmpty() ? std::span<Member>()
                           : std::span<Member>(&*map.MemberBegin(), map.MemberCount());
}

// ---- Reading -------------------------------------------------------------------------------

template <typename Integer>
std::optional<Integer> integerOf(std::string_view written) noexcept {
  Integer value = 0;
  const char* end = written.data() + written.size();
  const auto [stop, error] = std::from_chars(written.data(), end, value);
  const bool isWhole = error == std::errc() && stop == end;
  return isWhole ? std::optional(value) : std::nullopt;
}

/// Builds a document of what is read.
class Builder : public JsonHandler {
 public:
  explicit Builder(Document& document) noexcept : document_(document) {}

  bool scalar(std::string_view written) override {
    switch (written.front()) {
      case 'n':
        return document_.Null();
      case 't':
        return document_.Bool(true);
      case 'f':
        return document_.Bool(false);
      default:
        return number(written);
    }
  }
  bool string(std::string_view characters, std::string_view) override { return text(characters); }
  bool key(std::string_view characters) override { return text(characters); }
  bool begin(std::string_view written) override {
    return written.front() == '{' ? document_.StartObject() : document_.StartArray();
  }
  bool end(std::string_view written, std::size_t count) override {
    const auto entries = static_cast<rapidjson::SizeType>(count);
    return written.front() == '}' ? document_.EndObject(entries) : document_.EndArray(entries);
  }

 private:
  bool text(std::string_view characters) {
    return document_.String(characters.data(), static_cast<rapidjson::SizeType>(characters.size()),
                            true);
  }

  // An integer where 64 bits hold it; false for what no double holds either.
  bool number(std::string_view written) {
    if (const auto natural = integerOf<std::uint64_t>(written)) {
      return document_.Uint64(*natural);
    }
    if (const auto integer = integerOf<std::int64_t>(written)) {
      return document_.Int64(*integer);
    }
    const double value = doubleValue(written);
    return !std::isinf(value) && document_.Double(value);
  }

  Document& document_;
};

bool isLess(std::string_view a, std::string_view b) noexcept {
  return a.size() != b.size() ? a.size() < b.size() : a < b;
}

// Which members have a later one of the same name.
std::vector<bool> overwrittenMembers(const Node& map) {
  std::vector<std::pair<std::string_view, std::size_t>> names;
  names.reserve(map.MemberCount());
  for (const auto& member : membersOf(map)) {
    names.emplace_back(viewOf(member.name), names.size());
  }
  std::sort(names.begin(), names.end(), [](const auto& a, const auto& b) {
    return a.first == b.first ? a.second < b.second : isLess(a.first, b.first);
  });
  std::vector<bool> overwritten(names.size());
  for (std::size_t i = 1; i < names.size(); ++i) {
    overwritten[names[i - 1].second] = names[i - 1].first == names[i].first;
  }
  return overwritten;
}

void dropOverwrittenMembers(Node& map) {
  const std::vector<bool> overwritten = overwrittenMembers(map);
  const auto members = membersOf(map);
  std::size_t kept = 0;
  for (std::size_t i = 0; i < members.size(); ++i) {
    if (overwritten[i]) {
      continue;
    }
    if (kept != i) {
      members[kept].name = members[i].name;  // moves it, as assigning does with RapidJSON
      members[kept].value = members[i].value;
    }
    ++kept;
  }
  map.EraseMember(map.MemberBegin() + static_cast<std::ptrdiff_t>(kept), map.MemberEnd());
}

// The depth is bounded by what readJson takes.
void dropOverwritten(Node& node) {
  if (node.IsArray()) {
    for (Node& entry : node.GetArray()) {
      dropOverwritten(entry);
    }
  } else if (node.IsObject()) {
    if (node.MemberCount() > 1) {
      dropOverwrittenMembers(node);
    }
    for (auto& member : membersOf(node)) {
      dropOverwritten(member.value);
    }
  }
}

/// A document with its memory, of which most documents need little.
struct Decoded {
  static constexpr std::size_t kSmallest = 256;
  static constexpr std::size_t kLargest = 65536;
  static constexpr std::size_t kStack = 256;

  explicit Decoded(std::size_t textBytes)
      : pool(std::clamp(textBytes * 4, kSmallest, kLargest), &allocator),
        document(&pool, kStack, &allocator) {}

  JsonAllocator allocator;
  Pool pool;
  Document document;
};

// ---- Writing -------------------------------------------------------------------------------

// The depth is bounded by what readJson takes.
void write(const Node& node, JsonWriter& json) {
  if (node.IsArray()) {
    json.beginArray();
    for (const Node& entry : node.GetArray()) {
      write(entry, json);
    }
    json.endArray();
  } else if (node.IsObject()) {
    json.beginObject();
    for (const auto& member : membersOf(node)) {
      json.key(viewOf(member.name));
      write(member.value, json);
    }
    json.endObject();
  } else if (node.IsString()) {
    json.value(viewOf(node));
  } else if (node.IsUint64()) {
    json.value(node.GetUint64());
  } else if (node.IsInt64()) {
    json.value(node.GetInt64());
  } else if (node.IsNumber()) {
    json.fraction(node.GetDouble());
  } else if (node.IsBool()) {
    json.value(node.GetBool());
  } else {
    json.null();
  }
}

const Node& nodeOf(const std::shared_ptr<const void>& node) noexcept {
  static NeverDestroyed<Node> none;
  return node == nullptr ? *none : *static_cast<const Node*>(node.get());
}

}  // namespace

JsonValue JsonValue::parse(const Text& json) {
  if (json.isNil()) {
    return {};
  }
  const std::string_view text = json.view();
  auto decoded = std::make_shared<Decoded>(text.size());
  const auto read = [text](Document& document) {
    Builder builder(document);
    return readJson(text, builder) == JsonFault::none;
  };
  bool isRead = false;
  auto populate = [&](Document& document) { return isRead = read(document); };
  decoded->document.Populate(populate);
  if (!isRead) {
    return {};
  }
  dropOverwritten(decoded->document);
  const Node* top = &decoded->document;
  return JsonValue(std::shared_ptr<const void>(std::move(decoded), top));
}

JsonValue JsonValue::part(const void* node) const noexcept {
  return JsonValue(std::shared_ptr<const void>(node_, node));
}

JsonValue::Kind JsonValue::kind() const noexcept {
  switch (nodeOf(node_).GetType()) {
    case rapidjson::kFalseType:
    case rapidjson::kTrueType:
      return Kind::boolean;
    case rapidjson::kNumberType:
      return Kind::number;
    case rapidjson::kStringType:
      return Kind::text;
    case rapidjson::kArrayType:
      return Kind::list;
    case rapidjson::kObjectType:
      return Kind::map;
    default:
      return Kind::null;
  }
}

bool JsonValue::asBool() const noexcept { return nodeOf(node_).IsTrue(); }

double JsonValue::asNumber() const noexcept {
  const Node& node = nodeOf(node_);
  return node.IsNumber() ? node.GetDouble() : 0;
}

std::int64_t JsonValue::asInteger() const noexcept {
  using Limits = std::numeric_limits<std::int64_t>;
  constexpr double kBeyond = 9223372036854775808.0;
  const Node& node = nodeOf(node_);
  if (node.IsInt64()) {
    return node.GetInt64();
  }
  const double number = asNumber();
  if (number >= kBeyond) {
    return Limits::max();
  }
  return number <= -kBeyond ? Limits::min() : static_cast<std::int64_t>(number);
}

Text JsonValue::asText() const noexcept {
  const Node& node = nodeOf(node_);
  return node.IsString() ? Text::sharing(viewOf(node), node_) : Text();
}

std::size_t JsonValue::size() const noexcept {
  const Node& node = nodeOf(node_);
  if (node.IsArray()) {
    return node.Size();
  }
  return node.IsObject() ? node.MemberCount() : 0;
}

JsonValue JsonValue::at(std::size_t index) const noexcept {
  const Node& node = nodeOf(node_);
  if (index >= size()) {
    return {};
  }
  return part(node.IsArray() ? node.Begin() + index : &membersOf(node)[index].value);
}

Text JsonValue::keyAt(std::size_t index) const noexcept {
  const Node& node = nodeOf(node_);
  const bool isMember = node.IsObject() && index < size();
  return isMember ? Text::sharing(viewOf(membersOf(node)[index].name), node_) : Text();
}

JsonValue JsonValue::find(std::string_view key) const noexcept {
  const Node& node = nodeOf(node_);
  if (node.IsObject()) {
    for (const auto& member : membersOf(node)) {
      if (viewOf(member.name) == key) {
        return part(&member.value);
      }
    }
  }
  return {};
}

std::string JsonValue::dump() const {
  JsonWriter json(JsonSpacing::compact);
  write(nodeOf(node_), json);
  return json.take();
}

}  // namespace tamzo
