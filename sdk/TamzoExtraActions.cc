#include "tamzo/sdk/TamzoExtraActions.h"

#include <mutex>
#include <utility>

#include "base/NeverDestroyed.h"

namespace tamzo {

struct TamzoExtraActions::Content {
  Text json;
  std::once_flag isDecoded;
  List<Entry> list;
  JsonValue value;

  void decode();
};

void TamzoExtraActions::Content::decode() {
  JsonValue decoded = JsonValue::parse(json);
  if (decoded.kind() != JsonValue::Kind::list) {
    value = std::move(decoded);
    return;
  }
  auto entries = makeList<Entry>();
  entries->reserve(decoded.size());
  for (std::size_t i = 0; i < decoded.size(); ++i) {
    entries->emplace_back(decoded.at(i));
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

bool TamzoExtraActions::isNil() const { return list() == nullptr && value().isNil(); }

const List<TamzoExtraActions::Entry>& TamzoExtraActions::list() const {
  static NeverDestroyed<List<Entry>> none;
  const Content* content = decoded();
  return content == nullptr ? *none : content->list;
}

const JsonValue& TamzoExtraActions::value() const {
  static NeverDestroyed<JsonValue> none;
  const Content* content = decoded();
  return content == nullptr ? *none : content->value;
}

}  // namespace tamzo
