# SPDX-License-Identifier: Apache-2.0
"""All mutants of a source in one program, for scripts/mutate.py: it is compiled once, and a variable of the environment
says which mutant it is. That is many times faster than to compile and link each mutant for itself.

For this each statement, condition or initial value that has mutants is written down several times: as each of them, and
as it is. What cannot be a choice at run time (a constant for the compiler, a declaration) stays for a build of its own, and
so does what nothing catches here: only that shows whether it is the same program.
"""
import collections
import re
import subprocess

from clang.cindex import CursorKind

VARIABLE = "COUNTERSIGN_MUTANT"
# Before anything is initialised, it is 0: no mutant.
HEADER = f"""#include <stdlib.h>
inline const int chosenMutant = getenv("{VARIABLE}") != nullptr ? atoi(getenv("{VARIABLE}")) : 0;
"""
MOST_TRIES = 25

# A part of the source that is written down several times. kind: "statement", "condition" or "value".
Region = collections.namedtuple("Region", "begin end kind")

EXPRESSION_STATEMENTS = {
    CursorKind.CALL_EXPR, CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR,
    CursorKind.UNARY_OPERATOR, CursorKind.UNEXPOSED_EXPR, CursorKind.CXX_DELETE_EXPR, CursorKind.CXX_STATIC_CAST_EXPR,
    CursorKind.CXX_THROW_EXPR, CursorKind.RETURN_STMT, CursorKind.BREAK_STMT, CursorKind.CONTINUE_STMT,
}  # fmt: skip


class RegionFinder:
    """The innermost region around each place of a source."""

    def __init__(self, unit, path, source):
        self.path = path
        self.source = source
        self.regions = set()
        for cursor in unit.cursor.get_children():
            location = cursor.location
            if location.file is not None and location.file.name == path:
                self.visit(cursor)

    def add(self, cursor, kind):
        begin, end = cursor.extent.start.offset, cursor.extent.end.offset
        # What a macro makes stands at its use.
        is_macro = re.match(rb"[A-Z][A-Z0-9_]+\s*\(", self.source[begin:end])
        if begin < end and cursor.extent.start.file and cursor.extent.start.file.name == self.path and not is_macro:
            self.regions.add(Region(begin, end, kind))

    def visit(self, cursor):
        kind = cursor.kind
        if kind == CursorKind.STATIC_ASSERT:
            return
        children = list(cursor.get_children())
        expressions = [c for c in children if c.kind.is_expression()]
        if kind == CursorKind.COMPOUND_STMT:
            for child in children:
                if child.kind in EXPRESSION_STATEMENTS:
                    self.add(child, "statement")
        elif kind in (CursorKind.CASE_STMT, CursorKind.DEFAULT_STMT) and children:
            if children[-1].kind in EXPRESSION_STATEMENTS:
                self.add(children[-1], "statement")
        elif kind in (CursorKind.IF_STMT, CursorKind.WHILE_STMT, CursorKind.CONDITIONAL_OPERATOR) and expressions:
            self.add(expressions[0], "condition")
        elif kind == CursorKind.DO_STMT and expressions:
            self.add(expressions[-1], "condition")
        elif kind == CursorKind.FOR_STMT:
            for child in children:
                if child.kind.is_expression():
                    self.add(child, "value")
        elif kind == CursorKind.INIT_LIST_EXPR:
            for child in expressions:
                self.add(child, "value")
        elif kind == CursorKind.VAR_DECL:
            begin = cursor.extent.start.offset
            declared = self.source[begin : cursor.extent.end.offset]
            if expressions and b"=" in declared and not re.search(rb"\b(constexpr|static)\b", declared.split(b"=")[0]):
                self.add(expressions[-1], "value")
        for child in children:
            self.visit(child)

    def around(self, begin, end):
        found = [r for r in self.regions if r.begin <= begin and end <= r.end]
        return min(found, key=lambda r: r.end - r.begin, default=None)


