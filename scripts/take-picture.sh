#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs a program on the present display until its window stands and is drawn, writes a picture of it and of the menus and
# dialogs it has opened, closes the window as a user would and waits for the program to end. Ends with 0 when all of it
# went well and the program ended with 0.
#
#   scripts/take-picture.sh PICTURE.png PROGRAM [ARGUMENT...]
#
# COUNTERSIGN_PICTURE_KEYS: keys to press before the picture, as xdotool names them, and texts to type without blanks
# ("ctrl+o type:/etc/hosts Return alt+f"). The last may be "dialog:KEY": a key that brings up a dialog which never comes
# to rest, such as one that shows progress.
set -u

picture=$1
shift
patience=60 # seconds for each thing that is waited for
files=$(mktemp -d) || exit 1
program=

cleanUp() {
    if [ -n "$program" ]; then
        kill "$program" 2>/dev/null
        wait "$program" 2>/dev/null
    fi
    rm -rf "$files"
}
trap cleanUp EXIT
trap 'exit 143' TERM INT HUP

fail() {
    echo "take-picture: $*" >&2
    exit 1
}

# waitUntil TEXT COMMAND...: tries a command until it succeeds; fails when that takes too long or the program has ended.
waitUntil() {
    local what=$1 end=$((SECONDS + patience))
    shift
    until "$@"; do
        kill -0 "$program" 2>/dev/null || fail "the program ended before $what"
        [ "$SECONDS" -lt "$end" ] || fail "waited $patience seconds until $what"
        sleep 0.1
    done
}

# The windows that the window manager has taken over, by process: "id desktop pid ..." a line.
hasWindow() {
    window=$(wmctrl -l -p 2>/dev/null | awk -v pid="$program" '$3 == pid { print $1; exit }')
    [ -n "$window" ]
}

hasDialog() {
    [ "$(wmctrl -l -p 2>/dev/null | awk -v pid="$program" '$3 == pid' | wc -l)" -gt 1 ]
}

# A window is drawn when it holds more than a handful of colours, and all is drawn when two pictures in a row are the
# same: contents come after the frame, documents after the contents.
stands() {
    mv -f "$files/now.png" "$files/before.png" 2>/dev/null
    import -silent -window root "$files/now.png" 2>/dev/null || return 1
    [ "$(identify -format '%k' "$files/now.png")" -gt 16 ] || return 1
    sleep 0.4
    [ -e "$files/before.png" ] || return 1
    # Different pixels, but for a text cursor that blinks. A million is written as 1e+06; newer versions add a second
    # number.
    difference=$(compare -metric AE "$files/before.png" "$files/now.png" null: 2>&1)
    awk -v pixels="${difference%% *}" 'BEGIN { exit pixels ~ /^[0-9]/ && pixels + 0 < 100 ? 0 : 1 }'
}

isGone() {
    ! kill -0 "$program" 2>/dev/null
}

# Where it brings up no tooltip.
xdotool mousemove 9999 9999 2>/dev/null
"$@" &
program=$!
waitUntil "its window appeared" hasWindow
waitUntil "its window was drawn" stands
for key in ${COUNTERSIGN_PICTURE_KEYS:-}; do
    case $key in
        dialog:*)
            xdotool key --clearmodifiers "${key#dialog:}" || fail "pressing ${key#dialog:}"
            waitUntil "a dialog appeared" hasDialog
            sleep 1
            import -silent -window root "$files/now.png" || fail "taking the picture"
            continue
            ;;
        type:*) xdotool type --clearmodifiers -- "${key#type:}" || fail "typing ${key#type:}" ;;
        *) xdotool key --clearmodifiers "$key" || fail "pressing $key" ;;
    esac
    # Pictures from before the key tell nothing.
    rm -f "$files/now.png" "$files/before.png"
    waitUntil "its window was drawn again" stands
done
# The bare screen around the windows is one colour.
convert "$files/now.png" -trim +repage "$picture" || fail "writing $picture"

# A polite request, which the program may answer; keys are for menus and dialogs that are still open.
for _ in ${COUNTERSIGN_PICTURE_KEYS:-}; do
    xdotool key --clearmodifiers Escape
done
wmctrl -i -c "$window" || fail "asking the window to close"
end=$((SECONDS + patience))
until isGone; do
    [ "$SECONDS" -lt "$end" ] || fail "waited $patience seconds until the closed window's program ended"
    sleep 0.1
done
wait "$program"
status=$?
program=
[ "$status" -eq 0 ] || fail "the program ended with status $status"
