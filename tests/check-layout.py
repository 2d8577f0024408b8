"""Checks how the source tree is laid out.

    check-layout.py units     each unit has a test of its name, each test of a room a unit
    check-layout.py layers    includes go down the layers, and other libraries stay where they belong
    check-layout.py headers   the public headers are those that CMakeLists.txt lists
    check-layout.py ascii     code is ASCII, comments aside
    check-layout.py --self-test

A unit is a .cc file, or a header without one that holds code.
"""

import pathlib
import re
import sys
import tempfile

# What each room may include, besides itself.
ROOMS = {
    "base": set(),
    "xml": {"base"},
    "net": {"base"},
    "sdk": {"base", "xml", "net"},
    "vast": {"base", "xml", "net", "sdk"},
    "capi": {"base", "xml", "net", "sdk", "vast"},
    "explain": {"base", "xml", "net", "sdk", "vast", "capi"},
}
# Headers that are for C, in the folder above the others, and whose they are.
C_HEADERS = {("include", "tamzo", "tamzo_vast.h"): "capi",
             ("include", "tamzo", "tamzo_vast_explain.h"): "explain"}
# The bindings know the interface for C, and of the rest the table of properties alone.
LAYERS = ROOMS | {"tools": set(ROOMS), "bindings": {"capi"}}
# Other libraries that one room alone knows.
LIBRARIES = {"libxml/": "xml", "curl/": "net"}
SOURCES = [*LAYERS, "include", "bench", "fuzz", "tests", "examples"]

# Units whose test has another name or place, and why.
TESTED_ELSEWHERE = {
    "include/tamzo/vast/TamzoVastAd.h":
        ("tests/whole/RecordTest.cc", "the record's properties belong to no unit"),
    "base/JsonWriter.h": ("tests/vast/RecordJsonTest.cc", "the record is what it writes"),
    "base/RapidJson.h": ("tests/base/JsonReaderTest.cc", "what is changed of it shows in reading"),
    "capi/Boundary.h": ("tests/capi/RecordTest.cc", "what gets past it shows in a parse"),
    "capi/Objects.h": ("tests/capi/ElementsTest.cc", "what elements and texts are for C"),
    "sdk/HostInUse.h": ("tests/sdk/TamzoHostTest.cc", "a part of TamzoHost"),
    "include/tamzo/vast/TamzoVastAdProperties.h":
        ("tests/whole/RecordTest.cc", "written from the table of properties"),
    "explain/Explanation.cc": ("tests/explain/ExplainerTest.cc", "what an Explainer gives"),
    "explain/MediaReports.cc": ("tests/explain/ExplainerTest.cc", "a part of the explanation"),
    "explain/TrackerTally.cc": ("tests/explain/ExplainerTest.cc", "a part of the explanation"),
    "explain/ExplanationJson.cc": ("tests/explain/ExplainerTest.cc", "what is looked at there"),
    "explain/ExplainForC.cc":
        ("tests/explain/ExplainFromC.c", "a program in C is what it is for"),
    "explain/Words.cc": ("tests/explain/ExplainerTest.cc", "what sentences are made of"),
    "explain/Chain.cc": ("tests/explain/FindingsTest.cc", "what findings are looked for in"),
    "explain/SeenHop.cc": ("tests/explain/FindingsTest.cc", "what findings are looked for in"),
    "explain/Categories.cc": ("tests/explain/FindingsTest.cc", "what two findings compare"),
    "explain/FirstFault.cc": ("tests/explain/FindingsTest.cc", "what seven findings tell"),
    "explain/Names.h": ("tests/explain/FindingsTest.cc", "what findings list"),
    "explain/Names.cc": ("tests/explain/FindingsTest.cc", "what findings list"),
    "explain/TagText.cc": ("tests/explain/FindingsTest.cc", "what findings read of tags"),
    "explain/TrackerElements.cc": ("tests/explain/FindingsTest.cc", "where trackers stand"),
    "explain/MacroFilling.h": ("tests/explain/MacroFillingTest.cc", "a part of it"),
    "sdk/InlineVastMerge.cc":
        ("tests/sdk/TamzoVpaidXMLTest.cc", "a part of TamzoVpaidXML"),
}

# Folders whose units are tested together, and where.
TESTED_TOGETHER = {
    "explain/findings": "tests/explain/RulesTest.cc",  # with an example each, from docs/findings.md
}

# Includes against the rules, and why.
INCLUDED_ANYWAY = {
    ("bindings/java/jni/RecordBytes.cc", "vast/TamzoVastAdProperties.def"):
        "one line for each property",
}


def files(root, folders, patterns):
    found = (path for folder in folders for pattern in patterns
             for path in (root / folder).rglob(pattern) if path.is_file())
    return sorted(path.relative_to(root) for path in found)


def without_comments(text):
    # Literals first, so that a "//" inside of one opens no comment.
    token = re.compile(r'R"(\w*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])\''
                       r"|//[^\n]*|/\*.*?\*/", re.DOTALL)
    return token.sub(lambda m: re.sub(r"[^\n]", " ", m[0]) if m[0].startswith("/") else m[0], text)


