#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""The work behind scripts/mutate.sh, which see for how it is called.

A mutant is the program with one small change in one place. For each, the changed source is compiled in a copy of the
tree, the room's test programs are linked and run, and the first failing test has caught it. What the tests let pass is
a survivor: a hole in the tests, or a change that changes nothing (an equivalent mutant).

How a mutant ends:
    uncompiled  the compiler or the linker refuses it (warnings are off, so that as many as possible come through)
    same        the object code is the unchanged one, so it is the same program; for what the tests let pass, the code
                that the compiler makes with more optimisation counts as well
    caught      a test fails, crashes or does not end; if not in the plain build, then in one of the others
    equivalent  nothing catches it, and the list of equivalent mutants says why
    survived    nothing catches it
"""
import argparse
import collections
import ctypes
import hashlib
import json
import os
import random
import re
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import time
from pathlib import Path

import clang.cindex
import mutants_at_once
from clang.cindex import CursorKind

SOURCE_FOLDERS = {"bigdigits": "src"}  # of rooms whose sources are not in a folder of their own name
ROOMS = ["crypto", "platform", "assertionHandling", "bigdigits"]

# Each way of building: flags and sanitizers. Mutants meet the first one, and what survives there the others, as the
# tests do in the end.
BUILDS = {
    "plain": ("-O1 -DNDEBUG", ""),
    "release": ("-O3 -DNDEBUG", ""),
    "asan": ("-O1 -g", "address,undefined"),
    "tsan": ("-O1 -g", "thread"),
}
# And the part of the random cases that runs there.
FURTHER_PERCENTS = {"release": 100, "asan": 10, "tsan": 2}

# With these, too, equal code means that it is the same program.
FURTHER_LEVELS = ["-O2", "-O3"]

# Tests are run in parts, those that take less than so many seconds first.
SECONDS_OF_PARTS = [0.1, 1, float("inf")]

# Fewer mutants of a source than this are not worth a program of all; and how long its tests that are neither quick nor
# slow may take.
FEWEST_AT_ONCE = 10
MOST_SECONDS_AT_ONCE = 20

SAME_WHEN_OPTIMISED = "same when optimised"

# How a mutant can end, in the order of the table.
STATES = ["uncompiled", "same", "caught", "equivalent", "survived"]


def say(text):
    print(f"mutate: {text}", file=sys.stderr, flush=True)


def give_up(text):
    say(f"FAILED: {text}")
    sys.exit(2)


# ----------------------------------------------------------------------------------------------------------------------
# Mutants

# file: relative to the tree; function: around the place, or nothing; before, after: the whole lines around the change,
# white space collapsed. These four name a mutant: line numbers would not survive an edit somewhere above.
Mutant = collections.namedtuple("Mutant", "file function before after line begin end text")


def key_of(mutant):
    return (mutant.file, mutant.function, mutant.before, mutant.after)


SWAPS = {
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["/"],
    "<<": [">>"], ">>": ["<<"], "&": ["|"], "|": ["&"], "^": ["|"],
    "&&": ["||"], "||": ["&&"],
    # The bound moved, and the relation turned round.
    "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"], "==": ["!="], "!=": ["=="],
    "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="], "%=": ["/="],
    "<<=": [">>="], ">>=": ["<<="], "&=": ["|="], "|=": ["&="], "^=": ["|="],
    "++": ["--"], "--": ["++"],
}  # fmt: skip
RELATIONS = {"<", "<=", ">", ">=", "==", "!=", "&&", "||"}
STATEMENTS = {
    CursorKind.CALL_EXPR, CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR,
    CursorKind.CXX_DELETE_EXPR, CursorKind.CXX_STATIC_CAST_EXPR, CursorKind.CXX_THROW_EXPR, CursorKind.BREAK_STMT,
    CursorKind.CONTINUE_STMT, CursorKind.UNEXPOSED_EXPR, CursorKind.ASM_STMT,
}  # fmt: skip
FUNCTIONS = {
    CursorKind.FUNCTION_DECL, CursorKind.CXX_METHOD, CursorKind.CONSTRUCTOR, CursorKind.DESTRUCTOR,
    CursorKind.FUNCTION_TEMPLATE, CursorKind.CONVERSION_FUNCTION,
}  # fmt: skip
LITERAL = re.compile(r"(0[xX][0-9a-fA-F]+|[0-9]+)([uUlL]*)$")


class MutantMaker:
    """Finds the places in one source by the compiler's own understanding of it, so that comments, texts, types and
    template brackets are never taken for operators."""

    def __init__(self, tree, file, arguments):
        self.file = file
        self.path = str(tree / file)
        self.source = (tree / file).read_bytes()
        self.unit = unit = clang.cindex.Index.create().parse(self.path, args=arguments)
        errors = [d for d in unit.diagnostics if d.severity >= clang.cindex.Diagnostic.Error]
        if errors:
            give_up(f"{file} cannot be read: {errors[0]}")
        self.found = {}
        for cursor in unit.cursor.get_children():
            self.visit(cursor, "", None)
        self.number_those_that_look_alike()

    def number_those_that_look_alike(self):
        groups = collections.defaultdict(list)
        for place in sorted(self.found):
            groups[key_of(self.found[place])].append(place)
        for places in groups.values():
            for number, place in enumerate(places, 1) if len(places) > 1 else []:
                mutant = self.found[place]
                self.found[place] = mutant._replace(after=f"{mutant.after} ({number} of {len(places)})")

    def text(self, begin, end):
        return self.source[begin:end].decode()

    def extent(self, cursor):
        return cursor.extent.start.offset, cursor.extent.end.offset

    def add(self, function, begin, end, text):
        # The lines stay where they are, for what knows its line.
        text += "\n" * self.source[begin:end].count(b"\n")
        first = self.source.rfind(b"\n", 0, begin) + 1
        last = self.source.find(b"\n", end)
        before = " ".join(self.text(first, last).split())
        after = " ".join((self.text(first, begin) + text + self.text(end, last)).split())
        if before != after and "NOLINT" not in after.split("//")[0]:
            line = self.source.count(b"\n", 0, begin) + 1
            mutant = Mutant(self.file, function, before, after, line, begin, end, text)
            self.found.setdefault((begin, end, text), mutant)

    def visit(self, cursor, function, parent):
        location = cursor.location
        if location.file is None or location.file.name != self.path or cursor.kind == CursorKind.STATIC_ASSERT:
            return
        if cursor.kind in FUNCTIONS:
            function = cursor.spelling.split("<")[0]
        children = list(cursor.get_children())
        self.mutate(cursor, children, function)
        for child in children:
            self.visit(child, function, cursor)

    def mutate(self, cursor, children, function):
        kind = cursor.kind
        begin, end = self.extent(cursor)
        if kind in (CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR) and len(children) == 2:
            self.swap(function, self.extent(children[0])[1], self.extent(children[1])[0])
        elif kind == CursorKind.CALL_EXPR and re.match(r"operator\W", cursor.spelling):
            for child in children:
                if child.spelling == cursor.spelling:
                    self.swap(function, *self.extent(child))
        elif kind == CursorKind.UNARY_OPERATOR and children:
            inner_begin, inner_end = self.extent(children[0])
            if begin < inner_begin:
                operator = self.text(begin, inner_begin).strip()
                if operator in ("!", "~", "-"):
                    self.add(function, begin, begin + 1, "")
                else:
                    self.swap(function, begin, inner_begin)
            else:
                self.swap(function, inner_end, end)
        elif kind == CursorKind.INTEGER_LITERAL:
            match = LITERAL.match(self.text(begin, end))
            if match:
                value = int(match[1], 0) if match[1].startswith(("0x", "0X")) else int(match[1])
                form = hex if match[1].startswith(("0x", "0X")) else str
                self.add(function, begin, end, form(value + 1) + match[2])
                if value > 0:
                    self.add(function, begin, end, form(value - 1) + match[2])
        elif kind == CursorKind.FLOATING_LITERAL:
            self.add(function, begin, end, "2 * " + self.text(begin, end))
        elif kind == CursorKind.CHARACTER_LITERAL:
            match = re.match(r"'([0-9A-Za-z ])'$", self.text(begin, end))
            if match:
                self.add(function, begin, end, f"'{chr(ord(match[1]) + 1)}'")
        elif kind == CursorKind.CXX_BOOL_LITERAL_EXPR:
            self.add(function, begin, end, {"true": "false", "false": "true"}.get(self.text(begin, end), "true"))
        elif kind == CursorKind.RETURN_STMT:
            if not children:
                self.add(function, begin, end, "")
            else:
                value = self.extent(children[0])
                if self.text(*value) not in ("{}", "0", "false", "true", "nullptr", "*this"):
                    self.add(function, *value, "{}")
        elif kind == CursorKind.COMPOUND_STMT:
            for child in children:
                self.remove(child, function, cursor)
        elif kind == CursorKind.IF_STMT and children:
            conditions = [c for c in children if not c.kind.is_statement() and not c.kind.is_declaration()]
            for condition in conditions[:1]:
                self.negate(condition, function)
            for child in children[1:]:
                self.remove(child, function, None)
        elif kind in (CursorKind.WHILE_STMT, CursorKind.CONDITIONAL_OPERATOR) and children:
            self.negate(children[0], function)
            for child in children[1:] if kind == CursorKind.WHILE_STMT else []:
                self.remove(child, function, None)
        elif kind in (CursorKind.FOR_STMT, CursorKind.CXX_FOR_RANGE_STMT) and children:
            self.remove(children[-1], function, None)
        elif kind in (CursorKind.CASE_STMT, CursorKind.DEFAULT_STMT) and children:
            self.remove(children[-1], function, None)

    def swap(self, function, begin, end):
        text = self.text(begin, end)
        operator = text.strip()
        begin += len(text) - len(text.lstrip())
        for other in SWAPS.get(operator, []):
            self.add(function, begin, begin + len(operator), other)

    def negate(self, condition, function):
        inner = condition
        while inner.kind in (CursorKind.UNEXPOSED_EXPR, CursorKind.PAREN_EXPR) and len(list(inner.get_children())) == 1:
            inner = next(inner.get_children())
        begin, end = self.extent(inner)
        if inner.kind == CursorKind.BINARY_OPERATOR:
            left, right = inner.get_children()
            if self.text(self.extent(left)[1], self.extent(right)[0]).strip() in RELATIONS - {"&&", "||"}:
                return  # turned round already
        if inner.kind == CursorKind.UNARY_OPERATOR and self.text(begin, begin + 1) == "!":
            return
        if self.text(begin, end):
            self.add(function, begin, end, f"!({self.text(begin, end)})")

    def remove(self, statement, function, block):
        begin, end = self.extent(statement)
        if statement.kind in STATEMENTS:
            self.add(function, begin, end, "")
        elif statement.kind == CursorKind.DECL_STMT and block is not None:
            # A guard: an object that nothing mentions again, made for what its making and unmaking do.
            names = [c for c in statement.get_children() if c.kind == CursorKind.VAR_DECL]
            used = {c.spelling for c in block.walk_preorder() if c.kind == CursorKind.DECL_REF_EXPR}
            if len(names) == 1 and names[0].spelling not in used and re.search(r"[({]", self.text(begin, end)):
                self.add(function, begin, end, ";")


# ----------------------------------------------------------------------------------------------------------------------
# The list of equivalent mutants

class EquivalentList:
    """Sections of three kinds of lines: "@ file function", pairs of "- before" and "+ after", "= reason"."""

    def __init__(self, path):
        self.path = path
        self.reasons = {}
        place = before = None
        pending = []
        for number, line in enumerate(path.read_text().splitlines() if path.exists() else [], 1):
            kind, _, rest = line.partition(" ")
            rest = " ".join(rest.split())
            if not line.strip() or kind == "#":
                continue
            if kind == "@":
                file, _, function = rest.partition(" ")
                place = (file, function)
            elif kind == "-" and place:
                before = rest
            elif kind == "+" and before is not None:
                pending.append(place + (before, rest))
            elif kind == "=" and pending and rest:
                for key in pending:
                    self.reasons[key] = rest
                pending = []
            else:
                give_up(f"{path}:{number}: this line is not understood: {line}")
        if pending:
            give_up(f"{path}: the last mutants have no reason")


# ----------------------------------------------------------------------------------------------------------------------
# Building and running

def adopt_orphans():
    """What a mutant's children leave running becomes a child of this process, which can then end it."""
    PR_SET_CHILD_SUBREAPER = 36
    ctypes.CDLL(None, use_errno=True).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)


