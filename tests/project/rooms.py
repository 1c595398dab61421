#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Fails when a room includes what it may not.

    rooms.py check SOURCE-FOLDER   looks at every include line of the product's sources, and at README's table of rooms
    rooms.py refuses               shows that a forbidden include is found, in folders of its own

A room is a folder. The nearest one in the table counts, so that host/keys is not host.
"""
import pathlib
import re
import sys
import tempfile

# Headers of the system and of other libraries that not every room may include.
LIBRARIES = {
    "wx": r"wx/",
    "gtk": r"(gtk|gdk)/",
    "glib": r"(glib|gio)[-/.]",
    "x11": r"X11/",
    "openssl": r"openssl/",
    "cli11": r"CLI/",
    "json": r"nlohmann/",
    "libbsd": r"(bsd/|readpassphrase\.h)",
}

PLATFORM = ["platform/baseTools", "platform/osWrappers"]
ENGINES = ["host/keys", "host/signing", "host/documents", "host/messages"]

# Room: the rooms that it may include besides itself, and the libraries.
ROOMS = {
    "src": ([], []),
    "platform/baseTools": ([], []),
    "platform/osWrappers": (["platform/baseTools"], []),
    "platform/toolkit": (PLATFORM, ["wx", "gtk"]),
    "assertionHandling": (PLATFORM + ["platform/toolkit"], ["wx"]),
    "assertionReporting": (["assertionHandling", "platform/toolkit"] + PLATFORM, ["wx"]),
    "crypto": (["src"] + PLATFORM, ["openssl"]),
    "app": (["assertionHandling", "platform/toolkit"] + PLATFORM, ["wx"]),
    "host/keys": (["crypto"] + PLATFORM, ["openssl"]),
    "host/signing": (["host/keys", "crypto", "src"] + PLATFORM, ["openssl"]),
    "host/documents": (["host/signing"] + PLATFORM, []),
    "host/messages": (["host/keys", "host/signing", "host/documents", "crypto"] + PLATFORM, []),
    "host/desktop": (["host/documents", "app", "platform/toolkit"] + PLATFORM, ["wx", "glib", "x11"]),
    "host/window": (
        ENGINES
        + ["host/desktop", "crypto", "assertionReporting", "assertionHandling", "platform/toolkit"] + PLATFORM,
        ["wx", "gtk"],
    ),
    "host": (
        ENGINES
        + ["host/desktop", "host/window", "assertionReporting", "assertionHandling", "platform/toolkit"]
        + PLATFORM,
        ["wx"],
    ),
    "cli": (ENGINES + ["crypto"] + PLATFORM, ["cli11", "json", "libbsd"]),
}

# Made by the build, or found on the include path of whoever links the shell.
EVERYBODYS = {"countersignVersion.h"}
OWN_ONLY = {"hoIconData.h": "host/window", "MainFrame.h": "app"}

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def room_of(path):
    """The room that a path relative to the root lies in; None outside of all rooms."""
    folder = path.rpartition("/")[0]
    while folder and folder not in ROOMS:
        folder = folder.rpartition("/")[0]
    return folder or None


def room_of_header(root, name):
    """The room of a header as an include line names it: from the root, or from src/."""
    if (root / "src" / name).is_file():
        return "src"
    return room_of(name)


def fault_of(root, room, quote, name):
    """Why this room may not include that; None when it may."""
    rooms, libraries = ROOMS[room]
    if quote == '"':
        if name in EVERYBODYS or OWN_ONLY.get(name) == room:
            return None
        other = room_of_header(root, name)
        if other is None:
            return "is in no room"
        return None if other == room or other in rooms else f"is in {other}"
    for library, pattern in LIBRARIES.items():
        if re.match(pattern, name) and library not in libraries:
            return f"belongs to {library}"
    return None


def faults(root):
    found = []
    for top in sorted({room.partition("/")[0] for room in ROOMS}):
        for path in sorted((root / top).rglob("*")):
            if path.suffix not in (".h", ".cpp", ".c"):
                continue
            relative = path.relative_to(root).as_posix()
            room = room_of(relative)
            if room is None:
                found.append(f"{relative}: lies in no room")
                continue
            for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
                include = INCLUDE.match(line)
                if include is None:
                    continue
                fault = fault_of(root, room, include[1], include[2])
                if fault is not None:
                    found.append(f"{relative}:{number}: {room} may not include {include[2]}, which {fault}")
    return found


# As README writes them.
WRITTEN = {
    "wxWidgets": "wx",
    "GTK": "gtk",
    "GLib": "glib",
    "X11": "x11",
    "libcrypto": "openssl",
    "CLI11": "cli11",
    "nlohmann-json": "json",
    "libbsd": "libbsd",
}


def faults_of_readme(text):
    """What README's table of rooms says otherwise. Its `platform` is what of it has no window, or all for a window."""
    found = []
    rows = {}
    for room, cell in re.findall(r"^\| `([a-zA-Z/.*]+)`(?:, `\w+/`)* \| [^|]* \| ([^|]*) \|$", text, re.MULTILINE):
        rows[room.removesuffix(".*").rstrip("/").replace("host/MainFrame", "host")] = cell
    for room, (rooms, libraries) in ROOMS.items():
        if room not in rows:
            found.append(f"README.md: the table has no {room}")
            continue
        said = set(re.findall(r"`([a-zA-Z/]+)`", rows[room]))
        if "platform" in said:
            said.remove("platform")
            said.update(PLATFORM + (["platform/toolkit"] if "wx" in libraries else []))
        said.update(library for word, library in WRITTEN.items() if re.search(rf"\b{word}\b", rows[room]))
        said.discard(room)
        may = set(rooms + libraries)
        found += [f"README.md: {room} may include {name}, which is not said" for name in sorted(may - said)]
        found += [f"README.md: {room} may not include {name}" for name in sorted(said - may)]
    return found


