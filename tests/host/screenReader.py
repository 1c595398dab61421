# SPDX-License-Identifier: Apache-2.0
# Looks at the running program as a screen reader does (AT-SPI), and fails when something has no name, no state or another
# role than it should have.
#
#   screenReader.py PROGRAM COMMAND FOLDER
#
# PROGRAM has the window, COMMAND is the command line's program; FOLDER is empty.
import os
import pathlib
import subprocess
import sys
import time

import gi

gi.require_version("Atspi", "2.0")
import pyatspi  # noqa: E402
from gi.repository import Atspi, GLib  # noqa: E402

PATIENCE = int(os.environ.get("COUNTERSIGN_PATIENCE", "300"))  # seconds, for a busy machine
AMOUNT = 60  # more rows than are in sight
# Documents that are signed by a key each, whose name their rows tell.
SIGNED = {"1.txt": "lab", "2.txt": "office"}


class Missing(Exception):
    pass


def until(what, look):
    """Looks again and again until there is something, and gives it."""
    end = time.monotonic() + PATIENCE
    while True:
        try:
            found = look()
            if found:
                return found
        except (GLib.Error, RuntimeError):
            # A part of the window that has just gone.
            pass
        if time.monotonic() > end:
            raise Missing(what)
        time.sleep(0.05)


def children(part):
    return [child for child in (part.getChildAtIndex(i) for i in range(part.childCount)) if child is not None]


def parts(part):
    """A part of the window with all that is in it; of a list only the list."""
    yield part
    if part.getRole() not in (pyatspi.ROLE_TABLE, pyatspi.ROLE_TREE_TABLE):
        for child in children(part):
            yield from parts(child)


def name_of(part):
    """Its own name, or that of the label which it is labelled by."""
    if part.name:
        return part.name
    for relation in part.getRelationSet():
        if relation.getRelationType() == pyatspi.RELATION_LABELLED_BY:
            return " ".join(relation.getTarget(i).name for i in range(relation.getNTargets()))
    return ""


def find(part, role, name=None, contains=None):
    for each in parts(part):
        if each.getRole() == role and (name is None or name_of(each) == name):
            if contains is None or contains in name_of(each):
                return each
    return None


def expect(part, role, name=None, contains=None):
    """Waits for a part with this role and name."""
    what = f"a {Atspi.role_get_name(role)} with {'the name' if contains is None else 'a name that contains'} "
    what += repr(name or contains)
    return until(what, lambda: find(part, role, name, contains))


def cell_text(cell):
    """The text of a cell, which may stand beside a picture."""
    return cell.name or " ".join(child.name for child in children(cell) if child.name)


def rows(table):
    grid = table.queryTable()
    return [
        (cell_text(grid.getAccessibleAt(row, 0)), cell_text(grid.getAccessibleAt(row, 1)))
        for row in range(grid.nRows)
    ]


def state_of(table, name):
    return dict(rows(table)).get(name)


def is_in(part, state):
    return part.getState().contains(state)


def press(keys):
    subprocess.run(["xdotool", "key", "--clearmodifiers", keys], check=True)


def list_of(frame):
    return until(
        "a list with the name 'Documents'",
        lambda: find(frame, pyatspi.ROLE_TREE_TABLE, "Documents") or find(frame, pyatspi.ROLE_TABLE, "Documents"),
    )


def look_at_window(frame, folder, names):
    table = list_of(frame)
    states = [(name, "No key loaded" if name in SIGNED else "Not signed") for name in names]
    until("every document as a row, with its state", lambda: rows(table) == states)
    assert table.queryTable().nColumns == 5

    expect(frame, pyatspi.ROLE_STATUS_BAR, contains=f"{AMOUNT} documents")
    tools = expect(frame, pyatspi.ROLE_TOOL_BAR, "Tool bar")
    for tool in ("Open", "Key", "Sign", "Test"):
        expect(tools, pyatspi.ROLE_PUSH_BUTTON, tool)
    # The bar of what could not be opened.
    expect(frame, pyatspi.ROLE_LABEL, contains="nowhere.txt")
    expect(frame, pyatspi.ROLE_PUSH_BUTTON, "Details...")
    expect(frame, pyatspi.ROLE_PUSH_BUTTON, "Dismiss")

    # What has been read is not kept when it changes, at the end of the list too.
    for name in (names[0], names[-1]):
        (folder / name).unlink()
        until(f"that {name} is missing", lambda: state_of(table, name) == "Missing")