class LinkingFailed(Exception):
    pass


def end_all_children(own=()):
    for _ in range(100):
        children = Path(f"/proc/self/task/{os.getpid()}/children").read_text().split()
        children = [int(child) for child in children if int(child) not in own]
        if not children:
            return
        for child in children:
            try:
                os.kill(child, signal.SIGKILL)
                os.waitpid(child, 0)
            except (ProcessLookupError, ChildProcessError):
                pass


# seconds_of_tests: how long each test took.
Run = collections.namedtuple("Run", "passed failed_test processor_seconds seconds_of_tests")


def run_program(command, scratch, environment, seconds_of_tests, cpu_limit, memory_limit):
    """Runs a test program of gtest's in an empty folder. Says by which test it failed, if it did. A test that takes
    many times as long as before, by the clock or by the processor's time, or waits for long, has failed, too."""
    shutil.rmtree(scratch, ignore_errors=True)
    (scratch / "home").mkdir(parents=True)
    environment = dict(environment, TMPDIR=str(scratch), HOME=str(scratch / "home"))

    def limits():
        resource.setrlimit(resource.RLIMIT_CORE, (0, resource.getrlimit(resource.RLIMIT_CORE)[1]))
        resource.setrlimit(resource.RLIMIT_FSIZE, (8 << 30, 8 << 30))
        resource.setrlimit(resource.RLIMIT_CPU, (cpu_limit, cpu_limit + 5))
        if memory_limit:
            resource.setrlimit(resource.RLIMIT_AS, (memory_limit, memory_limit))

    output = scratch.parent / "output"
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    with open(output, "wb") as sink:
        process = subprocess.Popen(
            command, cwd=scratch, env=environment, stdin=subprocess.DEVNULL, stdout=sink, stderr=sink,
            start_new_session=True, preexec_fn=limits)  # fmt: skip
    status = None
    current, since, worked_since = "", time.monotonic(), 0
    worked_before, awake = 0, since
    while status is None:
        try:
            status = process.wait(timeout=0.5)
        except subprocess.TimeoutExpired:
            started = re.findall(r"^\[ RUN      \] (\S+)", tail_of(output), re.M)
            worked, is_asleep = work_of(process.pid)
            if worked != worked_before or not is_asleep:
                worked_before, awake = worked, time.monotonic()
            if started and started[-1] != current:
                current, since, worked_since = started[-1], time.monotonic(), worked
            # Before the first test and behind the last one something may hang, too.
            usual = 8 * seconds_of_tests.get(current, 0.5) if seconds_of_tests else 1800
            now = time.monotonic()
            if now - since > 10 + usual or worked - worked_since > 5 + usual or now - max(awake, since) > 3 + usual:
                status = "time limit"
                process.kill()
                process.wait()
    end_all_children()
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    processor_seconds = after.ru_utime + after.ru_stime - used.ru_utime - used.ru_stime
    text = tail_of(output)
    if status == 0:
        seconds = {name: int(ms) / 1000 for name, ms in re.findall(r"^\[       OK \] (\S+) \((\d+) ms\)", text, re.M)}
        return Run(True, "", processor_seconds, seconds)
    failed = re.search(r"^\[  FAILED  \] ([^\s,]+)", text, re.M)
    started = re.findall(r"^\[ RUN      \] (\S+)", text, re.M)
    test = failed[1] if failed else started[-1] if started else "?"
    how = "failed"
    if not failed:
        limits = {-signal.SIGXCPU: "time limit", "time limit": "time limit"}
        how = limits.get(status, f"status {status}")
    return Run(False, f"{test} ({how})", processor_seconds, {})


