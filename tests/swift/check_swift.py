"""Checks the classes for Swift as far as that goes without a compiler of Swift.

    check_swift.py sources        what they call of the interface for C is there, with as many
                                  arguments, and each property is read
    check_swift.py module CLANG   clang compiles the interface as a module, from C, Objective-C and C++
    check_swift.py --self-test
"""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
SWIFT = ROOT / "bindings/swift"
HEADER = ROOT / "include/tamzo/tamzo_vast.h"


def code_of(text):
    """Without comments and what strings hold."""
    token = re.compile(r'"(?:\\.|[^"\\\n])*"|//[^\n]*|/\*.*?\*/', re.DOTALL)
    return token.sub(lambda match: '""' if match[0].startswith('"') else "", text)


def arguments_at(text, start):
    """How many stand in the parentheses that open at `start`."""
    depth, count, empty = 0, 1, True
    for at in range(start, len(text)):
        if text[at] in "([{":
            depth += 1
        elif text[at] in ")]}":
            depth -= 1
            if depth == 0:
                return 0 if empty else count
        elif text[at] == "," and depth == 1:
            count += 1
        if depth > 0 and at > start and not text[at].isspace():
            empty = False
    return -1


def functions_of(header):
    code = code_of(header)
    return {match[1]: 0 if re.match(r"\(\s*void\s*\)", code[match.end(1):])
            else arguments_at(code, match.end(1))
            for match in re.finditer(r"TAMZO_VAST_API [\w\s*]+?\b(tamzo_vast_\w+)(?=\()", code)}


def faults_of(name, source, header):
    code = code_of(source)
    functions, words = functions_of(header), set(re.findall(r"\w+", code_of(header)))
    for opening, closing in ("()", "[]", "{}"):
        if code.count(opening) != code.count(closing):
            yield f"{name}: {opening} and {closing} do not match"
    for match in re.finditer(r"\b((?:tamzo|TAMZO)_\w+)\b(\()?", code):
        called = functions.get(match[1])
        if match[1] not in words:
            yield f"{name}: there is no {match[1]}"
        elif called is not None and not match[2]:
            yield f"{name}: {match[1]} is not called"
        elif called is not None and called != arguments_at(code, match.start(2)):
            yield f"{name}: {match[1]} takes {called}, not {arguments_at(code, match.start(2))}"
    for member in set(re.findall(r"\.([a-z]+(?:_[a-z]+)+)\b", code)) - words:
        yield f"{name}: there is no member {member}"


def check_sources():
    header = HEADER.read_text(encoding="utf-8")
    sources = {path.name: path.read_text(encoding="utf-8")
               for folder in (SWIFT / "Sources/TamzoVast", SWIFT, ROOT / "examples/swift")
               for path in sorted(folder.glob("*.swift"))}
    faults = [fault for name, source in sources.items() for fault in faults_of(name, source, header)]
    table = (ROOT / "vast/TamzoVastAdProperties.def").read_text(encoding="utf-8")
    properties = re.findall(r"^TAMZO_PROPERTY\(.+?, (\w+), set\w+,", table, re.MULTILINE)
    read = sources["VastAdProperties.swift"]
    faults += [f"{name} is not read" for name in properties
               if not re.search(rf"public var {name}: .* tamzo_vast_ad_{name}\(|"
                                rf"public var {name}: .*\(tamzo_vast_ad_{name}\(", read)]
    count = sum(len(re.findall(r"\btamzo_vast_\w+\(", source)) for source in sources.values())
    if len(properties) < 72 or count < 100:
        faults.append(f"{len(properties)} properties, {count} calls")
    print(f"{len(sources)} files, {count} calls, {len(properties)} properties")
    return faults


USES = {
    "use.c": ("c", "#include <tamzo/tamzo_vast.h>\n"),
    "import.m": ("objective-c", "@import TamzoVastC;\n"),
    "use.cc": ("c++", "#include <tamzo/tamzo_vast.h>\n"),
    # The package for Swift wraps the header in a module of its own.
    "package.m": ("objective-c", "@import CTamzoVast;\n"),
}
BODY = """
uint32_t use(void);
uint32_t use(void) { return tamzo_vast_abi() + (uint32_t)TAMZO_VAST_ABI; }
"""


def check_module(clang):
    faults = []
    with tempfile.TemporaryDirectory() as folder:
        folder = pathlib.Path(folder)
        headers = folder / "include/tamzo"
        headers.mkdir(parents=True)
        shutil.copy(HEADER, headers)
        shutil.copy(SWIFT / "module.modulemap", headers)
        for file, (language, first) in USES.items():
            (folder / file).write_text(first + BODY, encoding="utf-8")
            command = [clang, "-x", language, "-fmodules", "-fcxx-modules", "-fsyntax-only", "-Wall",
                       "-Wextra", "-Wpedantic", "-Werror", "-Wno-newline-eof",
                       f"-fmodules-cache-path={folder}/cache-{file}", f"-I{folder}/include",
                       f"-fmodule-map-file={headers}/module.modulemap",
                       f"-I{SWIFT}/Sources/CTamzoVast", str(folder / file)]
            command += [] if language == "c++" else ["-std=c11"]
            done = subprocess.run(command, stderr=subprocess.PIPE, text=True, check=False)
            modules = {path.name.rsplit("-", 1)[0] for path in folder.rglob(f"cache-{file}/**/*.pcm")}
            wanted = "CTamzoVast" if file == "package.m" else "TamzoVastC"
            if done.returncode != 0 or wanted not in modules:
                faults.append(f"{file}: {done.stderr} modules: {sorted(modules)}")
    print(f"{len(USES)} uses")
    return faults


def self_test():
    header = ("TAMZO_VAST_API void tamzo_vast_none(void);\n"
              "TAMZO_VAST_API const tamzo_vast_text* tamzo_vast_two(int a,\n    void (*b)(int, int));\n"
              "struct tamzo_vast_text { int http_status; };")
    rows = {
        "tamzo_vast_none() // tamzo_vast_gone(": "",
        'tamzo_vast_two(f(1, 2), "a, //b")': "",
        "tamzo_vast_two(1, { $0.http_status })": "",
        "tamzo_vast_two(1)": "takes 2, not 1",
        "tamzo_vast_none(1)": "takes 0, not 1",
        "tamzo_vast_none": "is not called",
        "tamzo_vast_gone()": "there is no tamzo_vast_gone",
        "TAMZO_VAST_GONE": "there is no TAMZO_VAST_GONE",
        "a.http_code": "no member http_code",
        "tamzo_vast_none())": "do not match",
    }
    return [f"{source}: {list(faults_of('x', source, header))}" for source, wanted in rows.items()
            if (wanted not in " ".join(faults_of("x", source, header))) or
            bool(list(faults_of("x", source, header))) != bool(wanted)]


def main(arguments):
    checks = {"sources": check_sources, "module": check_module, "--self-test": self_test}
    faults = checks[arguments[0]](*arguments[1:])
    print("\n".join(faults) or "in order")
    return int(bool(faults))


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
