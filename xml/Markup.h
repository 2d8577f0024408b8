#pragma once

#include <cstddef>
#include <string_view>

namespace tamzo {

// Where pieces of markup end, for what is looked at before libxml2 reads it.

/// Past the first `end` at or after `from`; the text's size when there is none.
inline std::size_t pastFirst(std::string_view text, std::string_view end,
                             std::size_t from) noexcept {
  const std::size_t at = text.find(end, from);
  return at == std::string_view::npos ? text.size() : at + end.size();
}

/// Past the ">" that ends the markup at `at`; one in quotes does not. `goOn` is given each
/// character outside quotes and where the next one stands, and says where to go on.
template <typename GoOn>
std::size_t pastMarkup(std::string_view text, std::size_t at, GoOn goOn) noexcept {
  while (at < text.size()) {
    const char c = text[at++];
    if (c == '>') {
      break;
    }
    at = c == '"' || c == '\'' ? pastFirst(text, std::string_view(&c, 1), at) : goOn(c, at);
  }
  return at;
}

/// Past the ">" of the tag or declaration that begins at `at`. Calls `visit` with each character
/// outside quotes.
template <typename Visit>
std::size_t pastTag(std::string_view text, std::size_t at, Visit visit) noexcept {
  return pastMarkup(text, at, [&visit](char c, std::size_t next) {
    visit(c);
    return next;
  });
}

/// Past the comment or processing instruction at `at`; `at` itself where none begins.
inline std::size_t pastRemark(std::string_view text, std::size_t at) noexcept {
  const std::string_view rest = text.substr(at);
  if (rest.starts_with("<!--")) {
    return pastFirst(text, "-->", at + 4);
  }
  return rest.starts_with("<?") ? pastFirst(text, "?>", at + 2) : at;
}

}  // namespace tamzo
