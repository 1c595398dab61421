#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Turns a header's plain comments into comments that Doxygen reads. Used by the target apiReference.

    headerFilter.py ROOT HEADER      prints the header

- The comment at the head becomes the file's, and that of the class with the file's name unless it has its own.
- A comment in front of a declaration becomes its own, and that of the declarations that follow it without an empty line.
  A comment with an empty line behind it is left alone.
- A comment behind an enumerator or a member becomes its own.
- Text is taken as it stands: nothing in it is a command of Doxygen's. Lists, terms ("Memory.   text") and text that is
  indented by four blanks keep their form.
- "---- Title ----" begins a section.
- Everything is put into the group of the header's library.
"""
import pathlib
import re
import sys

LIBRARIES = {
    "src": "bigdigits",
    "crypto": "crypto",
    "host/keys": "keys",
    "platform/baseTools": "baseTools",
    "platform/osWrappers": "osWrappers",
    "assertionHandling": "assertionHandling",
    "assertionReporting": "assertionReporting",
}
TERM = re.compile(r"([A-Z][A-Za-z ]{0,20}\.)\s{2,}(?=\S)")
SECTION = re.compile(r"\s*-{4} (.+?) -{4}\s*$")
TYPE = re.compile(r"\s*(class|struct|enum|union|namespace|extern \"C\")(?!\w)")
GUARD = re.compile(r"#define \w+_H$")
# What a comment in front of it does not belong to.
NO_DECLARATION = re.compile(r"\s*(//|/\*|#|[{}]|(public|protected|private):|friend |wxDECLARE|$)")


def escaped(text):
    text = re.sub(r"([\\@&$#<>%|*`])", r"\\\1", text)
    text = re.sub(r"(?<!\w)_|_(?!\w)", r"\\_", text)
    text = re.sub(r"(?<!\w)::", r"\\::", text)
    return text.replace("--", r"\--")


def markup(lines):
    """The comment's text in the form that Doxygen takes."""
    result = []
    is_verbatim = False
    is_after_empty = True
    for line in lines:
        indent = len(line) - len(line.lstrip(" "))
        is_indented = indent >= 4 and line.strip() != ""
        if is_verbatim and not is_indented and line.strip():
            result[-1:] = ["@endverbatim", ""] if result[-1] == "" else [result[-1], "@endverbatim"]
            is_verbatim = False
        elif not is_verbatim and is_indented and is_after_empty:
            result.append("@verbatim")
            is_verbatim = True
        is_after_empty = line.strip() == ""
        term = TERM.match(line)
        if is_verbatim:
            result.append(line)
        elif term:
            result += ["", "<b>" + escaped(term.group(1)) + "</b> " + escaped(line[term.end() :])]
        elif line.lstrip().startswith("- ") or indent < 4:
            result.append(" " * indent + escaped(line.strip()))
        else:
            result.append(escaped(line.strip()))
    return result + (["@endverbatim"] if is_verbatim else [])


def documented(lines, indent=""):
    # Not with "//!" in front of each, which would be shown in text that keeps its form.
    if any("*/" in line for line in lines):
        raise ValueError("a comment that holds the end of a comment: " + " ".join(lines))
    return [indent + "/**"] + [(indent + line).rstrip() for line in lines] + [indent + "*/"]


