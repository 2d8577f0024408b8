#pragma once

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

#include "tamzo/base/Export.h"

namespace tamzo {

/// Immutable, shared UTF-8 text that may be nil. Nil is not "": a property that was never written
/// is nil, one that was written with an empty text is "".
///
/// A text is a view together with a share in whatever keeps its characters alive: an own string, a
/// parsed document, or nothing at all for a literal. Copying a text copies no characters. A text
/// that was read from a document therefore keeps that document's tree alive.
///
/// Reading one text from several threads is safe, and so is copying it; assigning to it is not.
class TAMZO_EXPORT Text {
 public:
  /// Nil.
  Text() noexcept = default;
  /// Nil.
  Text(std::nullptr_t) noexcept {}  // NOLINT(google-explicit-constructor)

  /// Copies the characters. A null pointer gives nil.
  Text(const char* characters)  // NOLINT(google-explicit-constructor)
      : Text(characters == nullptr ? Text() : Text(std::string_view(characters))) {}
  /// Copies the characters; empty ones give "".
  Text(std::string_view characters);  // NOLINT(google-explicit-constructor)

  /// Takes the string over without copying its characters.
  Text(std::string&& characters);  // NOLINT(google-explicit-constructor)
  /// Copies the characters.
  Text(const std::string& characters)  // NOLINT(google-explicit-constructor)
      : Text(std::string_view(characters)) {}

  /// A text of static storage duration: nothing is copied, nothing is counted.
  template <std::size_t N>
  static Text literal(const char (&characters)[N]) noexcept {
    return Text(std::string_view(characters, N - 1), nullptr, true);
  }

  /// A view into memory that `owner` keeps alive. The memory must not change any more.
  static Text sharing(std::string_view characters, std::shared_ptr<const void> owner) noexcept {
    return characters.empty() ? literal("") : Text(characters, std::move(owner), false);
  }

  /// A part of this text, sharing its characters. `part` must lie within `view()`.
  Text part(std::string_view part) const {
    return isGrowable() ? Text(part) : sharing(part, owner_);
  }

  /// True for a text that was never written, which is not the same as "".
  bool isNil() const noexcept { return view_.data() == nullptr && owner_ == nullptr; }

  /// True when the text is neither nil nor "".
  bool hasCharacters() const noexcept { return !view().empty(); }

  /// The characters; empty for nil. Valid as long as this text, or a copy of it, lives (and, for
  /// the text of a MutableText, until the next append).
  std::string_view view() const noexcept {
    return isGrowable() ? std::string_view(*static_cast<const std::string*>(owner_.get())) : view_;
  }
  /// view(), so that a text goes wherever a view does.
  operator std::string_view() const noexcept { return view(); }  // NOLINT

  /// True when a NUL is known to follow the characters, as after those of a string.
  bool isTerminated() const noexcept { return isTerminated_; }

  /// True when both are the very same object (both nil, or the same characters in memory).
  bool isSameObject(const Text& other) const noexcept {
    return owner_ == other.owner_ && view_.data() == other.view_.data() &&
           view_.size() == other.view_.size();
  }

  /// Equal characters. Nil equals nil only.
  friend bool operator==(const Text& a, const Text& b) noexcept {
    return a.isNil() == b.isNil() && a.view() == b.view();
  }
  friend std::ostream& operator<<(std::ostream& out, const Text& text) {
    return text.isNil() ? out << "nil" : out << '"' << text.view() << '"';
  }

 private:
  friend class MutableText;

  Text(std::string_view characters, std::shared_ptr<const void> owner, bool isTerminated) noexcept
      : view_(characters), owner_(std::move(owner)), isTerminated_(isTerminated) {}

  // A growable text has no fixed view: it is read through its owner, a std::string.
  bool isGrowable() const noexcept { return view_.data() == nullptr && owner_ != nullptr; }

  std::string_view view_;
  std::shared_ptr<const void> owner_;
  bool isTerminated_ = false;
};

/// A shared handle to a text that grows. `asText()` is the same object seen as a Text: what is
/// appended later shows there too. Nil until `create()`. Not safe to append to while another
/// thread reads.
class TAMZO_EXPORT MutableText {
 public:
  MutableText() noexcept = default;

  /// A new empty text.
  static MutableText create();

  /// True until create() made it.
  bool isNil() const noexcept { return characters_ == nullptr; }
  /// What was appended so far; empty for nil. Valid until the next append.
  std::string_view view() const noexcept {
    return characters_ == nullptr ? std::string_view() : std::string_view(*characters_);
  }

  /// Appends to every handle of this text; does nothing on nil.
  void appendString(std::string_view more);

  /// The same object as a Text, nil when this is nil.
  Text asText() const noexcept {
    return Text(std::string_view(), characters_, characters_ != nullptr);
  }

  friend bool operator==(const MutableText& a, const MutableText& b) noexcept {
    return a.isNil() == b.isNil() && a.view() == b.view();
  }

 private:
  std::shared_ptr<std::string> characters_;
};

}  // namespace tamzo
