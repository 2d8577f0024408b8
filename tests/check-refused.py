"""Checks that the compiler refuses what the headers say does not compile.

    check-refused.py COMPILER FLAG...

Each case is a pair of statements that differ in what is wrong alone: the first must compile. What
only a lifetime analysis can tell is tried with clang.
"""

import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

# Name, what compiles, what does not.
REFUSED = [
    ("a literal is no buffer", 'Text::literal("abc")', "Text::literal(buffer)"),
    ("a literal does not change", 'Text::literal("abc")', "Text::literal(changing)"),
    ("a literal is no pointer", "Text copy(pointer)", "Text::literal(pointer)"),
    ("a literal ends in a NUL", 'Text::literal("abc")', "Text::literal(kUnterminated)"),
    ("a stored path is no buffer", 'const XPath path("abc")', "const XPath path = buffer"),
    ("a path does not change", 'element.nodesForXPath("abc")', "element.nodesForXPath(changing)"),
    ("a path ends in a NUL", 'element.nodesForXPath("abc")',
     "element.nodesForXPath(kUnterminated)"),
    ("a path views no string that goes", "const XPath path(string)",
     "const XPath path(std::string(string))"),
    ("a path views no text that goes", "const XPath path(text)", "const XPath path(Text(text))"),
    ("a record is not copied", "TamzoVastAd other", "TamzoVastAd other(ad)"),
    ("a record is not assigned", "TamzoVastAd other; use(other)", "TamzoVastAd other; other = ad"),
    ("a text is no flag", "ad.setIsImaEnabled(false)", 'ad.setIsImaEnabled("false")'),
]

# The same, where only what outlives what it is seen through makes the difference.
DANGLING = [
    ("a view of a text", "std::string_view v = text.view()", "std::string_view v = Text(text).view()"),
    ("a text as a view", "std::string_view v = text", "std::string_view v = Text(text)"),
    ("a view of a growable text", "std::string_view v = growing.view()",
     "std::string_view v = MutableText::create().view()"),
    ("a path of a view", "const XPath path{text.view()}", "const XPath path{Text(text).view()}"),
    ("the nodes of a list", "auto i = list.begin()", 'auto i = element.nodesForXPath("a").begin()'),
    ("the URL of an event", "const Text& url = event.url()",
     "const Text& url = TamzoTrackerEvent().url()"),
    ("the list of a name", 'const TrackerList& events = map.listFor("a")',
     'const TrackerList& events = TrackerMap().listFor("a")'),
    ("the companions of an ad", "const auto& all = companions.companions()",
     "const auto& all = TamzoCompanionAd().companions()"),
    ("the entries of extra actions", "const auto& all = actions.list()",
     "const auto& all = TamzoExtraActions().list()"),
]

PROGRAM = """
#include "tamzo/vast/RecordJson.h"
namespace tamzo {
static char changing[] = "abc";
constexpr char kUnterminated[] = {'a', 'b', 'c'};
void use(TamzoVastAd& ad);
void use(TamzoVastAd& ad, const char* pointer, const std::string& string, const Text& text,
         const DDXMLElement& element, const NodeList& list, const MutableText& growing,
         TamzoTrackerEvent& event, TrackerMap& map, TamzoCompanionAd& companions,
         TamzoExtraActions& actions) {
  char buffer[] = "abc";
  static_cast<void>(buffer);
  @
}
}
"""


def is_compiled(command, statements):
    """Whether a program with these statements compiles, and what the compiler said."""
    body = " ".join(f"{{ {statement}; }}" for statement in statements)
    done = subprocess.run([*command, "-Werror", "-fsyntax-only", "-xc++", "-"],
                          input=PROGRAM.replace("@", body), capture_output=True, text=True,
                          check=False)
    return done.returncode == 0, done.stderr


def main(command):
    is_clang = "clang" in subprocess.run([command[0], "--version"], capture_output=True, text=True,
                                         check=True).stdout
    cases = REFUSED + (DANGLING if is_clang else [])
    compiles, said = is_compiled(command, [good for _, good, _ in cases])
    if not compiles:
        print(f"what is right does not compile:\n{said}")
        return 1
    with ThreadPoolExecutor(2) as pool:
        verdicts = list(pool.map(lambda case: is_compiled(command, [case[2]])[0], cases))
    wrong = [f"{name}: compiles: {bad}" for (name, _, bad), verdict in zip(cases, verdicts) if verdict]
    print("\n".join(wrong))
    print(f"{len(cases)} cases, {len(wrong)} that should not compile do")
    return int(bool(wrong))


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
