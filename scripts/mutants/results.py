# SPDX-License-Identifier: Apache-2.0
"""What became of each mutant, kept in a file for later runs, and shown in a table."""
import collections

from .mutant import canonical

# uncompiled: the compiler or the linker refuses it. same: the object code is the unchanged one. caught: a test fails,
# crashes or hangs. equivalent: no test notices it, and the list says why. survived: no test notices it.
STATES = ["uncompiled", "same", "caught", "equivalent", "survived"]


class Results:
    def __init__(self, path, keeps):
        self.path, self.of = path, {}
        lines = path.read_text().splitlines() if keeps and path.exists() else []
        for state, by, file, function, change in (line.split("\t") for line in lines):
            self.of[(file, function, canonical(change))] = state
        if not keeps:
            path.write_text("")

    def set(self, mutant, state, by):
        self.of[mutant.key] = state
        with open(self.path, "a") as sink:
            sink.write("\t".join([state, by, mutant.key[0], mutant.function, mutant.change]) + "\n")

    def counts(self, keys):
        return collections.Counter(self.of[key] for key in keys if key in self.of)


def table(rows):
    """rows: (room, mutants, counts)"""
    if len(rows) > 1:
        rows = [*rows, ("all", sum(r[1] for r in rows), sum((r[2] for r in rows), collections.Counter()))]
    heads = ["room", "mutants", "tried", *STATES, "caught of those that differ"]
    lines = [heads]
    for room, mutants, counts in rows:
        differing = counts["caught"] + counts["survived"]
        percent = f"{100 * counts['caught'] / differing:.1f} %" if differing else "-"
        lines.append([room, str(mutants), str(counts.total()), *(str(counts[state]) for state in STATES), percent])
    widths = [max(len(line[i]) for line in lines) for i in range(len(heads))]
    return "\n".join("  ".join([line[0].ljust(widths[0]), *(w.rjust(n) for w, n in zip(line[1:], widths[1:]))])
                     for line in lines)  # fmt: skip
