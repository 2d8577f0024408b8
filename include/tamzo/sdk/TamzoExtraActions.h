#pragma once

#include <memory>
#include <variant>

#include "tamzo/base/Export.h"
#include "tamzo/base/JsonValue.h"
#include "tamzo/base/List.h"
#include "tamzo/base/Text.h"
#include "tamzo/xml/DDXMLElement.h"

namespace tamzo {

/// The extra actions of an ad: nil, a list whose entries are Icon elements and decoded JSON values
/// side by side, or, where the ad server sent JSON that is no list, that one value. A shared
/// handle: copies see the same list. Reading one from several threads is safe.
class TAMZO_EXPORT TamzoExtraActions {
 public:
  /// A decoded JSON value, or an Icon element of a Linear.
  using Entry = std::variant<JsonValue, DDXMLElement>;

  /// Nil.
  TamzoExtraActions() noexcept = default;

  /// A list without entries, which is not nil.
  static TamzoExtraActions makeEmptyList();

  /// What a JSON text holds, as JsonValue::parse reads it: nil when the text is malformed. The text
  /// is decoded when it is first asked for: a vendor block may overwrite it before. Whichever
  /// function asks first may throw std::bad_alloc; the next one tries again.
  static TamzoExtraActions fromJson(Text text);

  /// True before anything was set, and for malformed JSON.
  bool isNil() const;
  /// True for a list, an empty one included.
  bool isList() const { return list() != nullptr; }

  /// The entries; null unless this is a list.
  const List<Entry>& list() const TAMZO_LIFETIMEBOUND;
  /// The decoded value; nil unless this is JSON that is no list.
  const JsonValue& value() const TAMZO_LIFETIMEBOUND;

 private:
  struct TAMZO_HIDDEN Content;
  TAMZO_HIDDEN const Content* decoded() const;

  std::shared_ptr<Content> content_;
};

}  // namespace tamzo
