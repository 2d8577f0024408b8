#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "tamzo/base/Export.h"
#include "tamzo/base/Text.h"

namespace tamzo {

/// A decoded JSON value, or nil where there is none: JSON's `null` is a value. A shared handle that
/// cannot be changed: copies are cheap and show the same value, entries of a list or a map keep the
/// whole document alive, and reading one from several threads is safe.
///
/// Asking a value for what it is not is harmless: it gives false, 0 or nil. Nothing but `parse` and
/// `dump` allocates; these two throw std::bad_alloc.
class TAMZO_EXPORT JsonValue {
 public:
  /// What a value is.
  enum class Kind {
    null,     ///< JSON's `null`
    boolean,  ///< `true` or `false`
    number,   ///< an integer or a fraction
    text,     ///< a string
    list,     ///< an array
    map,      ///< an object
  };

  /// Nil.
  JsonValue() noexcept = default;

  /// What a JSON text holds, top-level scalars allowed; nil when it is nil or malformed. Nesting
  /// deeper than 512, a number beyond a double's range and half a surrogate pair count as
  /// malformed; a byte order mark in front does not. Of several members of one name in a map the
  /// last counts, and the others are dropped.
  static JsonValue parse(const Text& json);

  /// True where there is no value, which is not the same as JSON's `null`.
  bool isNil() const noexcept { return node_ == nullptr; }
  /// Kind::null for nil too.
  Kind kind() const noexcept;

  /// False unless this is `true`.
  bool asBool() const noexcept;
  /// 0 unless this is a number.
  double asNumber() const noexcept;
  /// The number without its fraction, held within 64 bits; 0 unless this is a number. Integers that
  /// the type holds are exact.
  std::int64_t asInteger() const noexcept;
  /// Nil unless this is a text. UTF-8; shares the document's memory.
  Text asText() const noexcept;

  /// Entries of a list or a map, which stand in the order of the document; 0 for anything else.
  std::size_t size() const noexcept;
  /// An entry of a list, or the value of a member of a map; nil beyond the last.
  JsonValue at(std::size_t index) const noexcept;
  /// The name of a member of a map; nil beyond the last.
  Text keyAt(std::size_t index) const noexcept;
  /// The member of that name, found in time linear in the size; nil when there is none.
  JsonValue find(std::string_view key) const noexcept;

  /// The value as JSON text without white space, members in the document's order; "null" for nil.
  std::string dump() const;

  /// The very same value: copies of one handle, or the same entry of one document. Nil equals nil.
  friend bool operator==(const JsonValue& a, const JsonValue& b) noexcept {
    return a.node_ == b.node_;
  }

 private:
  explicit JsonValue(std::shared_ptr<const void> node) noexcept : node_(std::move(node)) {}
  TAMZO_HIDDEN JsonValue part(const void* node) const noexcept;

  std::shared_ptr<const void> node_;
};

}  // namespace tamzo
