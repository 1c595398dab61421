#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Fails when a sentence of the manual pages or the README has no test.

    statements.py areTried SOURCE-FOLDER   compares the pages with the list of their sentences, statements.txt
    statements.py update SOURCE-FOLDER     writes that list anew: keeps what it knows, and marks new sentences by "?"
    statements.py mistakesAreFound         shows that mistakes are found, in a folder of its own

The head of the list says how it is written.
"""
import collections
import difflib
import pathlib
import re
import sys
import tempfile

MANUALS = ["docs/man/countersign.1.in", "docs/man/countersign-desktop.1.in"]
README = "README.md"
LIST = "tests/project/statements.txt"
TABLE = "tests/cli/StatementsTest.cpp"
RELEASE_CHECK = "scripts/release-check.sh"

# What a sentence is that no test can try.
WITHOUT_TEST = {"definition", "advice", "limit", "measured", "policy", "reference", "untried"}

# What is no statement: these sections of a manual page. The synopsis is compared with the help by another test.
NO_STATEMENTS = {"NAME", "SYNOPSIS", "SEE"}

Entry = collections.namedtuple("Entry", "number sentence tests")


def sentences_of(lines):
    """The sentences of a paragraph's lines."""
    text = " ".join(" ".join(lines).split())
    return re.split(r"(?<=[.!?])\s+|(?<=[.!?]\))\s+", text) if text else []


def plain_roff(line):
    """The text of a manual page's line, without its macro."""
    macro = re.match(r"\.([A-Z]+)\s+(.*)", line)
    if macro:
        words = [quoted or bare for quoted, bare in re.findall(r'"([^"]*)"|(\S+)', macro[2])]
        # Two letters: the words are set in these fonts in turn, without blanks between them.
        line = ("" if len(macro[1]) == 2 else " ").join(words)
    for written, meant in (("\\fI", ""), ("\\fR", ""), ("\\(aq", "'"), ("\\e", "\\"), ("\\-", "-")):
        line = line.replace(written, meant)
    return line


def of_manual(text):
    """Yields the sentences, with the term in front of an item's first one, and each command of an example."""
    paragraph, term, is_term, is_example, is_left_out = [], "", False, False, False

    def end():
        nonlocal term
        if is_example:
            found = [f"$ {line}" for line in re.sub(r"\\\n *", "", "\n".join(paragraph)).splitlines()]
        else:
            found = sentences_of(paragraph)
        if term and found:
            found[0] = f"{term}: {found[0]}"
            term = ""
        paragraph.clear()
        return found

    for line in text.splitlines():
        macro = re.match(r"\.(SH|SS|TP|PP|TH|nf|fi|\\\")", line)
        if macro:
            yield from end()
            is_example = macro[1] == "nf"
            is_term = macro[1] == "TP"
            if macro[1] == "SH":
                is_left_out = line.split()[1] in NO_STATEMENTS
        elif is_left_out:
            continue
        elif is_term:
            term, is_term = plain_roff(line), False
        elif term and not paragraph and re.match(r"\.RB \( \w+ \)$", line):
            # The commands that an option belongs to.
            term += " " + plain_roff(line)
        else:
            paragraph.append(plain_roff(line))
    yield from end()


def of_readme(text):
    """Yields the sentences, each row of a table, and the first line of each piece of code."""
    paragraph, code, is_fenced = [], [], False

    def end():
        found = ["$ " + code[0].removeprefix("$ ") + (" ..." if len(code) > 1 else "")] if code else []
        found += sentences_of(paragraph)
        code.clear()
        paragraph.clear()
        return found

    lines = text.splitlines()
    for line, after in zip(lines, lines[1:] + [""]):
        if line.startswith("```"):
            yield from end()
            is_fenced = not is_fenced
        elif is_fenced or line.startswith("    "):
            if not code:
                yield from end()
            if line.strip():
                code.append(line.strip())
        elif line.startswith("|"):
            yield from end()
            cells = [cell.strip() for cell in line.strip("|").split("|")]
            # Neither a table's head, nor the line below it, nor a row of pictures.
            if not (after.startswith("|--") or line.startswith("|--") or line.startswith("| ![")):
                yield " | ".join(cells).rstrip(" |")
        elif not line.strip() or line.startswith(("#", "![", "- ")):
            yield from end()
            if line.startswith("- "):
                paragraph.append(line[2:])
        else:
            if code:
                yield from end()
            paragraph.append(line)
    yield from end()


