#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Fails when the help says something else of an option than the manual page.

    help.py agrees SOURCE-FOLDER PROGRAM   compares the help of each command with the first sentences of the options
    help.py mistakesAreFound               shows that mistakes are found, in texts of its own

The same words agree. Where the help is shorter, help.txt has both texts: whoever changes one of them reads the other.
What the manual page says is taken from statements.txt, which another test compares with the page.
"""
import pathlib
import re
import subprocess
import sys

PAGE = "docs/man/countersign.1.in"


def options_of_help(text):
    """Option to text, of what a command prints for --help."""
    found = {}
    option = None
    block = re.search(r"^Options:\n((?:.+\n)+)", text, re.MULTILINE)
    for line in block[1].splitlines() if block else []:
        start = re.match(r"  (-\S.*?)(?:  +(.*))?$", line)
        if start:
            option = re.search(r"--[a-z0-9-]+", start[1])[0]
            found[option] = start[2] or ""
        else:
            found[option] = f"{found[option]} {line.strip()}".strip()
    return found


def options_of_manual(statements):
    """Option to pairs: the commands that it belongs to (none: all), and the first sentence."""
    page = statements.split(f"== {PAGE}\n", 1)[1].split("\n== ", 1)[0]
    found = {}
    for line in page.splitlines():
        item = re.match(r"(-[^():]*?)((?:\([a-z]+\) ?)*): (.*)$", line)
        option = item and re.search(r"--[a-z0-9-]+", item[1])
        if option:
            found.setdefault(option[0], []).append((set(re.findall(r"[a-z]+", item[2])), item[3]))
    return found


def known_pairs(text):
    """(command, option) to both texts, of help.txt."""
    found = {}
    blocks = [block.splitlines() for block in re.split(r"\n\s*\n", text)]
    for block in blocks:
        lines = [line for line in block if line and not line.startswith("#")]
        if not lines:
            continue
        *commands, option = lines[0].split()
        for command in commands:
            found[command, option] = (lines[1].strip(), lines[2].strip())
    return found


def disagreements(helps, manual, known):
    """helps: command to what it prints for --help."""
    wrong = []
    unused = set(known)
    for command, text in helps.items():
        options = options_of_help(text)
        if not options:
            wrong.append(f"{command}: the help has no options")
        for option, said in options.items():
            sentences = [
                sentence for commands, sentence in manual.get(option, []) if not commands or command in commands
            ]
            pair = known.get((command, option))
            if pair:
                unused.discard((command, option))
            if any(sentence.rstrip(".") == said for sentence in sentences):
                continue
            if pair is None or pair[0] != said or pair[1] not in sentences:
                wrong.append(f"{command} {option}\n    {said}\n    " + " or ".join(sentences))
    wrong.extend(f"{command} {option}: in help.txt and not in the help" for command, option in sorted(unused))
    return wrong


def agrees(root, program):
    root = pathlib.Path(root)
    first = subprocess.run([program, "--help"], check=True, capture_output=True, text=True).stdout
    commands = re.findall(r"^  ([a-z]+)  ", re.search(r"^Subcommands:\n((?:.+\n)+)", first, re.MULTILINE)[1], re.MULTILINE)
    helps = {
        command: subprocess.run([program, command, "--help"], check=True, capture_output=True, text=True).stdout
        for command in commands
        if command != "help"
    }
    if not helps:
        return ["the help names no commands"]
    manual = options_of_manual((root / "tests/project/statements.txt").read_text(encoding="utf-8"))
    return disagreements(helps, manual, known_pairs((root / "tests/project/help.txt").read_text(encoding="utf-8")))


def mistakes_are_found():
    helps = {"sign": "Sign\n\nOptions:\n  -f,--force                  Overwrite what is\n                              there\n"}
    manual = options_of_manual(f"== {PAGE}\n-f, --force (sign): Overwrite what is there.\n    A.B\n-f, --force (key): No.\n")
    assert disagreements(helps, manual, {}) == []
    other = options_of_manual(f"== {PAGE}\n-f, --force (key): Overwrite what is there.\n    A.B\n")
    assert len(disagreements(helps, other, {})) == 1
    longer = options_of_manual(f"== {PAGE}\n-f, --force (sign): Overwrite all.\n    A.B\n")
    pairs = known_pairs("# head\n\nsign --force\n    Overwrite what is there\n    Overwrite all.\n")
    assert disagreements(helps, longer, pairs) == []
    assert len(disagreements(helps, longer, {})) == 1
    assert len(disagreements(helps, options_of_manual(f"== {PAGE}\n-f, --force: Overwrite.\n"), pairs)) == 1
    assert len(disagreements({"sign": helps["sign"].replace("what", "how")}, longer, pairs)) == 1
    assert len(disagreements({"sign": "Sign\n"}, longer, pairs)) == 2
    return []


def main():
    wrong = mistakes_are_found() if sys.argv[1] == "mistakesAreFound" else agrees(sys.argv[2], sys.argv[3])
    if wrong:
        print("the help and the manual page differ, or help.txt does not have both:\n", *wrong, sep="\n", file=sys.stderr)
    return 1 if wrong else 0


sys.exit(main())
