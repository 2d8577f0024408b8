"""Checks the man page and the completions of tamzo-vast against the command.

    check-command-documents.py COMMAND FOLDER

Each option of each command stands in each of them, and bash completes. The man page goes through
man where there is one. zsh and fish run where they are installed: their files are read then.
"""

import pathlib
import re
import shutil
import subprocess
import sys


def run(*arguments):
    return subprocess.run(arguments, capture_output=True, text=True, check=False)


def options_of(command, name):
    text = run(command, *([name] if name else []), "--help").stdout
    names = re.findall(r"^  (-[\w,-]+)", text, re.MULTILINE)
    return [option for each in names for option in each.split(",")]


def is_named(option, text):
    """Whether it stands there as a word: -o is no part of --only."""
    return re.search(rf"(?<![\w-]){re.escape(option)}(?![\w-])", text) is not None


def completed(script, *words):
    """What bash offers for the last of the words."""
    listed = " ".join(f"'{word}'" for word in words)
    return run("bash", "-c", f"source '{script}'; COMP_WORDS=({listed}); "
               f"COMP_CWORD={len(words) - 1}; _tamzo_vast; echo \"${{COMPREPLY[@]}}\"").stdout.split()


def faults(command, folder):
    commands = re.findall(r"^  ([a-z]\w+)  ", run(command, "--help").stdout, re.MULTILINE)
    if not {"parse", "page", "batch"} <= set(commands):
        yield f"--help lists {commands}"
    texts = {name: (folder / name).read_text(encoding="utf-8")
             for name in ("tamzo-vast.1", "tamzo-vast.bash", "_tamzo-vast", "tamzo-vast.fish")}
    texts["tamzo-vast.1"] = re.sub(r"\\f.", "", texts["tamzo-vast.1"].replace("\\-", "-"))
    for name in ["", *commands]:
        options = options_of(command, name)
        if "--help" not in options:
            yield f"the help of {name or 'the program'} lists {options}"
        for option in options:
            for file, text in texts.items():
                shown = option
                if file.endswith(".fish"):
                    shown = f"-l {option[2:]}" if option.startswith("--") else f"-s {option[1:]}"
                if not is_named(shown, text):
                    yield f"{file}: no {option} of {name or 'the program'}"
    bash = folder / "tamzo-vast.bash"
    for words, expected in ((("tamzo-vast", "pa"), {"parse", "page"}),
                            (("tamzo-vast", "parse", "--form"), {"--format"}),
                            (("tamzo-vast", "parse", "--format", ""), {"text", "json", "html"}),
                            (("tamzo-vast", "parse", "respons"), set())):
        if set(completed(bash, *words)) != expected:
            yield f"bash completes {words} to {completed(bash, *words)}"
    for shell, file in (("zsh", "_tamzo-vast"), ("fish", "tamzo-vast.fish")):
        if shutil.which(shell):
            read = run(shell, "-n", str(folder / file))
            if read.returncode != 0 or read.stderr:
                yield f"{shell}: {read.stderr}"
        else:
            print(f"no {shell} here: {file} is not run")
    if shutil.which("man"):
        shown = run("man", "--warnings", "-l", str(folder / "tamzo-vast.1"))
        if shown.stderr or "SYNOPSIS" not in shown.stdout:
            yield f"man: {shown.stderr}"


def main(command, folder):
    found = list(faults(command, pathlib.Path(folder)))
    for fault in found:
        print(fault)
    return int(bool(found))


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