def file_names(dialog):
    """What a file dialog offers."""
    return [
        name
        for table in parts(dialog)
        if table.getRole() in (pyatspi.ROLE_TABLE, pyatspi.ROLE_TREE_TABLE)
        for name, _ in rows(table)
    ]


def look_at_verdicts(application, frame):
    until("the window with the keyboard", lambda: is_in(frame, pyatspi.STATE_ACTIVE))
    press("ctrl+shift+k")
    dialog = expect(application, pyatspi.ROLE_FILE_CHOOSER, "Load public keys")
    until("the public keys", lambda: {f"{key}.pub.pem" for key in SIGNED.values()} <= set(file_names(dialog)))
    until("the file dialog with the keyboard", lambda: is_in(dialog, pyatspi.STATE_ACTIVE))
    press("ctrl+a")
    press("Return")
    expect(frame, pyatspi.ROLE_STATUS_BAR, contains=f"{len(SIGNED)} public keys")
    until("the window with the keyboard again", lambda: is_in(frame, pyatspi.STATE_ACTIVE))
    press("ctrl+shift+t")
    table = list_of(frame)
    for name, key in SIGNED.items():
        state = f"Good \u00b7 {key}.pub.pem"
        until(f"{state!r} of {name}", lambda: state_of(table, name) == state)


def look_at_new_key(application, frame):
    # By the keyboard: a dialog that a reader's own call brings up would hold that call until it is closed.
    until("the window with the keyboard", lambda: is_in(frame, pyatspi.STATE_ACTIVE))
    press("alt+k")
    item = expect(frame, pyatspi.ROLE_MENU_ITEM, "New key pair...")
    until("the open menu", lambda: is_in(item, pyatspi.STATE_SHOWING))
    press("n")
    dialog = expect(application, pyatspi.ROLE_FRAME, "New key pair")
    expect(dialog, pyatspi.ROLE_COMBO_BOX, "Size")
    expect(dialog, pyatspi.ROLE_TEXT, "Size")
    expect(dialog, pyatspi.ROLE_TEXT, "Private key file")
    expect(dialog, pyatspi.ROLE_PASSWORD_TEXT, "Passphrase")
    expect(dialog, pyatspi.ROLE_PASSWORD_TEXT, "Passphrase again")
    expect(dialog, pyatspi.ROLE_CHECK_BOX, "Show the passphrase")
    for button in ("Browse...", "Create", "Cancel"):
        expect(dialog, pyatspi.ROLE_PUSH_BUTTON, button)


def write_files(command, folder, names):
    for name in names:
        (folder / name).write_text("x")
    keys = folder / "keys"
    keys.mkdir()
    for name, key in SIGNED.items():
        subprocess.run([command, "keygen", "--no-passphrase", "--output", key], cwd=folder, check=True)
        subprocess.run([command, "sign", "--quiet", "--key", f"{key}.pem", name], cwd=folder, check=True)
        (folder / f"{key}.pub.pem").rename(keys / f"{key}.pub.pem")
    # Where the file dialog begins.
    settings = pathlib.Path(os.environ["XDG_CONFIG_HOME"]) / "countersign" / "settings"
    settings.parent.mkdir(parents=True)
    settings.write_text(f"keyFolder={keys}/\n")


def main():
    program, command, folder = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3])
    names = [f"{number}.txt" for number in range(AMOUNT)]
    write_files(command, folder, names)
    Atspi.set_timeout(PATIENCE * 1000, PATIENCE * 1000)
    try:
        desktop = pyatspi.Registry.getDesktop(0)
    except (GLib.Error, RuntimeError) as error:
        print(f"skipped: AT-SPI does not start: {error}")
        return 77
    paths = [str(folder / name) for name in names]
    with subprocess.Popen([program, *paths, str(folder / "nowhere.txt")]) as process:
        try:
            application = until(
                "the program", lambda: next((a for a in children(desktop) if a.get_process_id() == process.pid), None)
            )
            frame = expect(application, pyatspi.ROLE_FRAME, "Countersign")
            look_at_window(frame, folder, names)
            look_at_verdicts(application, frame)
            look_at_new_key(application, frame)
        except Missing as missing:
            print(f"a screen reader does not find {missing}", file=sys.stderr)
            return 1
        finally:
            process.terminate()
    return 0


sys.exit(main())
