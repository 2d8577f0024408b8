#include "tamzo/sdk/TamzoExtraActions.h"

#include <mutex>
#include <nlohmann/json.hpp>
#include <utility>

#include "base/JsonDepth.h"

namespace tamzo {
namespace {

// Decoding costs many times what reading the text out of its document does.
constexpr std::size_t kMaxJsonBytes = std::size_t{1} << 20U;

// Takes a value apart from the inside out. Destroying one whole makes nlohmann-json allocate, in a
// place where running out of memory ends the program. Recursion is bounded by the nesting.
void dismantle(nlohmann::json& value) noexcept {
  if (auto* array = value.get_ptr<nlohmann::json::array_t*>()) {
    for (; !array->empty(); array->pop_back()) {
      dismantle(array->back());
    }
  } else if (auto* object = value.get_ptr<nlohmann::json::object_t*>()) {
    for (; !object->empty(); object->erase(object->begin())) {
      dismantle(object->begin()->second);
    }
  }
}

struct Json {
  nlohmann::json value;

  explicit Json(nlohmann::json&& taken) noexcept : value(std::move(taken)) {}
  Json(const Json&) = delete;
  Json& operator=(const Json&) = delete;
  ~Json() { dismantle(value); }
};

TamzoExtraActions::JsonValue share(nlohmann::json&& value) {
  auto owner = std::make_shared<const Json>(std::move(value));
  const nlohmann::json* itself = &owner->value;
  return {std::move(owner), itself};
}

}  // namespace

struct TamzoExtraActions::Content {
  Text json;
  std::once_flag isDecoded;
  List<Entry> list;
  JsonValue value;

  void decode();
};

void TamzoExtraActions::Content::decode() {
  if (json.isNil() || json.view().size() > kMaxJsonBytes || !isShallowJson(json)) {
    return;
  }
  // What json::parse does, but into a value that is dismantled when the text turns out malformed.
  Json whole{nlohmann::json()};
  nlohmann::json& decoded = whole.value;
  nlohmann::detail::json_sax_dom_parser<nlohmann::json> builder(decoded,
                                                                /*allow_exceptions_=*/false);
  if (!nlohmann::json::sax_parse(json.view(), &builder)) {
    return;
  }
  if (!decoded.is_array()) {
    value = share(std::move(decoded));
    return;
  }
  auto entries = makeList<Entry>();
  entries->reserve(decoded.size());
  for (nlohmann::json& entry : decoded) {
    entries->emplace_back(share(std::move(entry)));
  }
  list = std::move(entries);
}

TamzoExtraActions TamzoExtraActions::makeEmptyList() {
  TamzoExtraActions actions;
  actions.content_ = std::make_shared<Content>();
  actions.content_->list = makeList<Entry>();
  return actions;
}

TamzoExtraActions TamzoExtraActions::fromJson(Text text) {
  TamzoExtraActions actions;
  actions.content_ = std::make_shared<Content>();
  actions.content_->json = std::move(text);
  return actions;
}

const TamzoExtraActions::Content* TamzoExtraActions::decoded() const {
  if (content_ != nullptr) {
    std::call_once(content_->isDecoded, [this] { content_->decode(); });
  }
  return content_.get();
}

bool TamzoExtraActions::isNil() const { return list() == nullptr && value() == nullptr; }

const List<TamzoExtraActions::Entry>& TamzoExtraActions::list() const {
  static const List<Entry> none;
  const Content* content = decoded();
  return content == nullptr ? none : content->list;
}

const TamzoExtraActions::JsonValue& TamzoExtraActions::value() const {
  static const JsonValue none;
  const Content* content = decoded();
  return content == nullptr ? none : content->value;
}

}  // namespace tamzo