def holds_code(path):
    body = r"\)\s*(?:const\s*)?(?:noexcept\s*)?(?:->[^;{]*)?(?::[^;{]*(?:\{[^{}]*\})?)?\{"
    return re.search(body, without_comments(path.read_text(encoding="utf-8"))) is not None


def room_of(path):
    parts = path.parts
    if parts in C_HEADERS:
        return C_HEADERS[parts]
    return parts[2] if parts[:2] == ("include", "tamzo") else parts[0]


def place_of(path):
    """Where a file stands in its room; the same for a public header and its unit."""
    parts = path.parts[2:] if path.parts[0] == "include" else path.parts
    return pathlib.PurePosixPath(*parts).with_suffix("")


def check_units(root, elsewhere=None):
    elsewhere = TESTED_ELSEWHERE if elsewhere is None else elsewhere
    headers = [path for path in files(root, [*ROOMS, "include"], ["*.h"])]
    sources = files(root, ROOMS, ["*.cc"])
    compiled = {place_of(path) for path in sources}
    units = sources + [path for path in headers
                       if place_of(path) not in compiled and holds_code(root / path)]
    if not units:
        yield "no unit found"
    for unit in units:
        place = place_of(unit)
        test = pathlib.PurePosixPath("tests", place.parent, place.name + "Test.cc")
        together = TESTED_TOGETHER.get(str(place.parent))
        if together is not None and (root / together).exists():
            continue
        other = elsewhere.get(str(unit), (None,))[0]
        if (root / test).exists():
            if other is not None:
                yield f"{unit}: has {test} and needs no exception"
        elif other is None or not (root / other).exists():
            yield f"{unit}: there is no {other or test}"
    for unit in elsewhere:
        if not (root / unit).exists():
            yield f"{unit}: does not exist and needs no exception"
    known = compiled | {place_of(path) for path in headers}
    for test in files(root, [f"tests/{room}" for room in ROOMS], ["*Test.cc"]):
        place = test.relative_to("tests")
        if place.with_name(place.name.removesuffix("Test.cc")) not in known:
            yield f"{test}: there is no unit of that name"


def complaint_of(root, path, name):
    """Why `path` must not include `name`; None when it may."""
    room = room_of(path)
    is_public = path.parts[0] == "include"
    for library, owner in LIBRARIES.items():
        if name.startswith(library) and (room != owner or is_public):
            return f"{library} belongs to the units of {owner}/"
    if name.startswith("tamzo/"):
        target = pathlib.PurePosixPath("include", name)
        is_generated = name == "tamzo/base/Version.h"
        if not is_generated and not (root / target).exists():
            return "there is no such header"
    elif name.split("/")[0] in SOURCES:
        target = pathlib.PurePosixPath(name)
        if is_public:
            return "a public header knows public headers only"
    elif is_public and not re.fullmatch(r"\w+|std(bool|def|int)\.h", name):
        return "a public header knows standard headers only, besides its like"
    else:
        return None
    other = room_of(target)
    if other != room and other not in LAYERS[room]:
        return f"{room}/ does not know {other}/"
    return None


def check_layers(root, anyway=None):
    anyway = INCLUDED_ANYWAY if anyway is None else anyway
    used = set()
    seen = 0
    for path in files(root, [*LAYERS, "include"], ["*.h", "*.cc", "*.def", "*.in"]):
        text = without_comments((root / path).read_text(encoding="utf-8"))
        for match in re.finditer(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]', text, re.MULTILINE):
            seen += 1
            complaint = complaint_of(root, path, match[1])
            if complaint is not None and (str(path), match[1]) in anyway:
                used.add((str(path), match[1]))
            elif complaint is not None:
                yield f"{path} includes {match[1]}: {complaint}"
    for path, name in anyway.keys() - used:
        yield f"{path} does not include {name} and needs no exception"
    if seen == 0:
        yield "no include found"


def check_headers(root):
    text = (root / "CMakeLists.txt").read_text(encoding="utf-8")
    match = re.search(r"set\(TAMZO_PUBLIC_HEADERS\s+(.*?)\)", text, re.DOTALL)
    listed = match[1].split() if match else []
    on_disk = {str(path) for path in files(root, ["include"], ["*"])}
    if not listed:
        yield "CMakeLists.txt lists no public header"
    for name in sorted(on_disk - set(listed)):
        yield f"{name}: not in TAMZO_PUBLIC_HEADERS"
    for name in sorted(set(listed) - on_disk):
        yield f"{name}: in TAMZO_PUBLIC_HEADERS, but there is no such file"
    for name in sorted({name for name in listed if listed.count(name) > 1}):
        yield f"{name}: twice in TAMZO_PUBLIC_HEADERS"


def check_ascii(root):
    paths = files(root, SOURCES, ["*.h", "*.cc", "*.def", "*.in"])
    if not paths:
        yield "no source found"
    for path in paths:
        text = without_comments((root / path).read_text(encoding="utf-8"))
        for number, line in enumerate(text.split("\n"), 1):
            if not line.isascii():
                yield f"{path}:{number}: a character beyond ASCII; write it as an escape"