class Filter:
    def __init__(self, path, root):
        folder = path.parent.relative_to(root).as_posix()
        self.library = LIBRARIES[folder]
        self.name = path.name
        self.stem = path.stem
        self.lines = path.read_text(encoding="utf-8").splitlines()
        self.position = 0
        self.head = []
        self.is_in_section = False
        self.output = []

    def comment(self):
        """Takes the block of comment lines at the position and gives its text."""
        text = []
        line = self.lines[self.position].strip()
        if line.startswith("/*"):
            is_done = False
            while not is_done:
                line = self.lines[self.position].strip()
                is_done = line.endswith("*/")
                line = re.sub(r"\s*\*/$", "", re.sub(r"^/\*|^\*", "", line) if line != "*/" else "")
                text.append(line.removeprefix(" "))
                self.position += 1
            return text
        while self.position < len(self.lines) and self.lines[self.position].strip().startswith("//"):
            text.append(self.lines[self.position].strip()[2:].removeprefix(" "))
            self.position += 1
        return text

    def is_comment(self):
        return self.position < len(self.lines) and re.match(r"\s*(//|/\*)", self.lines[self.position]) is not None

    def read_head(self):
        while self.is_comment():
            text = self.comment()
            self.head += [line for line in text if not line.startswith("SPDX-License-Identifier")]
        self.output += documented([f"@file {self.name}", f"@ingroup {self.library}", ""] + markup(self.head))
        self.output.append("")
        self.output += documented([f"@addtogroup {self.library}", "@{"])

    def begin_section(self, title, text):
        self.end_section()
        self.output += documented(["@name " + escaped(title)] + [""] + markup(text) + ["@{"])
        self.is_in_section = True

    def end_section(self):
        if self.is_in_section:
            self.output += documented(["@}"])
            self.is_in_section = False

    def is_own_class(self):
        """Whether the class with the file's name is defined at the position."""
        lines = self.lines[self.position : self.position + 2]
        if not lines[0].startswith("template"):
            lines = lines[:1]
        found = re.match(r"(?:class|struct) (\w+)[^;]*$", lines[-1])
        return found is not None and found.group(1) == self.stem

    def take_code(self, comment):
        """Takes the declarations up to the next comment or empty line, and puts the comment in front of each."""
        # Doxygen takes the specialisation of a class that it does not know for an error.
        is_hidden = self.lines[self.position].startswith("template <>")
        if is_hidden:
            self.output.append("//! @cond")
        depth = 0
        is_within = is_macro = is_type = False
        is_first = True
        while self.position < len(self.lines) and self.lines[self.position].strip():
            if self.is_comment() and not is_within and not is_macro:
                break
            line = self.lines[self.position]
            indent = line[: len(line) - len(line.lstrip())]
            is_directive = is_macro or line.lstrip().startswith("#")
            if not is_within and not is_macro:
                if "= delete;" in line or GUARD.match(line):
                    self.position += 1
                    continue
                if comment and (is_first or not ("~" in line or NO_DECLARATION.match(line))):
                    self.output += documented(comment, indent)
                elif not comment and self.is_own_class():
                    self.output += documented(markup(self.head), indent)
            is_first = False
            code = re.sub(r"\s*//.*", "", line).rstrip()
            self.take_line(line)
            if is_directive:
                is_macro = line.endswith("\\")
                continue
            if TYPE.match(code) and not code.endswith(";"):
                # The comment is the type's, and what stands inside has its own.
                comment = None
                is_type = True
            if is_type:
                is_type = "{" not in code
                continue
            depth = max(depth + code.count("{") + code.count("(") - code.count("}") - code.count(")"), 0)
            is_within = depth > 0 or re.search(r"[;:{},]$", code) is None
        if is_hidden:
            self.output.append("//! @endcond")

    def take_line(self, line):
        """One line of code, with the comment behind it."""
        self.position += 1
        found = re.match(r"(.*\S)(\s+)// (.*)$", line)
        if found is None or line.lstrip().startswith("//"):
            self.output.append(line)
            return
        column = len(found.group(1)) + len(found.group(2))
        self.output.append(found.group(1) + "  //!< " + escaped(found.group(3)))
        while self.is_comment() and self.lines[self.position].index("//") == column:
            self.output.append(" " * column + "//!< " + escaped(self.comment_line()))

    def comment_line(self):
        line = self.lines[self.position].strip()[2:].strip()
        self.position += 1
        return line

    def run(self):
        self.read_head()
        while self.position < len(self.lines):
            if not self.is_comment():
                if self.lines[self.position].strip():
                    self.take_code(None)
                else:
                    self.output.append("")
                    self.position += 1
                continue
            text = self.comment()
            title = SECTION.match(text[0])
            if title:
                self.begin_section(title.group(1), text[1:])
            elif self.position < len(self.lines) and self.lines[self.position].strip():
                self.take_code(markup(text))
        self.end_section()
        self.output += documented(["@}"])
        return "\n".join(self.output) + "\n"


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    sys.stdout.reconfigure(encoding="utf-8")
    sys.stdout.write(Filter(pathlib.Path(sys.argv[2]).resolve(), root).run())


if __name__ == "__main__":
    main()
