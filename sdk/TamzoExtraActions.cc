#include "sdk/TamzoExtraActions.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "sdk/JsonDepth.h"

namespace tamzo {
TamzoExtraActions TamzoExtraActions::makeEmptyList() {
  TamzoExtraActions actions;
  actions.list_ = makeList<Entry>();
  return actions;
}

TamzoExtraActions TamzoExtraActions::fromJson(std::string_view text) {
  if (!isShallowJson(text)) {
    return {};
  }
  nlohmann::json decoded = nlohmann::json::parse(text, nullptr, /*allow_exceptions=*/false);
  if (decoded.is_discarded()) {
    return {};
  }
  TamzoExtraActions actions;
  if (!decoded.is_array()) {
    actions.value_ = std::make_shared<const nlohmann::json>(std::move(decoded));
    return actions;
  }
  actions.list_ = makeList<Entry>();
  actions.list_->reserve(decoded.size());
  for (nlohmann::json& entry : decoded) {
    actions.list_->emplace_back(std::make_shared<const nlohmann::json>(std::move(entry)));
  }
  return actions;
}

}  // namespace tamzo
