#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Starts the real program on a display and a session bus of its own, where screen readers find it, and runs
# screenReader.py there, which looks at the program as they do.
#
#   screenReader.sh SOURCE-FOLDER PROGRAM COMMAND
#
# PROGRAM has the window, COMMAND is the command line's program.
set -u
source=$1 program=$2 command=$3

skip() {
    echo "skipped: $1"
    exit 77
}
command -v dbus-run-session >/dev/null || skip "there is no dbus-run-session (package dbus)"
# The system's own, if another one comes first.
for python in python3 /usr/bin/python3; do
    "$python" -c 'import pyatspi' 2>/dev/null && break
    python=
done
[ -n "$python" ] || skip "Python has no pyatspi (package python3-pyatspi)"
[ -n "$(find /usr/share/dbus-1/services -name org.a11y.Bus.service 2>/dev/null)" ] ||
    skip "nothing makes the bus of the readers (package at-spi2-core)"

here=$(mktemp -d)
trap 'rm -rf "$here"' EXIT
export HOME=$here XDG_CONFIG_HOME=$here/config XDG_RUNTIME_DIR=$here/run LC_ALL=C.UTF-8 LANGUAGE=
mkdir -m 700 "$here/run" "$here/documents" && cd "$here" || exit 1

# The display's script keeps readers out; the bus is this session's own.
"$source/scripts/with-display.sh" env -u NO_AT_BRIDGE -u GTK_A11Y -u DBUS_SESSION_BUS_ADDRESS \
    dbus-run-session -- "$python" "$source/tests/host/screenReader.py" "$program" "$command" \
    "$here/documents"
