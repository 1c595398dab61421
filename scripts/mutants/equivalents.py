# SPDX-License-Identifier: Apache-2.0
"""The list of mutants that change nothing that could be noticed. The head of the list says how it is written."""
import re
import sys
from pathlib import Path

from .mutant import canonical, collapsed


class ListError(Exception):
    pass


def read(path):
    """{key of a mutant: how the list shows it}"""
    shown = {}
    reason = place = None
    for number, line in enumerate(path.read_text().splitlines() if path.exists() else [], 1):
        text = collapsed(line)
        if not text or line.startswith("#"):
            continue
        if line.startswith("= "):
            reason, place = text[2:], None
        elif line.startswith("@ ") and reason:
            file, _, function = text[2:].partition(" ")
            place = (file, function)
        elif line.startswith("  ") and place and (found := re.match(r"(.*?)«(.*)»(.*)$", text)):
            old, *others = found[2].split("→")
            for other in others:
                change = f"{found[1]}«{old}→{other}»{found[3]}"
                shown[(*place, canonical(change))] = f"@ {' '.join(place)}".rstrip() + f"\n  {change}"
        else:
            raise ListError(f"{path}:{number}: expected '= reason', '@ file function' or an indented change: {line}")
    return shown


def without_line(tree, shown):
    """The entries whose line stands in no source of that name any more."""
    texts = {}
    for path in (p for top in tree.iterdir() if top.name not in ("build", ".git") for p in top.rglob("*.*")):
        if path.suffix in (".cpp", ".h"):
            texts.setdefault(path.name, []).append(canonical(path.read_text()))
    for (file, _, change), entry in shown.items():
        # As it stands there: without the number of those that look alike, and without what it is changed to.
        line = canonical(re.sub(r"«(.*)→.*»", r"\1", re.sub(r"#\d+$", "", change)))
        if not any(line in text for text in texts.get(file, [])):
            yield entry


if __name__ == "__main__":
    root = Path(sys.argv[1])
    found = list(without_line(root, read(root / "tests" / "equivalent-mutants.txt")))
    print("\n".join(found))
    sys.exit(1 if found else 0)
