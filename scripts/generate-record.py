"""Writes what comes out of the property table, vast/TamzoVastAdProperties.def:

- include/tamzo/vast/TamzoVastAdProperties.h, the accessors as hosts and editors see them,
- the getters in include/tamzo/tamzo_vast.h, for C,
- the symbols of that in capi/symbols.txt,
- the fields of TamzoVastAd.java in bindings/java,
- the properties of VastAd in bindings/swift, and
- the tables of the record in docs/embedding.md.

    generate-record.py           writes them
    generate-record.py --check   says what is not as the table has it, and fails then

All are committed, so that a build needs no generator. A test runs the check.
"""

import pathlib
import re
import sys
import textwrap
from dataclasses import dataclass

ROOT = pathlib.Path(__file__).resolve().parent.parent
TABLE = ROOT / "vast/TamzoVastAdProperties.def"
HEADER = ROOT / "include/tamzo/vast/TamzoVastAdProperties.h"
C_HEADER = ROOT / "include/tamzo/tamzo_vast.h"
C_SYMBOLS = ROOT / "capi/symbols.txt"
DOCUMENT = ROOT / "docs/embedding.md"
BEGIN = "<!-- The tables below are written by scripts/generate-record.py. -->\n"
END = "<!-- The tables above are written by scripts/generate-record.py. -->\n"
C_BEGIN = "/* The functions below are written by scripts/generate-record.py. */\n"
C_END = "/* The functions above are written by scripts/generate-record.py. */\n"

# What C gets for each type. capi/Values.h says the same to the compiler.
C_TYPES = {
    "Text": "tamzo_vast_text",
    "MutableText": "tamzo_vast_text",
    "bool": "bool",
    "std::int32_t": "int32_t",
    "double": "double",
    "float": "float",
    "List<Text>": "const tamzo_vast_texts*",
    "TamzoExtraActions": "const tamzo_vast_extra_actions*",
    "std::shared_ptr<TamzoAdDuration>": "const tamzo_vast_duration*",
    "std::shared_ptr<TrackerMap>": "const tamzo_vast_trackers*",
    "std::shared_ptr<IconMap>": "const tamzo_vast_named_elements*",
    "std::shared_ptr<TamzoVpaidXML>": "const tamzo_vast_vpaid_xml*",
    "List<std::shared_ptr<TamzoCompanionAd>>": "const tamzo_vast_companion_ads*",
    "List<std::shared_ptr<TamzoMediaFile>>": "const tamzo_vast_media_files*",
    "List<std::shared_ptr<TamzoCard>>": "const tamzo_vast_elements*",
    "List<std::shared_ptr<TamzoHotspot360Info>>": "const tamzo_vast_elements*",
    "List<std::shared_ptr<TamzoMeasurementProviderModel>>": "const tamzo_vast_verifications*",
}

# What Java gets, and how RecordReader reads it; what may be null is marked so.
JAVA = ROOT / "bindings/java/src/com/tamzo/vast/TamzoVastAd.java"
JAVA_BEGIN = "  // The properties below are written by scripts/generate-record.py.\n"
JAVA_END = "  // The properties above are written by scripts/generate-record.py.\n"
JAVA_TYPES = {
    "Text": ("@Nullable String", "text()"),
    "MutableText": ("@Nullable String", "text()"),
    "bool": ("boolean", "flag()"),
    "std::int32_t": ("int", "integer()"),
    "double": ("double", "real()"),
    "float": ("float", "shortReal()"),
    "List<Text>": ("@Nullable List<String>", "texts()"),
    "TamzoExtraActions": ("@Nullable ExtraActions", "extraActions()"),
    "std::shared_ptr<TamzoAdDuration>": ("@Nullable AdDuration", "duration()"),
    "std::shared_ptr<TrackerMap>": ("@Nullable Map<String, List<Tracker>>", "trackers()"),
    "std::shared_ptr<IconMap>": ("@Nullable Map<String, VastElement>", "namedElements()"),
    "std::shared_ptr<TamzoVpaidXML>": ("@Nullable VpaidXml", "vpaidXml()"),
    "List<std::shared_ptr<TamzoCompanionAd>>": ("@Nullable List<CompanionAd>", "companionAds()"),
    "List<std::shared_ptr<TamzoMediaFile>>": ("@Nullable List<MediaFile>", "mediaFiles()"),
    "List<std::shared_ptr<TamzoCard>>": ("@Nullable List<VastElement>", "elements(VastElement.CARDS)"),
    "List<std::shared_ptr<TamzoHotspot360Info>>":
        ("@Nullable List<VastElement>", "elements(VastElement.HOTSPOTS)"),
    "List<std::shared_ptr<TamzoMeasurementProviderModel>>":
        ("@Nullable List<Verification>", "verifications()"),
}