def sentences_of_pages(root):
    for page in MANUALS + [README]:
        sentences = of_readme if page == README else of_manual
        yield page, list(sentences((root / page).read_text(encoding="utf-8")))


def read_list(root):
    """The head of the list, and the entries of each page."""
    head, pages, entries = [], {}, None
    for number, line in enumerate((root / LIST).read_text(encoding="utf-8").splitlines(), 1):
        if line.startswith("== "):
            entries = pages.setdefault(line[3:], [])
        elif entries is None:
            head.append(line)
        elif line.startswith(" "):
            entries[-1].tests.append((number, line.strip()))
        elif line:
            entries.append(Entry(number, line, []))
    return head, pages


class Tests:
    """The tests that there are, by what the sources say: a build may lack some."""

    def __init__(self, root):
        self.root = root
        self.names = set()
        for path in sorted((root / "tests").rglob("*.cpp")):
            text = path.read_text(encoding="utf-8")
            found = re.findall(r"^TEST(?:_F|_P)?\((\w+),\s*(\w+)\)", text, re.M)
            self.names.update(f"{suite}.{name}" for suite, name in found)
        self.rows = re.findall(r'^    \{\w+,\s*"((?:[^"\\]|\\.)*)"', (root / TABLE).read_text(encoding="utf-8"), re.M)
        self.of_cmake = []
        for path in sorted((root / "tests").rglob("CMakeLists.txt")):
            text = path.read_text(encoding="utf-8")
            for kind, name in re.findall(r"countersign_(command|project)_test\(([\w.${}]+)", text):
                name = f"project.{name}" if kind == "project" else name
                # Its variables stand for words that the file has somewhere.
                pattern = re.sub(r"\\\$\\\{\w+\\\}", r"(\\w+)", re.escape(name))
                self.of_cmake.append((pattern, set(re.findall(r"\w+", text))))

    def has(self, name):
        if name.startswith("scripts/"):
            # What no test runs for its time is run for a release.
            check = (self.root / RELEASE_CHECK).read_text(encoding="utf-8")
            return (self.root / name).is_file() and name.removeprefix("scripts/") in check
        if name.startswith("Statements.AreTrue: "):
            return name.partition(": ")[2] in self.rows
        if name in self.names:
            return True
        for pattern, words in self.of_cmake:
            match = re.fullmatch(pattern, name)
            if match and set(match.groups()) <= words:
                return True
        return False


def complaints(root):
    _, pages = read_list(root)
    tests = Tests(root)
    for page, sentences in sentences_of_pages(root):
        entries = pages.pop(page, [])
        listed = [entry.sentence for entry in entries]
        for what, begin, end, first, last in difflib.SequenceMatcher(None, listed, sentences, False).get_opcodes():
            if what == "equal":
                continue
            for entry in entries[begin:end]:
                yield f"{LIST}:{entry.number}: {page} does not say so here: {entry.sentence}"
            for sentence in sentences[first:last]:
                yield f"{page}: this is not in {LIST}: {sentence}"
        for entry in entries:
            if not entry.tests:
                yield f"{LIST}:{entry.number}: no test tries this: {entry.sentence}"
            for number, test in entry.tests:
                if test not in WITHOUT_TEST and not tests.has(test):
                    yield f"{LIST}:{number}: there is no test {test}"
    for page in pages:
        yield f"{LIST}: there is no page {page}"


def update(root):
    head, pages = read_list(root)
    lines = head
    for page, sentences in sentences_of_pages(root):
        known = {}
        for entry in pages.get(page, []):
            known.setdefault(entry.sentence, []).append([test for _, test in entry.tests])
        lines.append(f"== {page}")
        for sentence in sentences:
            tests = known[sentence].pop(0) if known.get(sentence) else ["?"]
            lines.append(sentence)
            lines += [f"    {test}" for test in tests]
        lines.append("")
    (root / LIST).write_text("\n".join(lines[:-1]) + "\n", encoding="utf-8")


