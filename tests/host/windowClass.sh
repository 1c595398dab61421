#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Starts the real program and compares the class of its window with what the desktop entry says, by which desktops know
# that the one belongs to the other.
#
#   windowClass.sh SOURCE-FOLDER PROGRAM
set -u
source=$1 program=$2
id=org.countersign.Countersign

if [ "${3:-}" != inside ]; then
    here=$(mktemp -d)
    trap 'rm -rf "$here"' EXIT
    cd "$here" || exit 1
    HOME=$here XDG_CONFIG_HOME=$here/config "$source/scripts/with-display.sh" "$source/tests/host/windowClass.sh" "$source" "$program" inside
    exit
fi

"$program" &
process=$!
window=$(timeout 500 xdotool search --sync --onlyvisible --name '^Countersign$' | head -n 1)
class=$(xprop -id "${window:-0}" WM_CLASS)
kill "$process"
wait "$process" 2>/dev/null
case $class in
    "WM_CLASS(STRING) = \"$id\", "*) ;;
    *)
        echo "the window has $class" >&2
        exit 1
        ;;
esac
grep -qx "StartupWMClass=$id" "$source/desktop/$id.desktop" || {
    echo "the desktop entry names another class" >&2
    exit 1
}
