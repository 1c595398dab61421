#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Builds the API reference and looks at it.

    reference.py isComplete BUILD-FOLDER       every header that is installed, and what it declares, is in it
    reference.py failsOnAWarning BUILD-FOLDER  a page that Doxygen warns of makes it fail
"""
import html
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

# By the folder of the installed header.
GROUPS = {
    ".": "bigdigits",
    "crypto": "crypto",
    "host/keys": "keys",
    "platform/baseTools": "baseTools",
    "platform/osWrappers": "osWrappers",
    "assertionHandling": "assertionHandling",
    "assertionReporting": "assertionReporting",
}


def text_of(page):
    text = html.unescape(re.sub(r"<[^>]*>", "", page.read_text(encoding="utf-8")))
    return re.sub(r"\s+", " ", text.replace("\u2013", "--"))


def plain(line):
    return re.sub(r"\s+", " ", re.sub(r"^\s*(//|/\*| \*)|\*/$", "", line)).strip()


def public_lines(lines):
    is_private = False
    for line in lines:
        is_private = line == "private:" or (is_private and line != "};")
        # What the compiler alone reads.
        line = re.sub(r"\b__attribute__.*", "", line)
        if not is_private:
            yield line


def complaints_about(header, root, pages):
    name = header.relative_to(root)
    group = GROUPS.get(name.parent.as_posix())
    if group is None:
        yield f"{name} belongs to no library"
        return
    page = pages / (name.name.replace(".h", "_8h") + ".html")
    group_page = pages / f"group__{group}.html"
    if not page.exists() or page.name not in group_page.read_text(encoding="utf-8"):
        yield f"{name} is missing from the page of {group}"
        return
    lines = header.read_text(encoding="utf-8").splitlines()
    public = list(public_lines(lines))
    shown = text_of(group_page) + text_of(page)
    for line in public:
        declared = re.match(r"(?:class|struct) (\w+)\b(?!::|.*;)", line)
        if declared:
            page_of_class = [p for p in pages.glob(f"*{declared.group(1)}.html") if p.name.startswith(("class", "struct"))]
            if page_of_class:
                shown += text_of(page_of_class[0])
            else:
                yield f"{name}: {declared.group(1)} has no page"
    # Everything that begins at the margin, and every member function.
    for line in public:
        declared = re.match(r"(?! *(?:return|if|for|while|__asm__)\b|static inline)(?:#define |[\w:<].*? [*&]?| {4}\w.*? [*&]?)(\w+)\(.*", line)
        if declared and "= delete" not in line and not re.search(rf"\b{declared.group(1)}\b", shown):
            yield f"{name}: {declared.group(1)} is missing"
    # The words of the head, whatever is in them.
    words = 0
    for line in lines[1:]:
        if not re.match(r"(//|/\*| \*)", line):
            break
        if plain(line) and not re.match(r"(//|/\*| \*) {4}| \* [A-Z]\w+\. {2}|// [A-Z]\w+( \w+)?\. {2}|// - ", line):
            words += 1
            if plain(line) not in shown:
                yield f"{name}: the line is missing: {plain(line)}"
    if words == 0:
        yield f"{name} has no comment at its head"


def is_complete(build):
    subprocess.run(["cmake", "--build", build, "--target", "apiReference"], check=True)
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(["cmake", "--install", build, "--prefix", folder, "--component", "countersign_development"],
                       check=True, stdout=subprocess.DEVNULL)
        root = pathlib.Path(folder, "include/countersign")
        headers = [header for header in root.rglob("*.h") if header.name != "countersignVersion.h"]
        if len(headers) < len(GROUPS):
            sys.exit(f"only {len(headers)} headers are installed")
        complaints = [text for header in sorted(headers) for text in complaints_about(header, root, build / "reference")]
    index = text_of(build / "reference/index.html")
    complaints += [f"{group} is not on the first page" for group in GROUPS.values() if f"{group} " not in index]
    if complaints:
        sys.exit("\n".join(complaints))


def fails_on_a_warning(build):
    with tempfile.TemporaryDirectory() as folder:
        page = pathlib.Path(folder, "page.dox")
        settings = pathlib.Path(folder, "Doxyfile")
        for text, is_fine in (("@page here Here", True), ("@page here Here\n@ref nowhere", False)):
            page.write_text(f"/**\n{text}\n*/\n", encoding="utf-8")
            settings.write_text((build / "docs/Doxyfile").read_text(encoding="utf-8")
                                + f'INPUT = "{page}"\nOUTPUT_DIRECTORY = "{folder}"\n', encoding="utf-8")
            result = subprocess.run(["doxygen", settings], stderr=subprocess.PIPE, text=True, check=False)
            if (result.returncode == 0) != is_fine:
                sys.exit(f"status {result.returncode} for: {text}\n{result.stderr}")


def main():
    build = pathlib.Path(sys.argv[2])
    if not (build / "docs/Doxyfile").exists() or shutil.which("doxygen") is None:
        print("skipped: doxygen is not installed (package doxygen)")
        sys.exit(77)
    {"isComplete": is_complete, "failsOnAWarning": fails_on_a_warning}[sys.argv[1]](build)


if __name__ == "__main__":
    main()
