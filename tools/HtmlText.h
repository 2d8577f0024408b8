#pragma once

#include <string>
#include <string_view>

namespace tamzo::command {

/// Any text as text of an HTML page, in an element or between quotes: markup loses its meaning, and
/// what is invisible or turns the text around is written as "\u202e". Line breaks and tabs stay.
std::string htmlText(std::string_view text);

/// The beginning of a page that loads nothing and runs nothing but what bears `nonce`; "" for a
/// page without script.
std::string htmlHead(std::string_view title, std::string_view nonce = "");

}  // namespace tamzo::command
