#include "xml/XPathCost.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "base/Ascii.h"
#include "xml/Markup.h"

namespace tamzo {
namespace {

enum class Kind {
  end,
  name,
  number,
  literal,
  slash,
  twoSlashes,
  dot,
  open,
  close,
  comma,
  comparison,
  other
};

struct Token {
  Kind kind = Kind::end;
  std::string_view text;
};

bool isOneOf(char c, std::string_view set) noexcept {
  return set.find(c) != std::string_view::npos;
}
// Letters beyond ASCII are taken for parts of names.
bool isNameStart(char c) noexcept { return isAsciiLetter(c) || c == '_' || isBeyondAscii(c); }
bool isNamePart(char c) noexcept {
  return isNameStart(c) || isAsciiDigit(c) || c == '-' || c == '.';
}

class Tokens {
 public:
  explicit Tokens(std::string_view text) noexcept : rest_(text) {}

  Token next() noexcept {
    skipBlanks();
    if (rest_.empty()) {
      return {};
    }
    const char c = rest_.front();
    if (isNameStart(c)) {
      return take(Kind::name, lengthOf(isNamePart));
    }
    if (isAsciiDigit(c)) {
      return take(Kind::number, lengthOf([](char d) { return isAsciiDigit(d) || d == '.'; }));
    }
    if (c == '"' || c == '\'') {
      const std::size_t end = rest_.find(c, 1);
      return end == std::string_view::npos ? take(Kind::other, rest_.size())
                                           : take(Kind::literal, end + 1);
    }
    if (c == '/') {
      return rest_.starts_with("//") ? take(Kind::twoSlashes, 2) : take(Kind::slash, 1);
    }
    if (isOneOf(c, "=<>!")) {
      return take(Kind::comparison, lengthOf([](char d) { return isOneOf(d, "=<>!"); }));
    }
    return take(kindOf(c), rest_.starts_with("..") || rest_.starts_with("::") ? 2 : 1);
  }

  Token peek() const noexcept { return Tokens(*this).next(); }

 private:
  Kind kindOf(char c) const noexcept {
    switch (c) {
      case '.':
        return rest_.starts_with("..") ? Kind::other : Kind::dot;
      case '(':
      case '[':
        return Kind::open;
      case ')':
      case ']':
        return Kind::close;
      case ',':
        return Kind::comma;
      default:
        return Kind::other;
    }
  }

  void skipBlanks() noexcept {
    while (!rest_.empty() && isXmlBlank(rest_.front())) {
      rest_.remove_prefix(1);
    }
  }

  template <typename Is>
  std::size_t lengthOf(Is is) const noexcept {
    return static_cast<std::size_t>(std::find_if_not(rest_.begin(), rest_.end(), is) -
                                    rest_.begin());
  }

  Token take(Kind kind, std::size_t length) noexcept {
    const Token token{kind, rest_.substr(0, length)};
    rest_.remove_prefix(length);
    return token;
  }

  std::string_view rest_;
};

// Names before "(". Tests of kinds of nodes are not among them.
constexpr std::array<std::string_view, 17> kEvenFunctions{
    "boolean", "ceiling",    "concat", "count",         "false", "floor",
    "last",    "local-name", "name",   "namespace-uri", "not",   "normalize-space",
    "number",  "position",   "round",  "string-length", "true"};
constexpr std::array<std::string_view, 4> kSearches{"contains", "starts-with", "substring-after",
                                                    "substring-before"};
constexpr std::array<std::string_view, 3> kEvenAxes{"attribute", "child", "self"};
constexpr std::array<std::string_view, 4> kOperators{"and", "div", "mod", "or"};

template <typename List>
bool isIn(const List& list, std::string_view name) noexcept {
  return std::find(list.begin(), list.end(), name) != list.end();
}

bool isConstant(const Token& token) noexcept {
  return token.kind == Kind::literal || token.kind == Kind::number;
}

/// Follows one expression from token to token.
class Reader {
 public:
  XPathCost costOf(const Token& token, const Token& next) noexcept {
    const Place place = place_;
    const bool isFirstDot = std::exchange(isFirstDot_, false);
    const Token last = std::exchange(last_, token);
    place_ = placeAfter(token);
    switch (token.kind) {
      case Kind::name:
        return costOfName(token.text, next.text, place);
      case Kind::dot:
        isFirstDot_ = place == Place::begin;
        return XPathCost::even;
      case Kind::slash:
        // In a predicate it goes back to the whole document for every node.
        return evenIf(place != Place::begin || predicates_ == 0);
      case Kind::twoSlashes:
        // From one node it costs what it finds.
        return evenIf(place == Place::begin ? predicates_ == 0 : isFirstDot);
      case Kind::comparison:
        return evenIf(isConstant(last) || isConstant(next));
      case Kind::comma:
        return isConstant(next) ? XPathCost::even : XPathCost::bySquareOfText;
      case Kind::open:
      case Kind::close:
        predicates_ += token.text == "[" ? 1 : token.text == "]" ? -1 : 0;
        return XPathCost::even;
      case Kind::other:
        return evenIf(token.text == "::" || isOneOf(token.text.front(), "@*+-:"));
      default:
        return XPathCost::even;
    }
  }

 private:
  // At the begin of an operand, in a path behind "/", "@" or an axis, or behind an operand.
  enum class Place { begin, step, behind };

  static XPathCost evenIf(bool isEven) noexcept {
    return isEven ? XPathCost::even : XPathCost::byNode;
  }

  static XPathCost costOfName(std::string_view name, std::string_view next, Place place) noexcept {
    if (place == Place::behind) {
      return evenIf(isIn(kOperators, name));
    }
    if (next == "(") {
      return name == "translate" ? XPathCost::bySquareOfText
                                 : evenIf(isIn(kEvenFunctions, name) || isIn(kSearches, name));
    }
    return evenIf(next != "::" || isIn(kEvenAxes, name));
  }

  Place placeAfter(const Token& token) const noexcept {
    switch (token.kind) {
      case Kind::name:
      case Kind::number:
      case Kind::literal:
      case Kind::dot:
      case Kind::close:
        return token.kind == Kind::name && place_ == Place::behind ? Place::begin : Place::behind;
      case Kind::slash:
      case Kind::twoSlashes:
        return Place::step;
      case Kind::other:
        if (token.text == "*") {
          return place_ == Place::behind ? Place::begin : Place::behind;
        }
        return isOneOf(token.text.front(), "@:") ? Place::step : Place::begin;
      default:
        return Place::begin;
    }
  }

  Token last_;
  Place place_ = Place::begin;
  int predicates_ = 0;
  bool isFirstDot_ = false;
};

}  // namespace

XPathCost costOfSteps(std::string_view expression) noexcept {
  XPathCost most = XPathCost::even;
  Tokens tokens(expression);
  Reader reader;
  for (Token token = tokens.next(); token.kind != Kind::end; token = tokens.next()) {
    most = std::max(most, reader.costOf(token, tokens.peek()));
  }
  return most;
}

}  // namespace tamzo
