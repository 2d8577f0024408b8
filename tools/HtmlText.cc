#include "tools/HtmlText.h"

#include <fmt/format.h>

#include "base/Utf8.h"

namespace tamzo::command {
namespace {

constexpr std::string_view kStyle = R"(
:root{color-scheme:light dark;--bg:#fff;--fg:#1b1f24;--dim:#59636e;--line:#d1d9e0;--box:#f6f8fa;
--bad:#b3261e;--good:#1a7f37;--warn:#8a5a00;--mark:#ffe58a;--markfg:#1b1f24;--bar:#3f7fd1}
@media(prefers-color-scheme:dark){:root{--bg:#0d1117;--fg:#e6edf3;--dim:#9da7b1;--line:#3d444d;
--box:#161b22;--bad:#ff8b82;--good:#56d364;--warn:#e3b341;--mark:#6b5200;--markfg:#fff;
--bar:#5a9bf0}}
*{box-sizing:border-box}
body{margin:0 auto;padding:1rem;max-width:72rem;background:var(--bg);color:var(--fg);
font:16px/1.5 system-ui,sans-serif;overflow-wrap:anywhere}
h1{font-size:1.4rem;line-height:1.3;margin:.2rem 0}
h2{font-size:1.1rem;margin:1.2rem 0 .4rem}
.verdict{font-weight:700}.failed,.nothing-to-play,.error{color:var(--bad)}
.playable{color:var(--good)}.warning{color:var(--warn)}.note,.dim{color:var(--dim)}
code,pre{font:13px/1.5 ui-monospace,monospace}
.chain{display:flex;flex-wrap:wrap;gap:.6rem;list-style:none;padding:0;margin:.8rem 0}
.chain li{border:1px solid var(--line);border-radius:.5rem;background:var(--box);
padding:.5rem .7rem;min-width:10rem;max-width:18rem;flex:1 1 10rem}
.chain li.bad{border-color:var(--bad);border-width:2px}
.facts{display:grid;grid-template-columns:repeat(auto-fill,minmax(11rem,1fr));gap:.3rem 1rem;margin:0}
.facts div{border-top:1px solid var(--line);padding:.2rem 0}
.facts dt{color:var(--dim);font-size:.85rem}.facts dd{margin:0}
details{border:1px solid var(--line);border-radius:.5rem;margin:.6rem 0;background:var(--bg)}
summary{cursor:pointer;padding:.5rem .7rem;font-weight:600;background:var(--box);border-radius:.5rem}
:focus-visible{outline:3px solid var(--bar);outline-offset:2px}
details>div{padding:.5rem .7rem;overflow-x:auto}
table{border-collapse:collapse;width:100%;font-size:.9rem}
th,td{text-align:left;vertical-align:top;padding:.25rem .6rem .25rem 0;border-top:1px solid var(--line)}
th{color:var(--dim);font-weight:600;white-space:nowrap}
td{min-width:3rem}td.num{white-space:nowrap}
.source{display:flex;border-top:1px solid var(--line);overflow-x:auto}
.source pre{margin:0;padding:.4rem;white-space:pre;overflow-wrap:normal}
.source pre:first-child{color:var(--dim);text-align:right;border-right:1px solid var(--line);
user-select:none;flex:none}
mark{background:var(--mark);color:var(--markfg);outline:2px solid var(--bad);border-radius:2px}
pre.plain{white-space:pre-wrap;margin:0}
.excerpt{background:var(--box);border:1px solid var(--line);border-radius:.5rem;padding:.5rem;
white-space:pre-wrap;margin:.5rem 0}
svg{max-width:100%;height:auto;font:12px system-ui,sans-serif}
svg text{fill:var(--fg)}.bar{fill:var(--bar)}.axis{stroke:var(--line);fill:none}
.ad{fill:var(--box);stroke:var(--bar)}
button,input{font:inherit;color:inherit;background:var(--box);border:1px solid var(--line);
border-radius:.3rem;padding:.2rem .5rem}
th button{border:0;background:none;padding:0;font-weight:600;cursor:pointer;color:inherit}
.charts{display:grid;grid-template-columns:repeat(auto-fit,minmax(18rem,1fr));gap:1rem}
@media(max-width:40rem){body{padding:.6rem}.chain li{max-width:none}}
@media print{body{max-width:none}details{break-inside:avoid;border:0}
details::details-content{content-visibility:visible;display:block}
.source,details>div{overflow:visible}.source pre{white-space:pre-wrap}}
)";

// Seen by nobody, or turning around what is.
bool isHidden(char32_t c) noexcept {
  const bool isControl = (c < 0x20 && c != '\n' && c != '\t') || (c >= 0x7F && c < 0xA0);
  const bool isInvisible = c == 0xAD || (c >= 0x200B && c <= 0x200F) ||
                           (c >= 0x2028 && c <= 0x202E) || (c >= 0x2060 && c <= 0x206F) ||
                           c == 0xFEFF || c == 0x61C || c == 0x180E ||
                           (c >= 0xFFF9 && c <= 0xFFFB) || (c >= 0xE0000 && c <= 0xE007F);
  return isControl || isInvisible;
}

}  // namespace

std::string htmlText(std::string_view text) {
  std::string html;
  html.reserve(text.size() + text.size() / 8);
  for (std::size_t at = 0; at < text.size();) {
    const char c = text[at];
    if (c == '&' || c == '<' || c == '>' || c == '"' || c == '\'') {
      html += c == '&'   ? "&amp;"
              : c == '<' ? "&lt;"
              : c == '>' ? "&gt;"
              : c == '"' ? "&quot;"
                         : "&#39;";
      ++at;
      continue;
    }
    const Character character = characterAt(text, at);
    if (isHidden(character.value)) {
      html += fmt::format("\\u{:04x}", static_cast<std::uint32_t>(character.value));
    } else if (!utf8SequenceAt(text, at).isCharacter) {
      html += "\xEF\xBF\xBD";
    } else {
      html += text.substr(at, character.bytes);
    }
    at += character.bytes;
  }
  return html;
}

std::string htmlHead(std::string_view title, std::string_view nonce) {
  const std::string scripts = nonce.empty() ? "" : fmt::format("script-src 'nonce-{}'; ", nonce);
  return fmt::format(
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; {}style-src "
      "'unsafe-inline'; base-uri 'none'; form-action 'none'\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<meta name=\"referrer\" content=\"no-referrer\">\n"
      "<title>{}</title>\n<style>{}</style>\n</head>\n<body>\n",
      scripts, htmlText(title), kStyle);
}

}  // namespace tamzo::command
