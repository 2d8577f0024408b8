"""Checks that ad-operations.md shows what the command says, and writes it there.

    check-guide.py COMMAND [--write]

A block that begins with "$ tamzo-vast ... examples/operations/CASE.xml" holds the beginning of what the
command prints: up to the first empty line, or the second where the first line says that the ad plays.
"""

import pathlib
import re
import subprocess
import sys

FOLDER = pathlib.Path(__file__).parent


def said(command, arguments):
    run = subprocess.run([command, *arguments], capture_output=True, check=False, cwd=FOLDER)
    parts = run.stdout.decode().split("\n\n")
    return "\n\n".join(parts[:2 if parts[0].startswith("OK") else 1])


def main(command, write):
    guide = FOLDER / "ad-operations.md"
    text = guide.read_text(encoding="utf-8")
    block = re.compile(r"```\n\$ tamzo-vast ([^\n]*)\n(.*?)\n?```", re.DOTALL)
    command = str(pathlib.Path(command).resolve())
    shown = block.sub(lambda m: f"```\n$ tamzo-vast {m[1]}\n{said(command, m[1].split())}\n```", text)
    if write:
        guide.write_text(shown, encoding="utf-8")
    count = len(block.findall(text))
    if shown != text or count == 0:
        print("ad-operations.md shows something else; check-guide.py COMMAND --write mends it")
    print(f"{count} compared")
    return int(count == 0 or (shown != text and not write))


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], "--write" in sys.argv[2:]))
