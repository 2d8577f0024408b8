"""Checks that the code in the documents is code that is compiled and run.

Every ```cpp block of README.md and docs/*.md must stand, as it is, in a .cc file under examples/,
every ```c block in a .c file, and so on. A block of what cannot be run here is no such block, save for
Swift, whose page says so.
"""

import pathlib
import re
import sys


SUFFIXES = {"cpp": ".cc", "c": ".c", "sh": ".sh", "java": ".java", "kotlin": ".kt",
            "swift": ".swift"}


# What needs a phone's own classes to compile.
OF_A_PHONE = {("vpaid-page.md", "kotlin"), ("vpaid-page.md", "swift")}


def main():
    root = pathlib.Path(__file__).resolve().parent.parent
    code = {language: [path.read_text(encoding="utf-8")
                       for path in sorted((root / "examples").rglob("*" + suffix))]
            for language, suffix in SUFFIXES.items()}
    blocks = 0
    failed = False
    for document in [root / "README.md", *sorted((root / "docs").glob("*.md"))]:
        text = document.read_text(encoding="utf-8") if document.exists() else ""
        for match in re.finditer(r"^```(cpp|c|sh|java|kotlin|swift)\n(.*?)^```$", text, re.MULTILINE | re.DOTALL):
            if (document.name, match[1]) in OF_A_PHONE:
                continue
            blocks += 1
            if not any(match[2] in file for file in code[match[1]]):
                failed = True
                line = text.count("\n", 0, match.start()) + 2
                print(f"{document.relative_to(root)}:{line}: not in any file of examples/:\n{match[2]}")
    print(f"{blocks} blocks compared")
    return int(failed or blocks == 0)


if __name__ == "__main__":
    sys.exit(main())
