# SPDX-License-Identifier: Apache-2.0
# Starts the real program in the Wayland session of wayland.sh, works with it by the keyboard, and fails when the
# compositor sees something else than it should, or when the program complains.
#
#   wayland.py PROGRAM
import contextlib
import json
import os
import pathlib
import re
import subprocess
import sys
import time

PATIENCE = int(os.environ.get("COUNTERSIGN_PATIENCE", "300"))  # seconds, for a busy machine
APPLICATION = "org.countersign.Countersign"
TITLE = "Countersign"


class Failed(Exception):
    pass


def until(what, look):
    """Looks again and again until there is something, and gives it."""
    end = time.monotonic() + PATIENCE
    while True:
        found = look()
        if found:
            return found
        if time.monotonic() > end:
            raise Failed(f"waited in vain until {what}")
        time.sleep(0.05)


def windows():
    """What the compositor knows of all windows."""

    def below(node):
        if node.get("pid"):
            yield node
        for child in node.get("nodes", []) + node.get("floating_nodes", []):
            yield from below(child)

    return list(below(json.loads(subprocess.check_output(["swaymsg", "-t", "get_tree", "-r"]))))


def window(title):
    return next((each for each in windows() if each["name"] == title), None)


def has_keyboard(title):
    found = window(title)
    return found if found and found["focused"] else None


# The toolkit overlooks the last key of a keyboard, and the virtual one has no others than it is told of: one that nobody
# presses comes last.
LAST_KEY = ["-p", "F20"]


def press(key):
    """A key like "Return" or "ctrl+q"."""
    *modifiers, plain = key.split("+")
    down = [word for modifier in modifiers for word in ("-M", modifier)]
    up = [word for modifier in modifiers for word in ("-m", modifier)]
    subprocess.run(["wtype", *down, "-k", plain, *up, *LAST_KEY], check=True)


class Program:
    """A started program. It says which requests it makes of the compositor, among what else it says."""

    PROTOCOL = re.compile(r"\[[ 0-9.]+\]")

    def __init__(self, *arguments):
        self._log = pathlib.Path("program.log")
        with self._log.open("wb") as log:
            self.process = subprocess.Popen(
                arguments, stdin=subprocess.DEVNULL, stdout=log, stderr=log, env={**os.environ, "WAYLAND_DEBUG": "1"}
            )

    def _lines(self):
        return self._log.read_text(errors="replace").splitlines()

    def messages(self, pattern):
        """How many protocol messages contain this."""
        return sum(1 for line in self._lines() if self.PROTOCOL.match(line) and re.search(pattern, line))

    def complaints(self):
        return [line for line in self._lines() if not self.PROTOCOL.match(line)]

    def popups(self):
        return self.messages(r"xdg_popup[@#]\d+\.configure\(")


@contextlib.contextmanager
def keyboard():
    """A keyboard that stays, so that the windows know one when a key is pressed."""
    with subprocess.Popen(["wtype", *LAST_KEY, "-s", str(24 * 3600 * 1000)]) as holder:
        try:
            yield
        finally:
            holder.terminate()


def expect(what, found, wanted):
    if found != wanted:
        raise Failed(f"{what} is {found!r} instead of {wanted!r}")


def look_at_window(program):
    found = until("the window has the keyboard", lambda: has_keyboard(TITLE))
    expect("the window's application id", found["app_id"], APPLICATION)
    expect("the window's process", found["pid"], program.process.pid)
    until("the program knows the keyboard", lambda: program.messages(r"wl_keyboard[@#]\d+\.enter\("))


def press_for_popup(program, key, what):
    before = program.popups()
    press(key)
    until(f"{what} is up", lambda: program.popups() > before)


def look_at_menus(program):
    press_for_popup(program, "alt+f", "the File menu")
    press_for_popup(program, "Right", "the Edit menu")
    press_for_popup(program, "Left", "the File menu")
    press("Home")
    press("Return")
    dialog = until("the dialog that opens documents is up", lambda: has_keyboard("Open documents"))
    expect("the dialog's application id", dialog["app_id"], APPLICATION)
    press("Escape")
    until("the dialog is closed", lambda: window("Open documents") is None and has_keyboard(TITLE))


def look_at_second_starts(program, path):
    """The window asks for the front with the token that came with the request."""

    def asks_with(token):
        return program.messages(rf'xdg_activation_v1[@#]\d+\.activate\("{token}"')

    for token, arguments in (("of-documents", ["two.txt"]), ("of-nothing", [])):
        pathlib.Path("two.txt").write_text("x")
        second = subprocess.run([path, *arguments], env={**os.environ, "XDG_ACTIVATION_TOKEN": token}, timeout=PATIENCE)
        expect("the second start's status", second.returncode, 0)
        until(f"the window asks with the token {token}", lambda: asks_with(token))
    call = ["gdbus", "call", "--session", "--dest", APPLICATION, "--object-path", "/org/countersign/Countersign"]
    call += ["--method", "org.freedesktop.Application.Open", f"['{pathlib.Path('two.txt').resolve().as_uri()}']"]
    subprocess.run([*call, "{'activation-token': <'of-a-file-manager'>}"], stdout=subprocess.DEVNULL, check=True)
    until("the window asks with the file manager's token", lambda: asks_with("of-a-file-manager"))


def quit_by_key(program):
    press("ctrl+q")
    until("the program has ended", lambda: program.process.poll() is not None)
    expect("its status", program.process.returncode, 0)


def main():
    path = sys.argv[1]
    pathlib.Path("one.txt").write_text("x")
    program = Program(path, "one.txt")
    try:
        with keyboard():
            look_at_window(program)
            look_at_menus(program)
            look_at_second_starts(program, path)
            quit_by_key(program)
    except Failed as failure:
        print(failure, *program.complaints(), *(str(each) for each in windows()), sep="\n", file=sys.stderr)
        return 1
    finally:
        if program.process.poll() is None:
            program.process.terminate()
            program.process.wait()
    if program.complaints():
        print("the program writes:", *program.complaints(), sep="\n", file=sys.stderr)
        return 1
    return 0


sys.exit(main())