# What Swift gets, and which function of Values.swift makes it.
SWIFT = ROOT / "bindings/swift/Sources/TamzoVast/VastAdProperties.swift"
SWIFT_TYPES = {
    "Text": ("String?", "text"),
    "MutableText": ("String?", "text"),
    "bool": ("Bool", ""),
    "std::int32_t": ("Int32", ""),
    "double": ("Double", ""),
    "float": ("Float", ""),
    "List<Text>": ("[String]?", "texts"),
    "TamzoExtraActions": ("VastExtraActions?", "extraActions"),
    "std::shared_ptr<TamzoAdDuration>": ("VastDuration?", "duration"),
    "std::shared_ptr<TrackerMap>": ("[VastEvent]?", "trackers"),
    "std::shared_ptr<IconMap>": ("[String: VastElement]?", "namedElements"),
    "std::shared_ptr<TamzoVpaidXML>": ("VastVpaidXml?", "vpaidXml"),
    "List<std::shared_ptr<TamzoCompanionAd>>": ("[[VastCompanion]]?", "companionAds"),
    "List<std::shared_ptr<TamzoMediaFile>>": ("[VastMediaFile]?", "mediaFiles"),
    "List<std::shared_ptr<TamzoCard>>": ("[VastElement]?", "elements"),
    "List<std::shared_ptr<TamzoHotspot360Info>>": ("[VastElement]?", "elements"),
    "List<std::shared_ptr<TamzoMeasurementProviderModel>>":
        ("[VastVerification]?", "verifications"),
}

# In the order of the header and the document. A note stands under the heading in both.
TOPICS = {
    "outcome": ("Identity and outcome", ""),
    "played": ("What is played", ""),
    "beside": ("What is shown beside it", ""),
    "fired": ("What is fired", ""),
    "measured": ("What is measured", ""),
    "webView": (
        "How the web view behaves",
        "The flags are published for the whole SDK as well: TamzoState::getTamzoWebSettings().",
    ),
    "policy": ("Selling and policy", ""),
    "macros": (
        "The request and the player",
        "These fill macros in the tag URLs of later Wrappers.",
    ),
    "vpaid": ("JavaScript VPAID", ""),
}

WORDS = {
    "Text": "text",
    "MutableText": "growable text",
    "bool": "flag",
    "std::int32_t": "integer",
    "double": "double",
    "float": "float",
}
BY_VALUE = {"bool", "std::int32_t", "double", "float"}


@dataclass
class Property:
    """One row of the table."""

    type: str
    name: str
    setter: str
    topic: str
    text: str

    def accessors(self):
        """The lines of the header."""
        by_value = self.type in BY_VALUE
        result = self.type if by_value else f"const {self.type}&"
        override = " override" if self.topic == "macros" else ""
        keep = "value" if by_value else "std::move(value)"
        lines = [f"  /// {line}" for line in textwrap.wrap(self.text, 94)]
        lines += function(f"{result} {self.name}() const noexcept{override}", f"return {self.name}_;")
        lines.append(f"  /// Sets {self.name}().")
        lines += function(f"void {self.setter}({self.type} value) noexcept", f"{self.name}_ = {keep};")
        if self.type == "bool":
            lines.append("  template <typename T>")
            lines.append(f"  void {self.setter}(const T*) = delete;  ///< \"false\" is no flag.")
        return lines

    def words(self):
        """The type for people."""
        if match := re.fullmatch(r"List<Text>", self.type):
            return "list of texts"
        if match := re.fullmatch(r"List<std::shared_ptr<(\w+)>>", self.type):
            return f"list of `{match[1]}`"
        if match := re.fullmatch(r"std::shared_ptr<(\w+)>", self.type):
            return f"`{match[1]}`"
        return WORDS.get(self.type, f"`{self.type}`")


