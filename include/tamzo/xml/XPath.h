#pragma once

#include <concepts>
#include <cstddef>
#include <string_view>
#include <type_traits>

#include "tamzo/base/Export.h"

namespace tamzo {

/// An XPath 1.0 expression. It is of one of two kinds: a path of plain child names ("Icons/Icon",
/// "/VAST/Ad"), which is walked over the tree at next to no cost, or anything else, which libxml2
/// evaluates. Which of the two is settled when the XPath is made: for a literal, when the program
/// is compiled.
///
/// Holds a view of the text it was made from, which must outlive it: a literal does, and no XPath
/// is made of a string or a Text that is gone at the end of the line. A plain value without locks.
class XPath {
 public:
  /// Of a literal, which may stand wherever an XPath is asked for.
  template <std::size_t N>
  consteval XPath(const char (&literal)[N])  // NOLINT(google-explicit-constructor)
      : XPath(std::string_view(literal, N - 1)) {
    if (literal[N - 1] != '\0') {
      throw "a literal ends in a NUL";
    }
  }

  /// Of a text that is made while the program runs, malformed ones included.
  explicit constexpr XPath(std::string_view text TAMZO_LIFETIMEBOUND) noexcept : text_(text) {
    isAbsolute_ = !text.empty() && text.front() == '/';
    steps_ = isAbsolute_ ? text.substr(1) : text;
    isChildPath_ = isPathOfNames(steps_);
  }

  // The requirement leaves copies and moves alone.
  template <typename T>
  requires(std::is_class_v<T> && !std::same_as<std::remove_const_t<T>, std::string_view> &&
           std::convertible_to<T, std::string_view>)
      // NOLINTNEXTLINE(bugprone-forwarding-reference-overload)
      explicit XPath(T&&) = delete;  ///< It would view what is gone.

  /// The expression as it was given.
  constexpr std::string_view text() const noexcept { return text_; }

  /// True for names joined by "/", with or without a leading "/".
  constexpr bool isChildPath() const noexcept { return isChildPath_; }
  /// True for an expression with a leading "/", which starts at the document whatever is asked.
  constexpr bool isAbsolute() const noexcept { return isAbsolute_; }
  /// True for a child path that starts at the node that is asked: without children it finds none.
  constexpr bool isBelowContext() const noexcept { return isChildPath_ && !isAbsolute_; }
  /// The path without a leading "/".
  constexpr std::string_view steps() const noexcept { return steps_; }

  /// The first name of a path without a leading "/".
  static constexpr std::string_view firstStep(std::string_view steps) noexcept {
    return steps.substr(0, steps.find('/'));
  }

 private:
  // ASCII names only; a path with other letters is left to libxml2, which knows which are letters.
  static constexpr bool startsName(char c) noexcept {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
  }
  static constexpr bool continuesName(char c) noexcept {
    return startsName(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
  }
  static constexpr bool isPathOfNames(std::string_view steps) noexcept {
    bool atStart = true;
    for (const char c : steps) {
      if (atStart ? !startsName(c) : (c != '/' && !continuesName(c))) {
        return false;
      }
      atStart = !atStart && c == '/';
    }
    return !atStart;
  }

  std::string_view text_;
  std::string_view steps_;
  bool isAbsolute_ = false;
  bool isChildPath_ = false;
};

}  // namespace tamzo
