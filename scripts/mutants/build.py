# SPDX-License-Identifier: Apache-2.0
"""One way of building a room's tests in the copied tree, again with each mutant, and of running them."""
import hashlib
import json
import os
import shlex
import shutil
import subprocess

from . import program

# Flags, sanitizers, and the part of the random cases that runs. Mutants meet the first way, and what survives there the
# others.
WAYS = {
    "plain": ("-O1 -DNDEBUG", "", None),
    "release": ("-O3 -DNDEBUG", "", 100),
    "asan": ("-O1 -g", "address,undefined", 10),
    "tsan": ("-O1 -g", "thread", 2),
}
# Tests that take less are run before the others.
QUICK_SECONDS = 0.1
LAST_CATCHERS = 8


class BuildError(Exception):
    pass


class Build:
    def __init__(self, way, tree, folder, test_folders, has_windows, percent):
        flags, sanitizers, own_percent = WAYS[way]
        self.folder, self.scratch = folder, folder / "scratch" / "here"
        self.is_sanitized = bool(sanitizers)
        self.environment = {**os.environ, "COUNTERSIGN_TEST_PERCENT": str(own_percent or percent),
                            "COUNTERSIGN_TEST_SEED": "1", "CCACHE_BASEDIR": str(tree.parent),
                            "CCACHE_NOHASHDIR": "1"}  # fmt: skip
        # Tests are found by their programs when they run, so that a mutant may break the program's start.
        definitions = {"CMAKE_BUILD_TYPE": "RelWithDebInfo", "CMAKE_C_FLAGS_RELWITHDEBINFO": flags,
                       "CMAKE_CXX_FLAGS_RELWITHDEBINFO": flags, "CMAKE_EXPORT_COMPILE_COMMANDS": "ON",
                       "CMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE": "PRE_TEST",
                       "COUNTERSIGN_SANITIZE": sanitizers,
                       "COUNTERSIGN_WINDOW_TESTS": "ON" if has_windows and not sanitizers else "OFF"}  # fmt: skip
        if shutil.which("ccache"):
            definitions |= {"CMAKE_C_COMPILER_LAUNCHER": "ccache", "CMAKE_CXX_COMPILER_LAUNCHER": "ccache"}
        self.targets = [f"tests/{name}/all" for name in test_folders]
        configure = ["cmake", "-S", str(tree), "-B", str(folder), "-G", "Ninja"]
        self.must("configuring", subprocess.run(configure + [f"-D{name}={value}" for name, value in definitions.items()],
                                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT))  # fmt: skip
        self.must("building", self.ninja(*self.targets))
        self.programs = self.inputs_of_programs()
        self.seen, self.digests = {}, {}
        self.changed_objects()
        self.original = dict(self.digests)
        self.catchers = []
        self.measure()

    def must(self, what, done):
        if done.returncode:
            raise BuildError(f"{what} in {self.folder}:\n{done.stdout.decode(errors='replace')[-4000:]}")

    def ninja(self, *arguments):
        return subprocess.run(["ninja", "-C", str(self.folder), *arguments], env=self.environment,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)  # fmt: skip

    def inputs_of_programs(self):
        """{test program: everything it is made of}"""
        names = sorted(f"bin/{path.name}" for path in (self.folder / "bin").glob("test_*"))
        if not names:
            raise BuildError(f"{', '.join(self.targets)} make no program bin/test_* in {self.folder}")
        return {name: set(self.ninja("-t", "inputs", name).stdout.decode().split("\n")) for name in names}

    def measure(self):
        """Finds the tests that pass on the unchanged program, and how long they take."""
        self.seconds = {}
        for name in self.programs:
            run = program.run(self.folder / name, [], {}, self.environment, self.scratch, not self.is_sanitized)
            if run.failed and not run.failed.endswith("(failed)"):
                raise BuildError(f"{name} does not come to its end on the unchanged program: {run.failed}")
            if run.failed:
                print(f"LEFT OUT, {name} fails on the unchanged program: {run.failed}", flush=True)
            self.seconds[name] = run.seconds
        names = sorted(self.programs, key=lambda name: sum(self.seconds[name].values()))
        quick = [(n, [t for t, s in self.seconds[n].items() if s < QUICK_SECONDS]) for n in names]
        slow = [(n, [t for t, s in self.seconds[n].items() if s >= QUICK_SECONDS]) for n in names]
        self.parts = [(name, tests) for name, tests in quick + slow if tests]

    def arguments(self):
        """{source: what the compiler is told about includes, definitions and the standard}"""
        result = {}
        for entry in json.loads((self.folder / "compile_commands.json").read_text()):
            words = shlex.split(entry["command"])
            kept = [w for w in words if w.startswith(("-I", "-D", "-std="))]
            kept += [word for pair in zip(words, words[1:]) if pair[0] == "-isystem" for word in pair]
            result[os.path.realpath(entry["file"])] = kept
        return result

    def changed_objects(self):
        """The objects that are not the unchanged program's."""
        for path in self.folder.rglob("*.o"):
            name, time = str(path.relative_to(self.folder)), path.stat().st_mtime_ns
            if self.seen.get(name) != time:
                self.seen[name] = time
                self.digests[name] = hashlib.sha256(path.read_bytes()).digest()
        return {n for n in self.digests if self.digests[n] != getattr(self, "original", {}).get(n)}

    def try_tests(self):
        """What becomes of the mutant that stands in the tree: a state and what decided it."""
        if self.ninja(*self.targets).returncode:
            return "uncompiled", ""
        changed = self.changed_objects()
        if not changed:
            return "same", ""
        parts = [part for part in self.parts if changed & self.programs[part[0]]]
        for name, tests in [(n, [t]) for n, t in self.catchers if changed & self.programs[n]] + parts:
            run = program.run(self.folder / name, tests, self.seconds[name], self.environment, self.scratch,
                              not self.is_sanitized)  # fmt: skip
            if run.failed:
                self.remember(name, run.failed.split(" ")[0])
                return "caught", f"{name.removeprefix('bin/')} {run.failed}"
        return "survived", ""

    def remember(self, name, test):
        """Mutants of one function are mostly caught by one test, so the last ones to catch are run first."""
        if test in self.seconds[name]:
            others = [catcher for catcher in self.catchers if catcher != (name, test)]
            self.catchers = [(name, test), *others][:LAST_CATCHERS]