def function(head, body):
    """On one line where it fits, as clang-format has it."""
    line = f"  {head} {{ {body} }}"
    if len(line) <= 100:
        return [line]
    if len(head) > 96:
        head = head.replace(") const", ")\n      const") if "()" in head else head.replace("(", "(\n      ", 1)
    return [f"  {head} {{", f"    {body}", "  }"]


def read_table():
    rows = []
    text = []
    for number, line in enumerate(TABLE.read_text(encoding="utf-8").splitlines(), 1):
        if line.startswith("/// "):
            text.append(line.removeprefix("/// "))
        elif line.startswith("TAMZO_PROPERTY("):
            match = re.fullmatch(r"TAMZO_PROPERTY\((.+), (\w+), (set\w+), \w+, .*\)  // (\w+)", line)
            if not match or match[4] not in TOPICS or not text:
                sys.exit(f"{TABLE.name}:{number}: a row needs a text above it and a topic behind it")
            rows.append(Property(*match.groups(), " ".join(text)))
            text = []
    return rows


def header(rows):
    lines = [
        "// Written by scripts/generate-record.py from vast/TamzoVastAdProperties.def.",
        "",
        "#pragma once",
        "",
        "#include <cstdint>",
        "#include <functional>",
        "#include <map>",
        "#include <memory>",
        "#include <string>",
        "#include <utility>",
        "",
    ]
    lines += [
        f'#include "tamzo/{name}.h"'
        for name in """base/Export base/List base/Text sdk/TamzoAdDuration sdk/TamzoCard
        sdk/TamzoCompanionAd sdk/TamzoExtraActions sdk/TamzoHotspot360Info
        sdk/TamzoMacroReplacementUtil sdk/TamzoMeasurementProviderModel sdk/TamzoMediaFile
        sdk/TamzoTrackerEvent sdk/TamzoVpaidXML vast/ErrorCodes xml/DDXMLElement""".split()
    ]
    lines += [
        "",
        "namespace tamzo {",
        "",
        "/// Elements by key; the keys are \"iconClickTracking\" and \"iconClickThrough\".",
        "using IconMap = std::map<std::string, DDXMLElement, std::less<>>;",
        "",
        f"/// The {len(rows)} properties of a TamzoVastAd. Each has a getter of its name and a setter, which",
        "/// do nothing but read and store; the spellings are those that the SDK reads, and are meant.",
        "///",
        "/// A text or list is nil until something writes it, and nil is not empty. A setting of the vendor",
        "/// block is nil, 0 or false before the first block; a later block that leaves it out makes it \"\",",
        "/// 0 or false again, unless the property says that it is kept. A setter keeps the very object that",
        "/// it is given, and the getter returns it.",
        "///",
        "/// Nothing here locks: one thread fills a record, and any number may read one that nobody changes.",
        "class TAMZO_EXPORT TamzoVastAdProperties : public MacroValues {",
        " public:",
    ]
    for topic, (title, note) in TOPICS.items():
        lines.append(f"  /// @name {title}")
        if note:
            lines.append(f"  /// {note}")
        lines.append("  /// @{")
        for row in rows:
            if row.topic == topic:
                lines += ["", *row.accessors()]
        lines += ["", "  /// @}", ""]
    lines += [
        " protected:",
        "  TamzoVastAdProperties() noexcept = default;",
        "  ~TamzoVastAdProperties() = default;",
        "",
        " private:",
        *(f"  {row.type} {row.name}_{{}};" for row in rows),
        "};",
        "",
        "}  // namespace tamzo",
        "",
    ]
    return "\n".join(lines)


def tables(rows):
    """The tables of the document."""
    text = ""
    for topic, (title, note) in TOPICS.items():
        text += f"### {title}\n\n"
        if note:
            text += re.sub(r"(\w+::\w+\(\))", r"`\1`", note) + "\n\n"
        text += "| property | type | what it is |\n|---|---|---|\n"
        for row in rows:
            if row.topic == topic:
                what = re.sub(r"(?<!`)\b(\w+\(\))", r"`\1`", row.text)
                text += f"| `{row.name}` | {row.words()} | {what} |\n"
        text += "\n"
    return text


def document(rows):
    old = DOCUMENT.read_text(encoding="utf-8")
    begin = old.index(BEGIN) + len(BEGIN)
    return old[:begin] + "\n" + tables(rows) + old[old.index(END):]