class SourceOfAll:
    """The source with those of the mutants in it that can be. Mutant i is numbers[i]."""

    def __init__(self, unit, path, source, mutants):
        self.source = source
        self.finder = RegionFinder(unit, path, source)
        self.numbers = {number: mutant for number, mutant in enumerate(mutants, 1)}
        self.of_region = collections.defaultdict(list)
        for number, mutant in self.numbers.items():
            region = self.finder.around(mutant.begin, mutant.end)
            if region is not None:
                self.of_region[region].append(number)

    def drop(self, numbers):
        for region in list(self.of_region):
            self.of_region[region] = [n for n in self.of_region[region] if n not in numbers]
            if not self.of_region[region]:
                del self.of_region[region]

    def left(self):
        return sorted(n for numbers in self.of_region.values() for n in numbers)

    def mutated(self, region, number):
        mutant = self.numbers[number]
        source = self.source
        return (source[region.begin : mutant.begin] + mutant.text.encode() + source[mutant.end : region.end]).decode()

    def choice(self, region, original):
        result = []
        for number in self.of_region[region]:
            text = self.mutated(region, number)
            if region.kind == "statement":
                result.append(f"\n/*@{number}*/ if (chosenMutant == {number}) {{ {text}; }} else")
            elif region.kind == "condition":
                result.append(f"\n/*@{number}*/ chosenMutant == {number} ? static_cast<bool>({text}) :")
            else:
                result.append(f"\n/*@{number}*/ chosenMutant == {number} ? ({text}) :")
        first = self.of_region[region][0]
        body = "".join(result)
        if region.kind == "statement":
            return f"{{{body}\n/*@-{first}*/ {{ {original}; }} }}\n/*@0*/"
        if region.kind == "condition":
            return f"({body}\n/*@-{first}*/ static_cast<bool>({original}))\n/*@0*/"
        return f"({body}\n/*@-{first}*/ ({original}))\n/*@0*/"

    def written(self, begin, end):
        """The source from begin to end, with its choices."""
        inside = sorted(r for r in self.of_region if begin <= r.begin and r.end <= end and (r.begin, r.end) != (begin, end))
        outermost = [r for r in inside if not any(o != r and o.begin <= r.begin and r.end <= o.end for o in inside)]
        result, position = [], begin
        for region in outermost:
            result.append(self.source[position : region.begin].decode())
            result.append(self.choice(region, self.written(region.begin, region.end)))
            position = region.end
        result.append(self.source[position:end].decode())
        return "".join(result)

    def content(self):
        return HEADER + self.written(0, len(self.source))

    def numbers_at(self, content, lines):
        """The mutants of these lines; where it is written down as it is, all of its region."""
        marks, current = [], 0
        for line in content.splitlines():
            found = re.match(r"/\*@(-?\d+)\*/", line)
            current = int(found[1]) if found else current
            marks.append(current)
        result = set()
        for line in lines:
            mark = marks[line - 1] if 0 < line <= len(marks) else 0
            if mark > 0:
                result.add(mark)
            elif mark < 0:
                for numbers in self.of_region.values():
                    if -mark in numbers:
                        result.update(numbers)
        return result


def has_compiled(source_of_all, path, command, folder):
    """Writes the source with as many of the mutants as the compiler takes, and compiles it. Not optimised: with thousands
    of choices, that takes minutes."""
    for _ in range(MOST_TRIES):
        if not source_of_all.left():
            return False
        content = source_of_all.content()
        path.write_text(content)
        done = subprocess.run([*command, "-O0", "-Wno-narrowing", "-fmax-errors=0", "-fdiagnostics-color=never"], cwd=folder,
                              stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)  # fmt: skip
        if done.returncode == 0:
            return True
        said = done.stderr.decode(errors="replace")
        place = re.escape(str(path)) + r":(\d+):\d+: "
        wrong = source_of_all.numbers_at(content, map(int, re.findall(place + r"(?:fatal )?error", said)))
        # What is wrong in a template is said where it is used.
        wrong = wrong or source_of_all.numbers_at(content, map(int, re.findall(place, said)))
        if not wrong:
            return False
        source_of_all.drop(wrong)
    return False
