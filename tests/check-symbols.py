"""Checks what a library of ELF exports, as nm lists it.

    check-symbols.py public LIBRARY      the public classes and functions of include/, no private
                                         member and nothing of another library
    check-symbols.py c LIBRARY           of the functions for C those of capi/symbols.txt, each in
                                         the version of the interface
    check-symbols.py bridge LIBRARY OBJECT...
                                         what the objects of a host define, and nothing of the
                                         static library linked into theirs
    check-symbols.py --self-test

NM in the environment names another nm.
"""

import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent


def nm(*arguments):
    command = [os.environ.get("NM", "nm"), *arguments]
    lines = subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()
    # "address kind name", the address blank where there is none; "A" is a symbol version itself.
    found = [re.fullmatch(r"[0-9a-f]* *(\w) (.+)", line) for line in lines]
    return [match[2] for match in found if match and match[1] not in "AU"]


def code_of(text):
    """Without comments, preprocessor lines and what functions do."""
    text = re.sub(r"//[^\n]*|/\*.*?\*/|^\s*#[^\n]*", "", text, flags=re.DOTALL | re.MULTILINE)
    return re.sub(r'"(?:\\.|[^"\\\n])*"', '""', text)


def private_members(text):
    """Class::member of the member functions and nested classes that stand under private alone."""
    found = {"public": set(), "protected": set(), "private": set()}
    scopes = []  # of each open brace: [class or "", access]
    pieces = re.split(r"([{};]|\b(?:public|protected|private)\s*:(?!:))", code_of(text))
    for piece in pieces:
        scope = scopes[-1] if scopes else ["", "public"]
        if piece.rstrip(" :") in ("public", "protected", "private"):
            scope[1] = piece.rstrip(" :")
        elif piece == "{":
            scopes.append(scope_opened_by(before))
        elif piece == "}" and scopes:
            scopes.pop()
        elif scope[0] and "friend" not in piece:
            name = re.search(r"(\w+)\s*\(", re.sub(r"TAMZO_\w+|^\s*using\b.*", "", piece))
            nested = re.search(r"\b(?:class|struct)\s+(?:TAMZO_\w+\s+)?(\w+)", piece)
            for match in (name, nested):
                if match:
                    found[scope[1]].add(f"{scope[0]}::{match[1]}")
        before = piece
    return found["private"] - found["public"] - found["protected"]


def scope_opened_by(head):
    match = re.search(r"\b(class|struct)\s+(?:TAMZO_\w+\s+)?(\w+)", head)
    if not match or re.search(r"\benum\b", head):
        return ["", ""]
    return [match[2], "private" if match[1] == "class" else "public"]


def without_arguments(symbol):
    """The qualified name: no kind of table in front, no arguments and templates behind."""
    symbol = re.sub(r"@.*", "", symbol)
    symbol = re.sub(r"^(typeinfo name|typeinfo|vtable|VTT|guard variable) for ", "", symbol)
    return re.split(r"[(<\[]", symbol, maxsplit=1)[0]


def faults_of_public(symbols, headers):
    private = set().union(*(private_members(text) for text in headers))
    words = set().union(*(re.findall(r"\w+", code_of(text)) for text in headers))
    for symbol in symbols:
        if re.fullmatch(r"tamzo_vast_\w+(@.*)?", symbol):
            continue
        parts = without_arguments(symbol).split("::")
        if parts[0] != "tamzo":
            yield f"not of this library: {symbol}"
        elif any(f"{a}::{b}" in private for a, b in zip(parts, parts[1:])):
            yield f"private: {symbol}"
        elif any(part.lstrip("~") not in words for part in parts):
            yield f"in no public header: {symbol}"


def check_public(library):
    symbols = nm("-D", "-C", "--defined-only", library)
    headers = [path.read_text(encoding="utf-8") for path in (ROOT / "include").rglob("*.h")]
    faults = list(faults_of_public(symbols, headers))
    if not symbols:
        faults.append("nothing is exported")
    return faults, len(symbols)


def faults_of_c(symbols, kept, version):
    shown = {symbol for symbol in symbols if symbol.startswith("tamzo_vast_")}
    expected = {f"{name}@@{version}" for name in kept}
    for symbol in sorted(shown - expected):
        yield f"not in capi/symbols.txt: {symbol}"
    for symbol in sorted(expected - shown):
        yield f"not exported: {symbol}"


def check_c(library):
    symbols = nm("-D", "--defined-only", library)
    header = (ROOT / "include/tamzo/tamzo_vast.h").read_text(encoding="utf-8")
    abi = re.search(r"#define TAMZO_VAST_ABI (\d+)", header)[1]
    kept = (ROOT / "capi/symbols.txt").read_text(encoding="utf-8").split()
    return list(faults_of_c(symbols, kept, f"TAMZO_VAST_C_{abi}")), len(kept)


def check_bridge(library, *objects):
    own = {name for path in objects for name in nm("--defined-only", path)}
    symbols = nm("-D", "--defined-only", library)
    faults = [f"exported from the static library: {name}" for name in symbols if name not in own]
    if not symbols:
        faults.append("nothing is exported")
    return faults, len(symbols)


def self_test():
    header = """
        namespace tamzo {
        class TAMZO_EXPORT Ad final : public Base {
         public:
          void play();
          Ad(double a);
          int size() const { if (a) { return hidden(); } return 1; }
         private:
          friend class List;
          struct Content;
          TAMZO_HIDDEN void hidden(int x);
          Ad(int a) : a_(a) {}
          int a_{};
        };
        struct Open { void shown(); };
        }"""
    rows = {
        "tamzo::Ad::play()@@V1": "",
        "vtable for tamzo::Ad": "",
        "tamzo::Open::shown()": "",
        "tamzo::Ad::Ad(double)": "",
        "tamzo_vast_parse@@V1": "",
        "tamzo::Ad::hidden(int)": "private",
        "tamzo::Ad::Content::decode()": "private",
        "tamzo::Internal::run(tamzo::Ad)": "in no public header",
        "std::vector<tamzo::Ad>::_M_grow()": "not of this library",
        "xmlFree": "not of this library",
        "typeinfo for std::_Sp_counted_ptr<tamzo::Ad*>": "not of this library",
    }
    faults = []
    for symbol, expected in rows.items():
        told = " ".join(faults_of_public([symbol], [header]))
        if not told.startswith(expected) or bool(told) != bool(expected):
            faults.append(f"{symbol}: {told or 'nothing'}, not {expected or 'nothing'}")
    told = list(faults_of_c(["tamzo_vast_a@@V_1", "tamzo_vast_b@@V_2", "tamzo::Ad::play()"],
                            ["tamzo_vast_a", "tamzo_vast_c"], "V_1"))
    if len(told) != 2 or "tamzo_vast_b" not in told[0] or "tamzo_vast_c" not in told[1]:
        faults.append(f"of functions for C: {told}")
    return faults, len(rows)


def main(arguments):
    checks = {"public": check_public, "c": check_c, "bridge": check_bridge, "--self-test": self_test}
    faults, count = checks[arguments[0]](*arguments[1:])
    for fault in faults:
        print(fault)
    print(f"{count} symbols, {len(faults)} faults")
    return int(bool(faults))


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
