#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

#include "tamzo/base/Export.h"

namespace tamzo {

/// The characters of a string literal, or of an array of constants that ends in a NUL: what is made
/// while the program runs does not compile.
class Literal {
 public:
  /// Of that literal, without its last NUL.
  template <std::size_t N>
  consteval Literal(const char (&characters)[N])  // NOLINT(google-explicit-constructor)
      : view_(characters, N - 1) {
    if (characters[N - 1] != '\0') {
      throw "a literal ends in a NUL";
    }
  }

  /// The characters, which live as long as the program does.
  constexpr std::string_view view() const noexcept { return view_; }

 private:
  std::string_view view_;
};

class Text;

/// What is compared with a Text by its characters: a string or a view.
template <typename T>
concept Characters =
    !std::same_as<T, Text> && std::is_class_v<T> && std::convertible_to<const T&, std::string_view>;

/// Immutable, shared UTF-8 text that may be nil. Nil is not "": a property that was never written
/// is nil, one that was written with an empty text is "".
///
/// A text is a view together with a share in whatever keeps its characters alive: an own string, a
/// parsed document, or nothing at all for a literal. Copying a text copies no characters. A text
/// that was read from a document therefore keeps that document's tree alive. A text that was moved
/// away is nil.
///
/// Texts are ordered by their bytes, nil before "", and go into std::map and std::unordered_map;
/// the text of a MutableText is no key, since it changes.
///
/// What copies characters throws std::bad_alloc, and nothing else throws.
///
/// Reading one text from several threads is safe, and so is copying it; assigning to it is not.
class TAMZO_EXPORT Text {
 public:
  /// Nil.
  Text() noexcept = default;
  /// Nil.
  Text(std::nullptr_t) noexcept {}  // NOLINT(google-explicit-constructor)
  /// Shares the characters.
  Text(const Text&) noexcept = default;
  /// Shares the characters.
  Text& operator=(const Text&) noexcept = default;
  /// Leaves `other` nil.
  Text(Text&& other) noexcept
      : view_(std::exchange(other.view_, {})),
        owner_(std::move(other.owner_)),
        isTerminated_(std::exchange(other.isTerminated_, false)) {}
  /// Leaves `other` nil, unless it is this one.
  Text& operator=(Text&& other) noexcept {
    Text taken(std::move(other));
    owner_.swap(taken.owner_);
    view_ = taken.view_;
    isTerminated_ = taken.isTerminated_;
    return *this;
  }

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
  static Text literal(Literal characters) noexcept {
    return Text(characters.view(), nullptr, true);
  }

  /// A view into memory that `owner` keeps alive. The memory must not change any more.
  static Text sharing(std::string_view characters, std::shared_ptr<const void> owner) noexcept {
    return characters.empty() ? literal("") : Text(characters, std::move(owner), false);
  }

  /// A part of this text, sharing its characters. Copies a part that does not lie within view(),
  /// and one of a MutableText.
  Text part(std::string_view part) const {
    return holds(part) ? sharing(part, owner_) : Text(part);
  }

  /// True for a text that was never written, which is not the same as "".
  bool isNil() const noexcept { return view_.data() == nullptr && owner_ == nullptr; }

  /// True when the text is neither nil nor "".
  bool hasCharacters() const noexcept { return !view().empty(); }

  /// The characters; empty for nil. Valid as long as this text, or a copy of it, lives (and, for
  /// the text of a MutableText, until the next append).
  std::string_view view() const noexcept TAMZO_LIFETIMEBOUND {
    return isGrowable() ? std::string_view(*static_cast<const std::string*>(owner_.get())) : view_;
  }
  /// view(), so that a text goes wherever a view does.
  operator std::string_view() const noexcept TAMZO_LIFETIMEBOUND { return view(); }  // NOLINT

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
  /// The same with a string or a view, which are never nil.
  template <Characters T>
  friend bool operator==(const Text& a, const T& b) noexcept {
    return !a.isNil() && a.view() == std::string_view(b);
  }
  /// The same with characters that end in a NUL; a null pointer is nil.
  friend bool operator==(const Text& a, const char* b) noexcept {
    return b == nullptr ? a.isNil() : !a.isNil() && a.view() == b;
  }

  /// By their bytes, nil before everything else.
  friend std::strong_ordering operator<=>(const Text& a, const Text& b) noexcept {
    return a.isNil() || b.isNil() ? b.isNil() <=> a.isNil() : a.view().compare(b.view()) <=> 0;
  }
  /// The same with a string or a view, which are never nil.
  template <Characters T>
  friend std::strong_ordering operator<=>(const Text& a, const T& b) noexcept {
    return a.isNil() ? std::strong_ordering::less : a.view().compare(std::string_view(b)) <=> 0;
  }
  /// The same with characters that end in a NUL; a null pointer is nil.
  friend std::strong_ordering operator<=>(const Text& a, const char* b) noexcept {
    return b == nullptr ? a <=> Text() : a <=> std::string_view(b);
  }

  /// For people: "nil", or the characters in quotes.
  friend std::ostream& operator<<(std::ostream& out, const Text& text) {
    return text.isNil() ? out << "nil" : out << '"' << text.view() << '"';
  }

 private:
  friend class MutableText;

  Text(std::string_view characters, std::shared_ptr<const void> owner, bool isTerminated) noexcept
      : view_(characters), owner_(std::move(owner)), isTerminated_(isTerminated) {}

  // A growable text has no fixed view: it is read through its owner, a std::string.
  bool isGrowable() const noexcept { return view_.data() == nullptr && owner_ != nullptr; }

  bool holds(std::string_view part) const noexcept {
    const std::less_equal<const char*> isNotAfter;
    return isNotAfter(view_.data(), part.data()) &&
           isNotAfter(part.data() + part.size(), view_.data() + view_.size());
  }

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

  /// A new empty text. Throws std::bad_alloc.
  static MutableText create();

  /// True until create() made it.
  bool isNil() const noexcept { return characters_ == nullptr; }
  /// What was appended so far; empty for nil. Valid until the next append.
  std::string_view view() const noexcept TAMZO_LIFETIMEBOUND {
    return characters_ == nullptr ? std::string_view() : std::string_view(*characters_);
  }

  /// Appends to every handle of this text; does nothing on nil. `more` may be a part of the text
  /// itself. Throws std::bad_alloc, and then has appended nothing.
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

// Doxygen does not find the template that this is one of.
/// @cond
/// Equal texts have equal hashes; nil has one of its own.
template <>
struct std::hash<tamzo::Text> {
  /// The hash of a text as it stands.
  std::size_t operator()(const tamzo::Text& text) const noexcept {
    return text.isNil() ? ~std::size_t{0} : std::hash<std::string_view>()(text.view());
  }
};
/// @endcond
