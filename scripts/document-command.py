"""Writes the man page of tamzo-vast and its completions for bash, zsh and fish, out of what its
--help says.

    document-command.py COMMAND FOLDER

The folder gets tamzo-vast.1, tamzo-vast.bash, _tamzo-vast and tamzo-vast.fish.
"""

import pathlib
import re
import subprocess
import sys
from dataclasses import dataclass, field

NAME = "tamzo-vast"
# Headings of what stands behind the options; all others are those of a table.
NOTES = ("Examples", "Exit status")


@dataclass
class Option:
    names: list  # "-h", "--help"
    argument: str  # "FILE", "text|json"; "" for a flag
    text: str

    def choices(self):
        return self.argument.split("|") if "|" in self.argument else []


@dataclass
class Command:
    name: str  # "" for the program itself
    summary: str = ""
    usage: str = ""
    options: list = field(default_factory=list)
    positionals: list = field(default_factory=list)  # (name, text)
    subcommands: list = field(default_factory=list)  # (name, text)
    notes: list = field(default_factory=list)  # lines behind the tables


def help_of(command, name):
    arguments = [command, *([name] if name else []), "--help"]
    done = subprocess.run(arguments, check=True, capture_output=True, text=True)
    return done.stdout.splitlines()


def rows_of(lines):
    """A table: two blanks, what it is about, more blanks, a text that may go on below."""
    rows = []
    for line in lines:
        match = re.fullmatch(r"  (\S.*?)(?:\s{2,}(\S.*))?", line)
        if match and not line.startswith("   "):
            rows.append([match[1], match[2] or ""])
        elif rows:
            rows[-1][1] = f"{rows[-1][1]} {line.strip()}".strip()
    return rows


def option_of(head, text):
    match = re.fullmatch(r"((?:-[\w-]+)(?:,\s*-[\w-]+)*)(?: (.+))?", head)
    return Option(re.split(r",\s*", match[1]), match[2] or "", text) if match else None


def read(command, name):
    result = Command(name)
    lines = help_of(command, name)
    section, body = "", []
    sections = []
    for line in lines:
        heading = re.fullmatch(r"([A-Z][\w' ]*):", line)
        if heading and heading[1] in NOTES:
            heading = None
        if heading or (section and line and not line.startswith(" ")):
            sections.append((section, body))
            section, body = (heading[1], []) if heading else ("notes", [line])
        else:
            body.append(line)
    sections.append((section, body))
    notes = []
    for section, body in sections:
        if section == "Input":
            result.positionals += rows_of(body)
        elif section == "Commands":
            result.subcommands += rows_of(body)
        elif section == "notes":
            notes += body
        elif section:
            result.options += filter(None, (option_of(*row) for row in rows_of(body)))
        else:
            result.summary = next((line for line in body if line), "")
            result.usage = next((line.removeprefix("Usage: ") for line in body
                                 if line.startswith("Usage: ")), "")
    result.notes = notes
    if not result.options or not result.usage:
        sys.exit(f"{NAME} {name} --help has no usage or no options")
    return result


# ---- The man page ----------------------------------------------------------------------------


def roff(text):
    text = text.replace("\\", "\\e").replace("-", "\\-")
    return re.sub(r"^([.'])", r"\\&\1", text)


def man_of_options(command):
    lines = []
    for name, text in command.positionals:
        lines += [".TP", f"\\fI{roff(name)}\\fR", roff(text)]
    for option in command.options:
        names = ", ".join(f"\\fB{roff(each)}\\fR" for each in option.names)
        argument = f" \\fI{roff(option.argument)}\\fR" if option.argument else ""
        lines += [".TP", names + argument, roff(option.text)]
    return lines


def man_of_notes(notes):
    text = "\n".join(notes).strip("\n")
    return ["", ".PP", ".nf", *(roff(line) for line in text.split("\n")), ".fi"][1:] if text else []


def man(program, commands, version):
    lines = [f'.TH {NAME.upper()} 1 "" "{NAME} {version}" "User commands"', ".SH NAME",
             f"{roff(NAME)} \\- {roff(program.summary.rstrip('.'))}", ".SH SYNOPSIS"]
    for command in commands:
        lines += [".PP", f"\\fB{roff(command.usage)}\\fR"]
    lines += [".SH OPTIONS", *man_of_options(program), *man_of_notes(program.notes)]
    for command in commands:
        lines += [f'.SH "COMMAND {command.name.upper()}"', roff(command.summary),
                  *man_of_options(command), *man_of_notes(command.notes)]
    return "\n".join(lines) + "\n"