CHECKS = {"units": check_units, "layers": check_layers, "headers": check_headers,
          "ascii": check_ascii}

# A tree in order, and changes that each check must notice: file, content or None to take it away,
# the check, and a part of what it says.
GOOD = {
    "CMakeLists.txt": "set(TAMZO_PUBLIC_HEADERS\n  include/tamzo/base/Text.h)\n",
    "include/tamzo/base/Text.h": "#include <memory>\nclass Text;  // ä\n",
    "base/Text.cc": '#include "tamzo/base/Text.h"\nconst char* s = "//";\n',
    "base/Slot.h": "inline int f() { return 1; }\n",
    "base/Names.h": "struct Names { int a; };\n",
    "xml/Tree.cc": '#include <libxml/tree.h>\n#include "base/Slot.h"\n',
    "net/Reader.cc": '#include <curl/curl.h>\n#include "tamzo/base/Version.h"\n',
    "vast/linear/Icons.cc": '#include "base/Slot.h"\n',
    "tools/main.cc": '#include "base/Slot.h"\n',
    "tests/base/TextTest.cc": "", "tests/base/SlotTest.cc": "", "tests/xml/TreeTest.cc": "",
    "tests/net/ReaderTest.cc": "", "tests/vast/linear/IconsTest.cc": "",
}
BAD = [
    ("tests/base/TextTest.cc", None, "units", "base/Text.cc: there is no tests/base/TextTest.cc"),
    ("tests/base/SlotTest.cc", None, "units", "base/Slot.h: there is no"),
    ("tests/vast/linear/IconsTest.cc", None, "units", "vast/linear/Icons.cc: there is no"),
    ("tests/vast/OldTest.cc", "", "units", "no unit of that name"),
    ("base/Names.h", "struct N { N() : a(1) {} int a; };", "units", "base/Names.h: there is no"),
    ("base/Names.h", "auto f() noexcept -> int { return 1; }", "units", "base/Names.h"),
    ("include/tamzo/base/Card.h", "int f() const { return 1; }", "units", "tamzo/base/Card.h"),
    ("base/Text.cc", '#include "xml/Tree.h"', "layers", "base/ does not know xml/"),
    ("xml/Tree.cc", '#include "net/Reader.h"', "layers", "xml/ does not know net/"),
    ("net/Reader.cc", '#include "xml/Tree.h"', "layers", "net/ does not know xml/"),
    ("vast/linear/Icons.cc", '#include "tools/Input.h"', "layers", "vast/ does not know tools/"),
    ("vast/linear/Icons.cc", "#include <libxml/tree.h>", "layers", "belongs to the units of xml/"),
    ("xml/Tree.cc", "#include <curl/curl.h>", "layers", "belongs to the units of net/"),
    ("base/Text.cc", '#include "tamzo/base/Gone.h"', "layers", "no such header"),
    ("include/tamzo/base/Text.h", '#include "base/Slot.h"', "layers", "public headers only"),
    ("include/tamzo/base/Text.h", "#include <nlohmann/json.hpp>", "layers", "standard headers"),
    ("include/tamzo/xml/Text.h", "#include <libxml/tree.h>", "layers", "belongs to the units"),
    ("include/tamzo/base/Card.h", "", "headers", "not in TAMZO_PUBLIC_HEADERS"),
    ("include/tamzo/base/Text.h", None, "headers", "no such file"),
    ("CMakeLists.txt", "", "headers", "lists no public header"),
    ("base/Text.cc", 'const char* s = "ä";', "ascii", "base/Text.cc:1"),
    ("base/Text.cc", 'const char* s = "// ä";', "ascii", "base/Text.cc:1"),
    ("tests/base/TextTest.cc", "/* ä */\nauto s = R\"(ä)\";", "ascii", "TextTest.cc:2"),
]


def run(check, root):
    exceptions = ({},) if check in ("units", "layers") else ()
    return list(CHECKS[check](root, *exceptions))


def complaints_of_tree(tree, check):
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        for name, content in tree.items():
            (root / name).parent.mkdir(parents=True, exist_ok=True)
            (root / name).write_text(content, encoding="utf-8")
        return run(check, root)


def self_test():
    failed = [f"a good tree: {check}: {complaint}"
              for check in CHECKS for complaint in complaints_of_tree(GOOD, check)]
    for name, content, check, wanted in BAD:
        tree = {key: value for key, value in (GOOD | {name: content}).items() if value is not None}
        said = complaints_of_tree(tree, check)
        if not any(wanted in complaint for complaint in said):
            failed.append(f"{name} as {content!r}: {check} says {said}")
    return failed


def main(arguments):
    root = pathlib.Path(__file__).resolve().parent.parent
    if arguments == ["--self-test"]:
        complaints = self_test()
    elif arguments and all(check in CHECKS for check in arguments):
        complaints = [text for check in arguments for text in CHECKS[check](root)]
    else:
        sys.exit(__doc__)
    print("\n".join(complaints) or "in order")
    return int(bool(complaints))


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