def check(root):
    files = [path for top in ("src", "platform", "crypto", "host") for path in (root / top).rglob("*.h")]
    if len(files) < 20:
        return [f"there are only {len(files)} headers in {root}"]
    return faults(root) + faults_of_readme((root / "README.md").read_text(encoding="utf-8"))


# A file, what it includes, and whether it may.
CASES = [
    ("host/keys/a.cpp", '"host/keys/b.h"', True),
    ("host/keys/a.cpp", '"crypto/crDigits.h"', True),
    ("host/keys/a.cpp", '"host/signing/b.h"', False),
    ("host/keys/a.cpp", "<openssl/evp.h>", True),
    ("host/keys/a.cpp", "<wx/string.h>", False),
    ("host/keys/a.cpp", '"platform/toolkit/gtTextConversion.h"', False),
    ("host/signing/a.h", '"host/documents/b.h"', False),
    ("host/signing/a.h", '"bigdigits.h"', True),
    ("host/documents/a.h", '"host/signing/b.h"', True),
    ("host/documents/a.h", "<vector>", True),
    ("host/messages/a.h", "<wx/string.h>", False),
    ("host/window/a.cpp", '"host/MainFrame.h"', False),
    ("host/window/a.cpp", '"app/ApplicationShell.h"', False),
    ("host/window/a.cpp", "<gtk/gtk.h>", True),
    ("host/desktop/a.cpp", '"host/window/b.h"', False),
    ("host/MainFrame.cpp", '"host/window/b.h"', True),
    ("host/MainFrame.cpp", '"app/ApplicationShell.h"', False),
    ("host/desktop/a.cpp", '"app/ApplicationShell.h"', True),
    ("crypto/a.cpp", '"host/keys/b.h"', False),
    ("crypto/a.cpp", '  "bigdigits.h"', True),
    ("src/bigdigits.cpp", '"platform/baseTools/gtString.h"', False),
    ("platform/baseTools/a.cpp", '"platform/osWrappers/b.h"', False),
    ("app/a.cpp", '"MainFrame.h"', True),
    ("app/a.cpp", '"host/keys/b.h"', False),
    ("assertionHandling/a.cpp", '"MainFrame.h"', False),
    ("cli/a.cpp", '"host/window/b.h"', False),
    ("cli/a.cpp", '"host/signing/b.h"', True),
    ("cli/a.cpp", '"nowhere.h"', False),
    ("host/attic/deeper/a.cpp", '"host/window/b.h"', True),
    ("platform/a.cpp", "<vector>", False),
]


def refuses():
    wrong = []
    for path, include, may in CASES:
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            for name, text in (("src/bigdigits.h", ""), (path, f"// a file\n#include {include}\n")):
                (root / name).parent.mkdir(parents=True, exist_ok=True)
                (root / name).write_text(text, encoding="utf-8")
            found = faults(root)
            if bool(found) == may:
                wrong.append(f"{path} with {include}: {found or 'nothing is found'}")
    return wrong + readmes_that_are_not_refused()


def readmes_that_are_not_refused():
    words = {library: word for word, library in WRITTEN.items()}
    rows = {}
    for room, (rooms, libraries) in ROOMS.items():
        cell = ", ".join([f"`{other}`" for other in rooms] + [words[library] for library in libraries])
        rows[room] = f"| `{room}/` | what lives there | {cell} |\n"
    yes = faults_of_readme("".join(rows.values()))
    wrong = [f"a table that is right: {yes}"] if yes else []
    for room, before, after in (
        ("host/keys", "`crypto`, ", ""),
        ("host/keys", "`crypto`", "`crypto`, `host/signing`"),
        ("host/keys", "libcrypto", "wxWidgets"),
        ("cli", "| `cli/`", "| `cmd/`"),
    ):
        if not faults_of_readme("".join({**rows, room: rows[room].replace(before, after)}.values())):
            wrong.append(f"README's row of {room} with '{after}' for '{before}': nothing is found")
    return wrong


def main():
    found = refuses() if sys.argv[1] == "refuses" else check(pathlib.Path(sys.argv[2]))
    for line in found:
        print(line, file=sys.stderr)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