def work_of(pid):
    """The processor's time that all threads have had, in seconds, and whether the first one waits for anything else."""
    words = Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()
    return (int(words[11]) + int(words[12])) / os.sysconf("SC_CLK_TCK"), words[0] == "S"


def tail_of(file):
    with open(file, "rb") as source:
        source.seek(max(0, source.seek(0, os.SEEK_END) - 1000000))
        return source.read().decode(errors="replace")


class Build:
    """One way of building a room's tests in the copied tree, and of building them again with one source changed."""

    def __init__(self, work, tree, room, name, environment, has_windows=True):
        self.name = name
        self.tree = tree
        self.folder = work / name
        self.scratch = work / "scratch" / name / "here"
        self.environment = environment
        flags, sanitizers = BUILDS[name]
        self.sanitized = bool(sanitizers)
        definitions = [f"-DCOUNTERSIGN_SANITIZE={sanitizers}"]
        if self.sanitized or not has_windows:
            definitions.append("-DCOUNTERSIGN_WINDOW_TESTS=OFF")
        configure = ["cmake", "-S", str(tree), "-B", str(self.folder), "-G", "Ninja",
                     "-DCMAKE_BUILD_TYPE=RelWithDebInfo", f"-DCMAKE_C_FLAGS_RELWITHDEBINFO={flags}",
                     f"-DCMAKE_CXX_FLAGS_RELWITHDEBINFO={flags}", "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON",
                     "-DCOUNTERSIGN_BUILD_DESKTOP=OFF", "-DCOUNTERSIGN_BUILD_CLI=OFF"] + definitions  # fmt: skip
        if shutil.which("ccache"):
            configure += ["-DCMAKE_C_COMPILER_LAUNCHER=ccache", "-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"]
        say(f"building the tests of {room} ({name})")
        for command in (configure, ["cmake", "--build", str(self.folder), "-j", "1", "--target", f"tests/{room}/all"]):
            done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                  env=dict(environment, CCACHE_BASEDIR=str(work), CCACHE_NOHASHDIR="1"))  # fmt: skip
            if done.returncode != 0:
                give_up(f"building in {self.folder}:\n{done.stdout.decode(errors='replace')[-4000:]}")
        self.programs = sorted((self.folder / "bin").glob("test_*"))
        if not self.programs:
            give_up(f"tests/{room} has made no program {self.folder}/bin/test_*")
        self.read_commands()
        self.changed = None
        self.costs = {}
        self.parts = {}
        self.chosen = 0  # of all mutants at once
        self.stale = set()  # programs that are to be linked before they are run
        self.preambles = {}

    def ninja(self, *arguments):
        return subprocess.run(["ninja", "-C", str(self.folder), *arguments], check=True, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout  # fmt: skip

    def read_commands(self):
        # Everything that the programs are made with, in an order that works.
        lines = self.ninja("-t", "commands", *[f"bin/{p.name}" for p in self.programs]).splitlines()
        self.compiling = {}  # object: command
        self.linking = []  # (what is read and written, command)
        for line in lines:
            words = shlex.split(line)
            if "-c" in words and "-o" in words:
                if words[0].endswith("ccache"):
                    words = words[1:]
                words = [w for w in words if not re.match(r"-W(?!l,)", w)] + ["-w"]
                self.compiling[words[words.index("-o") + 1]] = words
            elif line.startswith(": && ") or " ar " in line or "/ar " in line:
                # Without what follows the linker: finding out the names of the tests.
                line = re.sub(r" && cd .*$", "", line)
                line = line.replace(" ccache ", " ").replace("/usr/bin/ccache ", "")
                self.linking.append((set(shlex.split(line)), line))
        self.objects_of = collections.defaultdict(list)
        current = None
        for line in self.ninja("-t", "deps").splitlines():
            if line and not line.startswith(" "):
                current = line.split(": #deps")[0]
            elif line and current in self.compiling:
                self.objects_of[os.path.realpath(self.folder / line.strip())].append(current)

    def objects(self, file):
        """What is compiled from the file: for the room's libraries, and for tests that take it in themselves. A change
        of a library is tried first."""
        everything = self.objects_of[os.path.realpath(self.tree / file)]
        of_tests = [name for name in everything if name.startswith("tests/")]
        of_library = [name for name in everything if name not in of_tests]
        return (of_library, of_tests) if of_library else (of_tests, [])

    def has_compiled(self, words):
        try:
            subprocess.run(words, cwd=self.folder, check=True, timeout=300, stdout=subprocess.DEVNULL,
                           stderr=subprocess.DEVNULL)  # fmt: skip
        except (subprocess.CalledProcessError, subprocess.TimeoutExpired):
            return False
        return True

    def preamble(self, file, name):
        """What makes the compiler take the headers that a source begins with in the form in which it has read them
        already, or nothing. When a header changes, these are the system's only."""
        is_source = file.endswith(".cpp")
        words = self.compiling[name]
        place = words.index("-c") + 1
        source = self.tree / file if is_source else self.folder / words[place]
        key = (name, file if is_source else "")
        if key not in self.preambles:
            self.preambles[key] = []
            header = self.folder / "preambles" / ("_".join(key).replace("/", "_") + ".h")
            kept, open_conditions = [], 0
            for line in source.read_text().splitlines():
                if not re.match(r"\s*(#|//|$)", line) or line.endswith("\\"):
                    break
                if is_source or not re.match(r'\s*#\s*include\s*"', line):
                    kept.append(line)
                open_conditions += bool(re.match(r"\s*#\s*if", line)) - bool(re.match(r"\s*#\s*endif", line))
            header.parent.mkdir(exist_ok=True)
            header.write_text("\n".join(kept + ["#endif"] * open_conditions + [""]))
            words = without_output(words[: place - 1] + words[place + 1 :])
            words += ["-iquote", str(source.parent), "-x", "c++-header", str(header), "-o", f"{header}.gch"]
            if source.suffix == ".cpp" and self.has_compiled(words):
                self.preambles[key] = ["-include", str(header)]
        return self.preambles[key]

    def compile(self, file, content, objects):
        """Compiles with this content of the file. Returns the digest of the objects, or None."""
        self.write(file, content)
        digest = hashlib.sha256()
        for name in objects:
            words = self.compiling[name]
            if not self.sanitized:
                words = words[:1] + self.preamble(file, name) + words[1:]
            if not self.has_compiled(words):
                return None
            digest.update((self.folder / name).read_bytes())
        return digest.hexdigest()

    def write(self, file, content):
        (self.tree / file).write_bytes(content)
        self.changed = file

    def digest_at(self, level, file, content, objects):
        """The digest of what the objects would be at another level of optimisation, or None."""
        self.write(file, content)
        digest = hashlib.sha256()
        target = self.folder / "optimised.o"
        for name in objects:
            words = [word for word in without_output(self.compiling[name]) if not re.match(r"-O\w*$", word)]
            if not self.has_compiled(words + [level, "-o", str(target)]):
                return None
            digest.update(target.read_bytes())
        return digest.hexdigest()

    def link(self, objects):
        """Libraries; the programs later, when they are run."""
        fresh = set(objects)
        for words, line in self.linking:
            if fresh & words:
                programs = [p for p in self.programs if f"bin/{p.name}" in words]
                self.stale.update(programs)
                if not programs:
                    if not self.has_run(line):
                        return False
                    # Programs find a shared library as it is now, without being linked again.
                    fresh |= {word for word in words if word.endswith(".a") and f" {word} " in line and " qc " in line}
        return True

    def has_run(self, line):
        return subprocess.run(line, shell=True, cwd=self.folder, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL).returncode == 0  # fmt: skip

    def link_program(self, program):
        if program in self.stale:
            for words, line in self.linking:
                if f"bin/{program.name}" in words and not self.has_run(line):
                    raise LinkingFailed
            self.stale.remove(program)

    def change(self, file, content):
        """Everything that is made from the file, with this content of it."""
        objects = sum(self.objects(file), [])
        return self.compile(file, content, objects) is not None and self.link(objects)

    def programs_made_of(self, objects):
        """The programs that the objects are in, be it through libraries."""
        fresh = set(objects)
        for words, line in self.linking:
            if fresh & words:
                fresh |= {name for names in re.findall(r" -o (\S+)| qc (\S+)", line) for name in names if name}
        return [p for p in self.programs if f"bin/{p.name}" in fresh]

    def programs_with(self, objects):
        """The programs that are linked of these objects."""
        lines = [words for words, _ in self.linking if words & set(objects)]
        return [p for p in self.programs if any(f"bin/{p.name}" in words for words in lines)]

    def objects_in(self, program, objects):
        """Those of the objects that the program is linked of."""
        words = set().union(*(words for words, _ in self.linking if f"bin/{program.name}" in words))
        return [name for name in objects if name in words]

    def measure(self, percent):
        """Runs the tests on the unchanged program: they must pass, and tell how long they may take. From here on,
        percent is the part of the random cases that runs."""
        self.percent = percent
        failed = self.failed_measuring(self.programs)
        if failed:
            give_up(failed)
        self.programs.sort(key=lambda p: sum(self.costs[p].seconds_of_tests.values()))

    def failed_measuring(self, programs):
        """The same for these; says by what it failed instead of giving up."""
        self.costs, self.parts = {}, {}
        for program in programs:
            run = self.run(program, "")
            if not run.passed:
                return f"{program.name} fails on the unchanged program: {run.failed_test}"
            self.costs[program] = run
            seconds = run.seconds_of_tests
            bounds = list(zip([-1] + SECONDS_OF_PARTS, SECONDS_OF_PARTS))
            parts = [[test for test in seconds if low <= seconds[test] < high] for low, high in bounds]
            # Those whose time is not known, such as skipped ones, are in the first.
            self.parts[program] = ["*-" + ":".join(parts[1] + parts[2])] + [":".join(part) for part in parts[1:]]
        return ""

    def run(self, program, tests):
        """tests: as gtest takes them, or nothing for all."""
        self.link_program(program)
        cost = self.costs.get(program)
        seconds = cost.processor_seconds if cost else 0
        if cost and tests:
            known = cost.seconds_of_tests
            left_out = set(tests[2:].split(":")) if tests.startswith("*-") else set(known) - set(tests.split(":"))
            seconds = min(seconds, sum(known[test] for test in known if test not in left_out))
        arguments = ["--gtest_filter=" + tests] if tests else []
        environment = dict(self.environment, COUNTERSIGN_TEST_PERCENT=str(self.percent), COUNTERSIGN_TEST_SEED="1",
                           **{mutants_at_once.VARIABLE: str(self.chosen)})  # fmt: skip
        # Some tests hold texts of gigabytes. Sanitizers take address space that they do not use.
        memory = None if self.sanitized else 16 << 30
        return run_program([str(program), "--gtest_fail_fast", *arguments], self.scratch, environment,
                           cost.seconds_of_tests if cost else None,
                           int(3 + 6 * seconds) if cost else 1800, memory)  # fmt: skip


def without_output(words):
    """A compiler's command without the files that it writes."""
    kept, following = [], iter(words)
    for word in following:
        if word in ("-o", "-MF", "-MT"):
            next(following)
        elif word != "-MD":
            kept.append(word)
    return kept


class Room:
    """Tries the mutants of one room."""

    def __init__(self, options, name, tree, work, environment):
        self.options = options
        self.name = name
        self.tree = tree
        self.work = work
        self.environment = environment
        self.plain = Build(work, tree, name, "plain", environment, not options.without_windows)
        self.further = {}
        self.digests = {}
        self.seconds_of_comparing = {}
        self.units = {}
        self.catchers = collections.OrderedDict()  # (program, test), the last to catch at the end
        commands = json.loads((self.plain.folder / "compile_commands.json").read_text())
        self.arguments = {}
        for entry in commands:
            words = shlex.split(entry["command"])
            kept = []
            for word, following in zip(words, words[1:] + [""]):
                if word == "-isystem":
                    kept += [word, following]
                elif word.startswith(("-I", "-D", "-std=")):
                    kept.append(word)
            self.arguments[os.path.realpath(entry["file"])] = kept

    def sources(self):
        folder = SOURCE_FOLDERS.get(self.name, self.name)
        files = [p.relative_to(self.tree) for p in (self.tree / folder).rglob("*") if p.suffix in (".cpp", ".h")]
        return sorted(str(f) for f in files if not self.options.file or f.name in self.options.file)

    def mutants(self):
        result = []
        for file in self.sources():
            path = os.path.realpath(self.tree / file)
            # A header is read with the arguments of some source of its folder.
            arguments = self.arguments.get(path) or next(
                (a for p, a in sorted(self.arguments.items()) if Path(p).parent == Path(path).parent), None)
            if arguments is None:
                continue
            if not self.plain.objects_of[path]:
                say(f"{file} is left out: no test program of the room is made with it")
                continue
            maker = MutantMaker(self.tree, file, arguments + ["-x", "c++"])
            self.units[file] = maker.unit
            result += maker.found.values()
        return result

    def try_at_once(self, file, mutants):
        """Yields the mutants of a source that a program catches in which they all are, and by what they are caught. It is
        slow, so only tests that are not are run."""
        plain, path = self.plain, self.tree / file
        original = path.read_bytes()
        # Tests that take the source in themselves wait for those that nothing catches in the library.
        objects, _ = plain.objects(file)
        programs = plain.programs_made_of(objects)
        all_of_them = mutants_at_once.SourceOfAll(self.units[file], str(path), original, mutants)
        kept = (plain.costs, plain.parts)
        plain.changed = file
        try:
            numbers = None
            # For each object anew, if it could not be compiled with some that others could be compiled with.
            while numbers != all_of_them.left():
                numbers = all_of_them.left()
                for name in objects:
                    if not mutants_at_once.has_compiled(all_of_them, path, plain.compiling[name], plain.folder):
                        return
            if not plain.link(objects):
                return
            failed = plain.failed_measuring(programs)
            if failed:
                say(f"{file}: all mutants at once: {failed}")
                return
            say(f"{file}: {len(numbers)} of {len(mutants)} mutants at once")
            # What these tests let pass may be the same program: slow ones wait for its own build.
            tests = [cost.seconds_of_tests.values() for cost in plain.costs.values()]
            seconds = sum(s for of_program in tests for s in of_program if s < SECONDS_OF_PARTS[1])
            parts = [0, 1] if seconds < MOST_SECONDS_AT_ONCE else [0]
            for plain.chosen in numbers:
                caught = self.caught_by_the_last_catchers(programs) or self.caught_by(plain, programs, parts)
                if caught:
                    self.remember(caught)
                    yield all_of_them.numbers[plain.chosen], f"{caught[0].name} {caught[1]}"
        except LinkingFailed:
            pass
        finally:
            plain.chosen = 0
            plain.costs, plain.parts = kept
            plain.change(file, original)

    def remember(self, caught):
        program, test = caught
        name = (program, test.split(" ")[0])
        self.catchers.pop(name, None)
        if name[1] != "?":
            self.catchers[name] = True

    def further_build(self, name):
        if name not in self.further:
            build = Build(self.work, self.tree, self.name, name, self.environment)
            build.measure(FURTHER_PERCENTS[name])
            self.further[name] = build
        return self.further[name]

    def caught_by(self, build, programs, numbers=range(len(SECONDS_OF_PARTS))):
        for number in numbers:
            for program in programs:
                tests = build.parts[program][number]
                if tests:
                    run = build.run(program, tests)
                    if not run.passed:
                        return program, run.failed_test
        return None

    def caught_by_the_last_catchers(self, programs):
        by_program = collections.defaultdict(list)
        for program, test in list(self.catchers)[-8:]:
            if program in programs:
                by_program[program].append(test)
        for program, tests in by_program.items():
            run = self.plain.run(program, ":".join(tests))
            if not run.passed:
                return program, run.failed_test
        return None

    def caught_in_plain_build(self, mutant, content, original):
        of_library, of_tests = self.plain.objects(mutant.file)
        later = self.plain.programs_with(of_tests)
        sooner = [program for program in self.plain.programs_made_of(of_library) if program not in later]
        caught = self.caught_by_the_last_catchers(sooner) or self.caught_by(self.plain, sooner, [0])
        longer = range(1, len(SECONDS_OF_PARTS))
        # Mostly cheaper than slow tests, but for headers that many tests take in.
        compares_first = not of_tests and self.seconds_to_compare(mutant, original) < self.seconds_of(sooner, longer)
        if caught is None and compares_first and self.is_same_when_optimised(mutant, content, original):
            return SAME_WHEN_OPTIMISED
        caught = caught or self.caught_by(self.plain, sooner, longer)
        # The program with the file's own tests first.
        stem = Path(mutant.file).stem
        later.sort(key=lambda program: not any(stem in name for name in self.plain.objects_in(program, of_tests)))
        for program in later if caught is None else []:
            objects = self.plain.objects_in(program, of_tests)
            if self.plain.compile(mutant.file, content, objects) is None or not self.plain.link(objects):
                return program, "? (does not compile)"
            caught = self.caught_by_the_last_catchers([program]) or self.caught_by(self.plain, [program])
            if caught:
                return caught
        if caught is None and not compares_first and self.is_same_when_optimised(mutant, content, original):
            return SAME_WHEN_OPTIMISED
        return caught

    def seconds_of(self, programs, numbers):
        """How long these parts of the tests take."""
        seconds = 0
        for program in programs:
            known = self.plain.costs[program].seconds_of_tests
            seconds += sum(known.get(t, 0) for number in numbers for t in self.plain.parts[program][number].split(":"))
        return seconds

    def seconds_to_compare(self, mutant, original):
        """How long it takes to compile the source with more optimisation."""
        if mutant.file not in self.seconds_of_comparing:
            begin = time.monotonic()
            objects, _ = self.plain.objects(mutant.file)
            for level in FURTHER_LEVELS:
                self.digest_of_original(level, mutant, original, objects)
            self.seconds_of_comparing[mutant.file] = time.monotonic() - begin
        return self.seconds_of_comparing[mutant.file]

    def digest_of_original(self, how, mutant, original, objects):
        key = (how, mutant.file, tuple(objects))
        if key not in self.digests:
            make = self.plain.compile if how == "" else lambda *rest: self.plain.digest_at(how, *rest)
            self.digests[key] = make(mutant.file, original, objects)
        return self.digests[key]

    def is_same_when_optimised(self, mutant, content, original):
        # What the source makes of tests that take it in it makes of the library.
        objects, _ = self.plain.objects(mutant.file)
        for level in FURTHER_LEVELS:
            digest = self.plain.digest_at(level, mutant.file, content, objects)
            if digest is not None and digest == self.digest_of_original(level, mutant, original, objects):
                return True
        return False

    def try_mutant(self, mutant, original, is_listed):
        content = original[: mutant.begin] + mutant.text.encode() + original[mutant.end :]
        of_library, of_tests = self.plain.objects(mutant.file)
        digest = self.digest_of_original("", mutant, original, of_library)
        mutants_digest = self.plain.compile(mutant.file, content, of_library)
        if mutants_digest is None:
            return "uncompiled", ""
        # What stands in a header may make a difference to the tests alone.
        if mutants_digest == digest and not of_tests:
            return "same", ""
        try:
            if not self.plain.link(of_library):
                return "uncompiled", "(linker)"
            caught = self.caught_in_plain_build(mutant, content, original)
        except LinkingFailed:
            return "uncompiled", "(linker)"
        if caught == SAME_WHEN_OPTIMISED:
            return "same", "(optimised)"
        if caught is None and is_listed:
            return "equivalent", ""
        if caught:
            self.remember(caught)
            return "caught", f"{caught[0].name} {caught[1]}"
        for name in self.options.then:
            # Built from the unchanged tree.
            self.plain.write(mutant.file, original)
            build = self.further_build(name)
            try:
                if build.change(mutant.file, content):
                    caught = self.caught_by(build, build.programs)
            except LinkingFailed:
                pass
            build.change(mutant.file, original)
            if caught:
                return "caught", f"{name}: {caught[0].name} {caught[1]}"
        return "survived", ""


# ----------------------------------------------------------------------------------------------------------------------
# The run

def copy_tree(source, tree):
    """What differs is written, so that what need not be built again is not."""
    left_out = {"build", ".git", ".cache"}
    wanted = set()
    for folder, folders, files in os.walk(source):
        folders[:] = [f for f in folders if f not in left_out]
        for file in files:
            path = Path(folder) / file
            if path.is_symlink() or not path.is_file():
                continue
            target = tree / path.relative_to(source)
            wanted.add(target)
            if not target.exists() or target.read_bytes() != path.read_bytes():
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(path, target)
    for folder, _, files in os.walk(tree):
        for file in files:
            if Path(folder) / file not in wanted:
                (Path(folder) / file).unlink()


class Results:
    """What became of each mutant, in a file that a run adds to, so that a later one can go on from there."""

    def __init__(self, path, keep):
        self.path = path
        self.states = {}
        if keep and path.exists():
            for line in path.read_text().splitlines():
                state, by, *key = line.split("\t")
                self.states[tuple(key)] = (state, by)
        else:
            path.write_text("")

    def set(self, key, state, by):
        self.states[key] = (state, by)
        with open(self.path, "a") as sink:
            sink.write("\t".join([state, by, *key]) + "\n")


def percent_of(part, whole):
    return f"{100.0 * part / whole:.1f} %" if whole else "-"


def print_table(rows):
    print(f"{'room':<20}{'mutants':>9}{'tried':>7}{'uncompiled':>12}{'same':>6}{'caught':>8}"
          f"{'equivalent':>12}{'survived':>10}{'of those that differ':>22}{'of those not listed':>21}")  # fmt: skip
    total = collections.Counter()
    for name, found, counts in rows + [("all", 0, None)]:
        if counts is None:
            if len(rows) < 2:
                continue
            counts, found = total, total["found"]
        differing = counts["caught"] + counts["equivalent"] + counts["survived"]
        tried = differing + counts["uncompiled"] + counts["same"]
        print(f"{name:<20}{found:>9}{tried:>7}{counts['uncompiled']:>12}{counts['same']:>6}{counts['caught']:>8}"
              f"{counts['equivalent']:>12}{counts['survived']:>10}{percent_of(counts['caught'], differing):>22}"
              f"{percent_of(counts['caught'], differing - counts['equivalent']):>21}")  # fmt: skip
        total.update(counts)
        total["found"] += found


def try_room(options, name, equivalents):
    work = options.work / name
    tree = work / "tree"
    copy_tree(options.tree, tree)
    environment = dict(os.environ)
    room = Room(options, name, tree, work, environment)
    found = room.mutants()
    by_key = {key_of(m): m for m in found}
    results = Results(work / "results.tsv", options.again or options.go_on or options.table)

    chosen = found
    if options.sample and options.sample < len(found):
        chosen = random.Random(options.seed).sample(found, options.sample)
    if options.again or options.go_on:
        wanted = {"survived", "equivalent"} if options.again else set()
        if options.go_on:
            wanted.add(None)
        chosen = [m for m in chosen if results.states.get(key_of(m), (None,))[0] in wanted]
    if options.table:
        chosen = []
    chosen.sort(key=lambda m: (m.file, m.begin, m.text))
    if options.dry_run:
        for mutant in chosen:
            print(f"{mutant.file}:{mutant.line} {mutant.function}\n- {mutant.before}\n+ {mutant.after}")
        return name, len(found), collections.Counter(), []

    if chosen:
        say(f"{name}: running the tests on the unchanged program")
        room.plain.measure(options.percent)
    originals = {}
    counts = collections.Counter()
    number = 0

    def note(mutant, state, by):
        nonlocal number
        number += 1
        key = key_of(mutant)
        results.set(key, state, by)
        counts[state] += 1
        if state == "survived":
            print(f"SURVIVED {mutant.file}:{mutant.line}\n@ {mutant.file} {mutant.function}\n"
                  f"- {mutant.before}\n+ {mutant.after}", flush=True)  # fmt: skip
        elif state == "caught" and key in equivalents.reasons:
            print(f"NOT EQUIVALENT, though listed: {mutant.file}:{mutant.line} is caught by {by}\n"
                  f"- {mutant.before}\n+ {mutant.after}", flush=True)  # fmt: skip
        if number % 25 == 0:
            say(f"{name}: {number} of {len(chosen)}, " + ", ".join(f"{counts[s]} {s}" for s in STATES))

    try:
        left = chosen
        if not options.singly:
            of_file = collections.defaultdict(list)
            for mutant in chosen:
                of_file[mutant.file].append(mutant)
            done = set()
            for file, mutants in of_file.items():
                if file.endswith(".cpp") and len(mutants) >= FEWEST_AT_ONCE:
                    for mutant, by in room.try_at_once(file, mutants):
                        note(mutant, "caught", by)
                        done.add(key_of(mutant))
            left = [mutant for mutant in chosen if key_of(mutant) not in done]
        for mutant in left:
            if mutant.file not in originals:
                restore(room, originals)
                originals[mutant.file] = (tree / mutant.file).read_bytes()
            state, by = room.try_mutant(mutant, originals[mutant.file], key_of(mutant) in equivalents.reasons)
            note(mutant, state, by)
    except KeyboardInterrupt:
        say(f"{name}: stopped")
    restore(room, originals)

    # An entry of the list may be younger than the result.
    states = {k: results.states[k][0] for k in by_key if k in results.states}
    for key in states:
        if states[key] == "survived" and key in equivalents.reasons:
            states[key] = "equivalent"
    counts = collections.Counter(states.values())
    survivors = [by_key[k] for k in states if states[k] == "survived"]
    if not options.sample and not options.file:
        folder = SOURCE_FOLDERS.get(name, name) + "/"
        for key in equivalents.reasons:
            if key[0].startswith(folder) and key not in by_key:
                say(f"{equivalents.path.name} lists what is no mutant any more: {key[0]} {key[1]}: {key[3]}")
    return name, len(by_key), counts, survivors


def restore(room, originals):
    file = room.plain.changed
    if file in originals:
        room.plain.change(file, originals[file])


def main():
    parser = argparse.ArgumentParser(prog="scripts/mutate.sh", add_help=True, description="see scripts/mutate.sh")
    parser.add_argument("rooms", nargs="*", metavar="ROOM")
    parser.add_argument("--sample", type=int)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--file", action="append")
    parser.add_argument("--again", action="store_true")
    parser.add_argument("--go-on", action="store_true")
    parser.add_argument("--table", action="store_true")
    parser.add_argument("--dry-run", action="store_true")
    parser.add_argument("--singly", action="store_true")
    parser.add_argument("--percent", type=int, default=2)
    parser.add_argument("--then", default="release,asan,tsan")
    parser.add_argument("--without-windows", action="store_true")
    parser.add_argument("--tree", type=Path)
    parser.add_argument("--list", type=Path)
    parser.add_argument("--work", type=Path)
    options = parser.parse_args()
    root = Path(__file__).resolve().parent.parent
    options.tree = (options.tree or root).resolve()
    options.work = (options.work or root / "build" / "mutate").resolve()
    options.list = options.list or options.tree / "tests" / "equivalent-mutants.txt"
    options.then = [name for name in options.then.split(",") if name != "none"]
    if unknown := set(options.then) - set(FURTHER_PERCENTS):
        give_up(f"there is no way of building {', '.join(unknown)}: release, asan, tsan, none")
    for room in options.rooms:
        if not (options.tree / "tests" / room / "CMakeLists.txt").exists():
            give_up(f"there is no room '{room}' with tests in tests/{room}")

    adopt_orphans()
    for number in (signal.SIGINT, signal.SIGTERM):
        signal.signal(number, signal.default_int_handler)
    equivalents = EquivalentList(options.list)
    rows, survivors = [], []
    for name in options.rooms or ROOMS:
        *row, left = try_room(options, name, equivalents)
        rows.append(tuple(row))
        survivors += left
    if options.dry_run:
        return 0
    print_table(rows)
    counts = sum((row[2] for row in rows), collections.Counter())
    if survivors:
        print(f"{len(survivors)} survived that are not in {options.list.name}")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
