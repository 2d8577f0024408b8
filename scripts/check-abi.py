"""Compares a shared library with debug information with the interface that this major version keeps.

    check-abi.py LIBRARY           ends with status 1 where a program built before would not run
    check-abi.py --renew LIBRARY   keeps the interface of the library from now on

It first changes the kept interface in ways that must be told, so that it never passes for want of
looking.
"""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
KEPT = ROOT / "abi/libtamzovast.abi"
HEADERS = ROOT / "include"
IGNORED = ["--suppr", ROOT / "abi/ignored.ini"]
ADVICE = """The shared library no longer fits programs that were built with this major version.
Where that is an addition which abidiff cannot tell from a change, or the version is not released:
  scripts/abi.sh --renew
Otherwise the change wants another major version: CMakeLists.txt, debian/ and abi/."""

# Of the kept text: what is replaced by what, and whether that must be told. As if the library had
# lost a function, changed a value, moved a member, changed a signature, or gained a function.
CHANGES = {
    "a function for C that is gone": (r"\btamzo_vast_parse\b", "tamzo_vast_gone", True),
    "a method that is gone": (r"_ZN5tamzo10TamzoState", "_ZN5tamzo10TamzoOther", True),
    "a value that changed": (r"(name='TAMZO_VAST_INVALID_ARGUMENT' value=)'\d+'", r"\1'77'", True),
    "a member that moved": (r"(layout-offset-in-bits=)'64'(?=[^<]*>\s*<var-decl name='size')",
                            r"\1'128'", True),
    "a function that is new": (r"^.*<elf-symbol name='tamzo_vast_abi'.*\n", "", False),
}


def write_interface(library, path):
    """What is exported, and the types in public headers."""
    subprocess.run(["abidw", "--headers-dir", HEADERS, "--drop-private-types",
                    "--exported-interfaces-only", "--no-show-locs", *IGNORED, "--no-corpus-path",
                    "--no-comp-dir-path", "--no-elf-needed", "--no-parameter-names",
                    "--type-id-style", "hash", "--out-file", path, library], check=True)
    text = path.read_text(encoding="utf-8")
    path.write_text(re.sub(r"path='(\.\./)+", "path='", text), encoding="utf-8")


def differences(kept, now):
    """What abidiff has to say; "" where the library fits. Between two written interfaces: were one of
    them a library, abidiff would take all types of the other, which has no places, for private."""
    run = subprocess.run(["abidiff", "--no-added-syms", "--no-show-locs", *IGNORED, kept, now],
                         capture_output=True, text=True, check=False)
    if run.returncode & 3:
        sys.exit(f"abidiff failed: {run.stderr}")
    return run.stdout if run.returncode else ""


def unseen_changes(now):
    text = KEPT.read_text(encoding="utf-8")
    with tempfile.TemporaryDirectory() as folder:
        for what, (pattern, instead, is_told) in CHANGES.items():
            changed = re.sub(pattern, instead, text, flags=re.MULTILINE)
            if changed == text:
                yield f"{what}: cannot be tried, {pattern} is not in {KEPT.name}"
                continue
            path = pathlib.Path(folder) / "changed.abi"
            path.write_text(changed, encoding="utf-8")
            if bool(differences(path, now)) != is_told:
                yield f"{what}: {'not told' if is_told else 'told, though it is no fault'}"


def soname_of(text):
    return re.search(r"soname='([^']+)'", text)[1]


def main(arguments):
    with tempfile.TemporaryDirectory() as folder:
        now = pathlib.Path(folder) / "now.abi"
        write_interface(pathlib.Path(arguments[-1]).resolve(), now)
        if "--renew" in arguments:
            shutil.copy(now, KEPT)
        told = differences(KEPT, now)
        if told:
            print(told, ADVICE, sep="\n")
            return 1
        unseen = list(unseen_changes(now))
    for fault in unseen:
        print(f"this check does not work: {fault}")
    if unseen:
        return 1
    print(f"{soname_of(KEPT.read_text(encoding='utf-8'))}: the interface is kept, "
          f"{len(CHANGES)} changes of it tried")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