# ---- The completions -------------------------------------------------------------------------


def names_of(command):
    return " ".join(name for option in command.options for name in option.names)


def bash(program, commands):
    cases = "".join(f"    {command.name}) words='{names_of(command)}' ;;\n" for command in commands)
    choices = sorted({(name, " ".join(option.choices())) for command in commands
                      for option in command.options if option.choices() for name in option.names})
    values = "".join(f"    {name}) COMPREPLY=($(compgen -W '{words}' -- \"$word\")); return ;;\n"
                     for name, words in choices)
    subcommands = " ".join(command.name for command in commands)
    return f"""# Completion of {NAME} for bash. Written by scripts/document-command.py.
_tamzo_vast() {{
  local word=${{COMP_WORDS[COMP_CWORD]}} words='{subcommands} {names_of(program)}'
  local before=${{COMP_WORDS[COMP_CWORD - 1]}}
  case $before in
{values}  esac
  case ${{COMP_WORDS[1]-}} in
{cases}  esac
  if [ "$COMP_CWORD" -eq 1 ]; then
    words='{subcommands} {names_of(program)}'
  fi
  if [ "$COMP_CWORD" -eq 1 ] || [ "${{word:0:1}}" = - ]; then
    COMPREPLY=($(compgen -W "$words" -- "$word"))
  fi
}}
complete -o default -F _tamzo_vast {NAME}
"""


def quoted(text):
    return "'" + text.replace("'", "'\\''") + "'"


def zsh_of_option(option):
    text = re.sub(r"[\[\]:]", " ", option.text)
    value = f":{option.argument.split('|')[0]}:" if option.argument else ""
    if option.choices():
        value += f"({' '.join(option.choices())})"
    elif option.argument:
        value += "_files"
    return " ".join(quoted(f"{name}[{text}]{value}") for name in option.names)


def zsh(program, commands):
    listed = " ".join(quoted(f"{command.name}:{command.summary}") for command in commands)
    cases = "".join(
        f"    {command.name}) _arguments " +
        " ".join([*(zsh_of_option(option) for option in command.options), "'*:file:_files'"]) +
        " ;;\n" for command in commands)
    return f"""#compdef {NAME}
# Completion of {NAME} for zsh. Written by scripts/document-command.py.
_tamzo_vast() {{
  local -a commands=({listed})
  if (( CURRENT == 2 )); then
    _describe command commands
    _arguments {" ".join(zsh_of_option(option) for option in program.options)}
    return
  fi
  local command=$words[2]
  shift words
  (( CURRENT-- ))
  case $command in
{cases}  esac
}}
_tamzo_vast "$@"
"""


def fish_of_option(option, condition):
    words = ["complete", "-c", NAME, "-n", quoted(condition)]
    for name in option.names:
        words += ["-l", name[2:]] if name.startswith("--") else ["-s", name[1:]]
    if option.choices():
        words += ["-x", "-a", quoted(" ".join(option.choices()))]
    elif option.argument:
        words.append("-r")
    return " ".join([*words, "-d", quoted(option.text)])


def fish(program, commands):
    lines = [f"# Completion of {NAME} for fish. Written by scripts/document-command.py."]
    lines += [fish_of_option(option, "__fish_use_subcommand") for option in program.options]
    for command in commands:
        lines.append(f"complete -c {NAME} -n __fish_use_subcommand -a {command.name} "
                     f"-d {quoted(command.summary)}")
        lines += [fish_of_option(option, f"__fish_seen_subcommand_from {command.name}")
                  for option in command.options]
    return "\n".join(lines) + "\n"


def main(command, folder):
    program = read(command, "")
    commands = [read(command, name) for name, _ in program.subcommands]
    if not commands:
        sys.exit(f"{NAME} --help lists no command")
    version = subprocess.run([command, "--version"], check=True, capture_output=True,
                             text=True).stdout.split()[-1]
    folder = pathlib.Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    for name, text in ((f"{NAME}.1", man(program, commands, version)),
                       (f"{NAME}.bash", bash(program, commands)),
                       (f"_{NAME}", zsh(program, commands)),
                       (f"{NAME}.fish", fish(program, commands))):
        (folder / name).write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main(*sys.argv[1:])
