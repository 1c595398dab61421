#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Starts the real program a second time as a desktop does, with a startup id, and looks whether the window that answers has
# taken it over: by that the window manager knows that the window may come to the front, and the desktop that the start is
# over.
#
#   startupId.sh SOURCE-FOLDER PROGRAM
set -u
source=$1 program=$2

if [ "${3:-}" != inside ]; then
    command -v dbus-run-session >/dev/null || { echo "skipped: there is no dbus-run-session (package dbus)" && exit 77; }
    here=$(mktemp -d)
    trap 'rm -rf "$here"' EXIT
    cd "$here" || exit 1
    HOME=$here XDG_CONFIG_HOME=$here/config "$source/scripts/with-display.sh" dbus-run-session -- \
        "$source/tests/host/startupId.sh" "$source" "$program" inside
    exit
fi

touch one.txt two.txt
unset DESKTOP_STARTUP_ID XDG_ACTIVATION_TOKEN
"$program" one.txt &
process=$!
trap 'kill "$process"; wait "$process" 2>/dev/null' EXIT
window=$(timeout 500 xdotool search --sync --onlyvisible --name '^Countersign$' | head -n 1)
leader=$(xprop -id "${window:-0}" WM_CLIENT_LEADER | sed -n 's/.*# //p')

# startAgain ID [DOCUMENT...]: the window must have taken ID over within five minutes, which is far more than it takes.
startAgain() {
    local id=$1
    shift
    DESKTOP_STARTUP_ID=$id timeout 500 "$program" "$@" || { echo "the second start has status $?" >&2 && exit 1; }
    for _ in $(seq 3000); do
        xprop -id "${leader:-0}" _NET_STARTUP_ID | grep -qF "\"$id\"" && return
        sleep 0.1
    done
    echo "after a start with $id the window has $(xprop -id "${leader:-0}" _NET_STARTUP_ID)" >&2
    exit 1
}
startAgain desktop-1-documents_TIME1000 two.txt
startAgain desktop-2-nothing_TIME2000
