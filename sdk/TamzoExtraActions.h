#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string_view>
#include <variant>

#include "sdk/List.h"
#include "xml/DDXMLElement.h"
#include "xml/Export.h"

namespace tamzo {

/// The extra actions of an ad: nil, a list whose entries are Icon elements and decoded JSON values
/// side by side, or, where the ad server sent JSON that is no list, that one value. A shared
/// handle: copies see the same list.
class TAMZO_EXPORT TamzoExtraActions {
 public:
  using JsonValue = std::shared_ptr<const nlohmann::json>;
  using Entry = std::variant<JsonValue, DDXMLElement>;

  /// Nil.
  TamzoExtraActions() noexcept = default;

  static TamzoExtraActions makeEmptyList();

  /// Decodes JSON, top-level scalars allowed. Nil when the text is malformed; nesting deeper than
  /// 512 counts as malformed.
  static TamzoExtraActions fromJson(std::string_view text);

  bool isNil() const noexcept { return list_ == nullptr && value_ == nullptr; }
  bool isList() const noexcept { return list_ != nullptr; }

  /// The entries; null unless this is a list.
  const List<Entry>& list() const noexcept { return list_; }
  /// The decoded value; null unless this is JSON that is no list.
  const JsonValue& value() const noexcept { return value_; }

 private:
  List<Entry> list_;
  JsonValue value_;
};

}  // namespace tamzo