MANUAL_SAMPLE = r""".SH NAME
signer \- signs
.SH DESCRIPTION
Signs files. What is
.B there
is kept.
.B \-\-force
overwrites it.
.TP
.BR \-q ", " \-\-quiet
.RB ( sign )
Print no line.
.SH EXAMPLES
.nf
signer \-q a
.fi
.SH SEE ALSO
.BR other (1)
"""
README_SAMPLE = """# Signer

It signs. It does
not ask (never.) Really.

| word | meaning |
|---|---|
| `good` | it holds |

```console
$ signer a
a: signed
```
"""
LIST_SAMPLE = """# Head.

== docs/man/countersign.1.in
Signs files.
    Signer.Signs
What is there is kept.
    project.signer.keeps
    Statements.AreTrue: is kept
--force overwrites it.
    scripts/long.sh
-q, --quiet (sign): Print no line.
    Signer.Quietly
$ signer -q a
    Signer.Quietly

== docs/man/countersign-desktop.1.in

== README.md
It signs.
    Signer.Signs
It does not ask (never.)
    advice
Really.
    definition
`good` | it holds
    Signer.Signs
$ signer a ...
    Signer.Signs
"""
SAMPLE = {
    MANUALS[0]: MANUAL_SAMPLE,
    MANUALS[1]: "",
    README: README_SAMPLE,
    LIST: LIST_SAMPLE,
    TABLE: 'const Statement statements[] = {\n    {manual, "is kept", "signer a", ""},\n};\n'
    "TEST(Signer, Signs)\n{\n}\nTEST_F(Signer, Quietly)\n{\n}\n",
    "tests/CMakeLists.txt": "foreach(case IN ITEMS keeps loses)\n"
    "    countersign_project_test(signer.${case} COMMAND a)\n",
    RELEASE_CHECK: "long.sh\n",
    "scripts/long.sh": "",
}

# A file, what is replaced in it by what, and what the complaint says.
MISTAKES = [
    (MANUALS[0], "Signs files.", "Signs files. Deletes them.", "is not in tests/project/statements.txt: Deletes them."),
    (MANUALS[0], "overwrites it", "keeps it", "does not say so here: --force overwrites it."),
    (MANUALS[0], "Signs files. ", "", "statements.txt:4: docs/man/countersign.1.in does not say so here: Signs files."),
    (MANUALS[0], "Print no", "Print a", "is not in tests/project/statements.txt: -q, --quiet (sign): Print a line."),
    (MANUALS[0], "-q a", "-q b", "is not in tests/project/statements.txt: $ signer -q b"),
    (MANUALS[1], "", "A window.", "is not in tests/project/statements.txt: A window."),
    (README, "Really.", "Really not.", "is not in tests/project/statements.txt: Really not."),
    (README, "it holds", "it fails", "is not in tests/project/statements.txt: `good` | it fails"),
    (README, "$ signer a", "$ signer b", "is not in tests/project/statements.txt: $ signer b ..."),
    (TABLE, "Signer, Signs", "Signer, SignsAll", "statements.txt:5: there is no test Signer.Signs"),
    (TABLE, "is kept", "is lost", "there is no test Statements.AreTrue: is kept"),
    ("tests/CMakeLists.txt", "keeps", "finds", "there is no test project.signer.keeps"),
    ("tests/CMakeLists.txt", "signer.", "Signer.", "there is no test project.signer.keeps"),
    (RELEASE_CHECK, "long", "short", "there is no test scripts/long.sh"),
    (LIST, "    advice\n", "", "no test tries this: It does not ask (never.)"),
    (LIST, "    advice\n", "    ?\n", "there is no test ?"),
    (LIST, "== README.md", "== HISTORY.md", "there is no page HISTORY.md"),
]


def mistakes_are_found():
    def found_in(files):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            for name, text in files.items():
                (root / name).parent.mkdir(parents=True, exist_ok=True)
                (root / name).write_text(text, encoding="utf-8")
            return list(complaints(root))

    yield from found_in(SAMPLE)
    for name, before, after, words in MISTAKES:
        found = found_in({**SAMPLE, name: SAMPLE[name].replace(before, after, 1)})
        if not any(words in complaint for complaint in found):
            yield f"{name} with '{after}' for '{before}': no complaint says '{words}': {found}"


def main():
    if sys.argv[1] == "update":
        update(pathlib.Path(sys.argv[2]))
        return 0
    found = list(mistakes_are_found() if sys.argv[1] == "mistakesAreFound" else complaints(pathlib.Path(sys.argv[2])))
    for line in found:
        print(line, file=sys.stderr)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
