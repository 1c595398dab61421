#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Uses the window of examples/assertionWindow as its user would, on the present display: presses its button, decides
# "Ignore all", presses once more, and closes the window. Gives the program's output and status.
#
#   pressAndDecide.sh PROGRAM
set -eu
"$1" &
program=$!
trap 'kill "$program" 2>/dev/null || true' EXIT

# waitFor TITLE: until the window with the keyboard has such a title.
waitFor() {
    local end=$((SECONDS + 60))
    until xdotool getactivewindow getwindowname 2>/dev/null | grep -q "^$1"; do
        [ "$SECONDS" -lt "$end" ] || { echo "no window '$1'" >&2; exit 1; }
        sleep 0.05
    done
}
waitFor 'Assertion kit example'
xdotool key --clearmodifiers alt+f
waitFor 'Assert in: assertionWindow.cpp'
xdotool key --clearmodifiers Return
waitFor 'Assertion kit example'
xdotool key --clearmodifiers alt+f
wmctrl -c 'Assertion kit example'
wait "$program"
