# SPDX-License-Identifier: Apache-2.0
"""The work behind scripts/mutate.sh; docs/mutants.md says how it is called and how it works."""
import argparse
import os
import random
import shutil
import signal
import sys
from pathlib import Path

from . import build, equivalents, program, results, source

ROOMS = ["crypto", "platform", "assertionHandling", "assertionReporting", "bigdigits", "app", "cli", "host"]
SOURCES = {"bigdigits": "src"}  # of rooms whose sources are in a folder of another name
# Rooms whose tests are not only in the folder of tests/ that has their first name.
TESTS = {
    "assertionReporting": ["assertionReporting", "host"],
    "host/keys": ["host", "cli"],
    "host/messages": ["host", "cli"],
    "host/signing": ["host", "cli"],
}
# Rooms that know no window: their tests are enough, and tests with windows take long.
WITHOUT_WINDOWS = ["crypto", "bigdigits", "cli", "host/documents", "host/keys", "host/messages", "host/signing"]


def say(text):
    print(f"mutate: {text}", file=sys.stderr, flush=True)


def options_of(arguments):
    parser = argparse.ArgumentParser(prog="scripts/mutate.sh", description="docs/mutants.md says more.")
    parser.add_argument("rooms", nargs="*", metavar="ROOM")
    parser.add_argument("--sample", type=int, metavar="N", help="only N mutants of each room")
    parser.add_argument("--seed", type=int, default=1, help="another sample")
    parser.add_argument("--file", action="append", metavar="NAME", help="only those of this source")
    parser.add_argument("--again", action="store_true", help="only those that nothing caught in the last run")
    parser.add_argument("--go-on", action="store_true", help="only those that no run has come to")
    parser.add_argument("--dry-run", action="store_true", help="print the mutants and try none")
    parser.add_argument("--percent", type=int, default=2, help="random cases of bigdigits to begin with")
    parser.add_argument("--then", default="release,asan,tsan", help="other builds that survivors meet, or none")
    parser.add_argument("--tree", type=Path, help="another source tree")
    parser.add_argument("--work", type=Path, help="another folder than build/mutate")
    options = parser.parse_args(arguments)
    root = Path(__file__).resolve().parents[2]
    options.tree = (options.tree or root).resolve()
    options.work = (options.work or root / "build" / "mutate").resolve()
    options.then = [way for way in options.then.split(",") if way != "none"]
    if unknown := set(options.then) - set(build.WAYS):
        parser.error(f"no such build: {', '.join(unknown)}")
    for room in options.rooms:
        if not folder_of(options, room).is_dir():
            parser.error(f"no such room: {room}")
    return options


def folder_of(options, room):
    return options.tree / SOURCES.get(room, room)


def copy(tree, target):
    """Writes only what differs, so that nothing else is built again."""

    def copy_other(one, other):
        if not os.path.exists(other) or Path(one).read_bytes() != Path(other).read_bytes():
            shutil.copy(one, other)

    ignored = shutil.ignore_patterns("build", ".git", ".cache", "__pycache__")
    shutil.copytree(tree, target, ignore=ignored, copy_function=copy_other, dirs_exist_ok=True)


class Room:
    def __init__(self, options, name, listed):
        self.options, self.name, self.listed = options, name, listed
        self.work = options.work / name.replace("/", "-")
        self.tree = self.work / "tree"
        self.builds = {}
        copy(options.tree, self.tree)

    def build(self, way):
        if way not in self.builds:
            say(f"{self.name}: building and running the unchanged tests ({way})")
            tests = TESTS.get(self.name, [self.name.split("/")[0]])
            has_windows = self.name not in WITHOUT_WINDOWS
            self.builds[way] = build.Build(way, self.tree, self.work / way, tests, has_windows, self.options.percent)
        return self.builds[way]

    def mutants(self):
        arguments = self.build("plain").arguments()
        found = []
        for path in sorted(folder_of(self.options, self.name).rglob("*.*")):
            file = path.relative_to(self.options.tree)
            if path.suffix not in (".cpp", ".h") or (self.options.file and path.name not in self.options.file):
                continue
            # A header is parsed with the arguments of its own source, or of another one of its folder.
            own = os.path.realpath(self.tree / file.with_suffix(".cpp"))
            beside = [a for p, a in sorted(arguments.items()) if Path(p).parent == Path(own).parent]
            known = [arguments[own]] if own in arguments else beside if path.suffix == ".h" else []
            if known:
                found += source.mutants_of(self.tree, str(file), known[0])
            else:
                say(f"{file} is left out: it is not built here")
        return found

    def judge(self, mutant):
        """Tries one mutant in one build after the other."""
        path = self.tree / mutant.file
        original = path.read_bytes()
        for way in ["plain", *self.options.then]:
            # Made from the unchanged tree.
            tried = self.build(way)
            try:
                path.write_bytes(mutant.applied_to(original))
                state, by = tried.try_tests()
            finally:
                path.write_bytes(original)
            if state in ("same", "caught") or way == "plain" and state == "uncompiled":
                return state, by if way == "plain" else f"{way}: {by}"
            if mutant.key in self.listed:
                return "equivalent", ""
        return "survived", ""

    def note(self, mutant, state, by):
        place = f"{mutant.file}:{mutant.line}\n@ {mutant.key[0]} {mutant.function}".rstrip() + f"\n  {mutant.change}"
        if state == "survived":
            print(f"SURVIVED {place}", flush=True)
        elif state == "caught" and mutant.key in self.listed:
            print(f"NOT EQUIVALENT, though listed: {place}\ncaught by {by}", flush=True)

    def chosen(self, found, kept):
        options, result = self.options, found
        if options.sample and options.sample < len(found):
            result = random.Random(options.seed).sample(found, options.sample)
        if options.again or options.go_on:
            wanted = ({"survived", "equivalent"} if options.again else set()) | ({None} if options.go_on else set())
            result = [m for m in result if kept.of.get(m.key) in wanted]
        return sorted(result, key=lambda m: (m.file, m.begin, m.text))

    def run(self):
        """Returns a row of the table."""
        options, found = self.options, self.mutants()
        kept = results.Results(self.work / "results.tsv", options.again or options.go_on or options.dry_run)
        chosen = self.chosen(found, kept)
        for number, mutant in enumerate(chosen, 1):
            if options.dry_run:
                print(f"{mutant.file}:{mutant.line} {mutant.function}\n  {mutant.change}")
                continue
            state, by = self.judge(mutant)
            kept.set(mutant, state, by)
            self.note(mutant, state, by)
            if number % 20 == 0:
                say(f"{self.name}: {number} of {len(chosen)} tried")
        files, keys = {m.key[0] for m in found}, {m.key for m in found}
        for key, entry in self.listed.items():
            if key[0] in files and key not in keys:
                print(f"NO MUTANT ANY MORE, though listed:\n{entry}")
        return self.name, len(found), kept.counts(keys)


def main():
    options = options_of(sys.argv[1:])
    program.adopt_orphans()
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    try:
        listed = equivalents.read(options.tree / "tests" / "equivalent-mutants.txt")
        rows = [Room(options, name, listed).run() for name in options.rooms or ROOMS]
    except (build.BuildError, equivalents.ListError, source.SourceError) as error:
        say(f"FAILED: {error}")
        return 2
    except KeyboardInterrupt:
        say("stopped")
        return 2
    if not options.dry_run:
        print(results.table(rows))
    return 1 if any(row[2]["survived"] for row in rows) else 0


if __name__ == "__main__":
    sys.exit(main())
