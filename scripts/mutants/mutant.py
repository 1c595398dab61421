# SPDX-License-Identifier: Apache-2.0
"""What a mutant is: a source with one piece of its text replaced."""
import dataclasses
import re


@dataclasses.dataclass(frozen=True)
class Mutant:
    file: str  # relative to the tree
    function: str  # around the place, or nothing
    line: int
    begin: int  # the octets that are replaced
    end: int
    text: str  # what stands there instead
    change: str  # the lines around it, with the change as «old→new»

    @property
    def key(self):
        """Names a mutant by what stands there. Neither the line number nor the folder counts, so that it keeps its
        name when lines or files move."""
        return self.file.rpartition("/")[2], self.function, canonical(self.change)

    def applied_to(self, source):
        # The lines below stay where they are, for what knows its line.
        lines = b"\n" * (source.count(b"\n", self.begin, self.end) - self.text.count("\n"))
        return source[: self.begin] + self.text.encode() + lines + source[self.end :]


def canonical(text):
    """The same for texts that differ in their style alone: blanks, parentheses, i++ and ++i."""
    return re.sub(r"(\+\+|--)(\w+)", r"\2\1", re.sub(r"[\s()]", "", text))


def collapsed(text):
    return " ".join(text.split())


def mutant_of(file, source, function, begin, end, text):
    """source: in octets, as the compiler counts."""
    first = source.rfind(b"\n", 0, begin) + 1
    last = source.find(b"\n", end)
    before, old, after = source[first:begin], source[begin:end], source[end : last if last >= 0 else None]
    change = f"{before.decode()}«{collapsed(old.decode())}→{collapsed(text)}»{after.decode()}"
    return Mutant(file, function, source.count(b"\n", 0, begin) + 1, begin, end, text, collapsed(change))


def numbered(mutants):
    """In the order of the source. Those that look alike in one function get a number."""
    groups = {}
    for mutant in sorted(mutants, key=lambda m: (m.begin, m.end, m.text)):
        groups.setdefault(mutant.key, []).append(mutant)
    result = []
    for group in groups.values():
        for number, mutant in enumerate(group, 1):
            mark = f" #{number}" if len(group) > 1 else ""
            result.append(dataclasses.replace(mutant, change=mutant.change + mark))
    return sorted(result, key=lambda m: (m.begin, m.end, m.text))
