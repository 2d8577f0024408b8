"""Checks that the C++ and C in the documents is code that is compiled and run.

Every ```cpp and ```c block of README.md and docs/*.md must stand, as it is, in a file under examples/.
"""

import pathlib
import re
import sys


def main():
    root = pathlib.Path(__file__).resolve().parent.parent
    code = [path.read_text(encoding="utf-8") for path in sorted((root / "examples").glob("*.c*"))]
    blocks = 0
    failed = False
    for document in [root / "README.md", *sorted((root / "docs").glob("*.md"))]:
        text = document.read_text(encoding="utf-8") if document.exists() else ""
        for match in re.finditer(r"^```c(?:pp)?\n(.*?)^```$", text, re.MULTILINE | re.DOTALL):
            blocks += 1
            if not any(match[1] in file for file in code):
                failed = True
                line = text.count("\n", 0, match.start()) + 2
                print(f"{document.relative_to(root)}:{line}: not in any file of examples/:\n{match[1]}")
    print(f"{blocks} blocks compared")
    return int(failed or blocks == 0)


if __name__ == "__main__":
    sys.exit(main())