def c_header(rows):
    old = C_HEADER.read_text(encoding="utf-8")
    lines = []
    for row in rows:
        text = re.sub(r"(\w+)\(\)", r"\1", row.text.replace("*/", "* /"))
        comment = textwrap.wrap(text, 93)
        lines += ["", *(f"{' *  ' if at else '/** '}{line}" for at, line in enumerate(comment))]
        lines[-1] += " */"
        head = f"TAMZO_VAST_API {C_TYPES[row.type]} tamzo_vast_ad_{row.name}("
        rest = "const tamzo_vast_ad* ad);"
        lines += [head + rest] if len(head + rest) <= 100 else [head, f"    {rest}"]
    begin = old.index(C_BEGIN) + len(C_BEGIN)
    return old[:begin] + "\n".join(lines).lstrip("\n") + "\n\n" + old[old.index(C_END):]


def c_symbols(header_text):
    names = set(re.findall(r"TAMZO_VAST_API [\w ]+?\*?\s(tamzo_vast_\w+)\(",
                           header_text.replace("\n", " ")))
    kept = C_SYMBOLS.read_text(encoding="utf-8").split() if C_SYMBOLS.exists() else []
    if gone := sorted(set(kept) - names):
        sys.exit(f"not in {C_HEADER.name} any more, which programs in the field call: "
                 f"{', '.join(gone)}. Raise TAMZO_VAST_ABI and the version of the symbols, and take "
                 f"them off {C_SYMBOLS.name} by hand")
    return "".join(f"{name}\n" for name in sorted(names))


def java_comment(text):
    """A comment for Javadoc."""
    text = text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")
    text = re.sub(r"`([^`]+)`", r"{@code \1}", re.sub(r"(\w+)\(\)", r"\1", text))
    lines = textwrap.wrap(text, 94)
    if len(lines) == 1 and len(lines[0]) <= 91:
        return [f"  /** {lines[0]} */"]
    return ["  /**", *(f"   * {line}" for line in lines), "   */"]


def java(rows):
    lines = []
    for row in rows:
        lines += [*java_comment(row.text), f"  public final {JAVA_TYPES[row.type][0]} {row.name};", ""]
    lines += ["  /** In the order of the table. */", "  TamzoVastAd(RecordReader in) {"]
    lines += [f"    {row.name} = in.{JAVA_TYPES[row.type][1]};" for row in rows]
    lines += ["    mostSuitableCompanion = in.integer();", "    in.end();", "  }"]
    old = JAVA.read_text(encoding="utf-8")
    begin = old.index(JAVA_BEGIN) + len(JAVA_BEGIN)
    return old[:begin] + "\n" + "\n".join(lines) + "\n\n" + old[old.index(JAVA_END):]


def swift(rows):
    lines = [
        "// Written by scripts/generate-record.py from vast/TamzoVastAdProperties.def.",
        "",
        "// The properties of the record. The spellings are those of the SDK, and are meant.",
        "extension VastAd {",
    ]
    for row in rows:
        swift_type, function = SWIFT_TYPES[row.type]
        value = f"tamzo_vast_ad_{row.name}($0)"
        # A property hides the function of its name.
        value = f"TamzoVast.{function}({value})" if function else value
        text = re.sub(r"(\w+)\(\)", r"\1", row.text)
        lines += [*(f"  /// {line}" for line in textwrap.wrap(text, 94)),
                  f"  public var {row.name}: {swift_type} {{ read {{ {value} }} }}", ""]
    return "\n".join(lines[:-1]) + "\n}\n"


def main(arguments):
    rows = read_table()
    failed = False
    in_c = c_header(rows)
    for path, text in ((HEADER, header(rows)), (C_HEADER, in_c), (C_SYMBOLS, c_symbols(in_c)),
                       (JAVA, java(rows)), (SWIFT, swift(rows)), (DOCUMENT, document(rows))):
        if arguments != ["--check"]:
            path.write_text(text, encoding="utf-8")
        elif not path.exists() or path.read_text(encoding="utf-8") != text:
            failed = True
            print(f"{path.relative_to(ROOT)} is not what {TABLE.relative_to(ROOT)} says: "
                  "run scripts/generate-record.py")
    print(f"{len(rows)} properties")
    return int(failed)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
