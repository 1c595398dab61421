#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs a command on a virtual display that nobody else uses meanwhile, with a window manager, and gives the command's exit
# status.
#
#   scripts/with-display.sh COMMAND [ARGUMENT...]
#
# COUNTERSIGN_SCREEN sets the screen (1280x900x24). COUNTERSIGN_DISPLAYS is a folder of displays (scripts/with-displays.sh):
# one that is free is taken. Where there is none, and without the folder, the display is started here.
set -u

display=
lock=
xvfb=
manager=
child=
files=$(mktemp -d) || exit 125

cleanUp() {
    trap '' TERM INT HUP
    for process in $child $manager $xvfb; do
        kill "$process" 2>/dev/null
    done
    wait 2>/dev/null
    rm -rf "$files"
}
trap cleanUp EXIT
trap 'exit 143' TERM
trap 'exit 130' INT
trap 'exit 129' HUP

# What is started here ends with this script, however that ends.
together=()
if setpriv --pdeathsig TERM true 2>/dev/null; then
    together=(setpriv --pdeathsig TERM)
fi

# Nothing of the user's own session: no Wayland, no bus (where the application may be running), no accessibility, no
# saved settings.
unset WAYLAND_DISPLAY
export DBUS_SESSION_BUS_ADDRESS=disabled:
export GDK_BACKEND=x11 NO_AT_BRIDGE=1 GTK_A11Y=none GSETTINGS_BACKEND=memory

# Whoever had it before may have left the mouse anywhere, and keys pressed. A display that has ended does not obey, and
# windows of a program that is just ending would disturb.
isFit() {
    DISPLAY=$1 xdotool mousemove 640 450 keyup shift keyup ctrl keyup alt 2>/dev/null &&
        [ -z "$(DISPLAY=$1 wmctrl -l 2>/dev/null)" ]
}

# takeDisplay FOLDER: takes a display that is free; the lock is held until this script ends.
takeDisplay() {
    local slot
    for slot in "$1"/*; do
        exec {lock}<"$slot" || continue
        if flock -n "$lock" && read -r display <&"$lock" && isFit ":$display"; then
            return 0
        fi
        exec {lock}<&-
    done
    lock=
    return 1
}

startDisplay() {
    mkfifo "$files/number" || exit 125
    "${together[@]}" Xvfb -displayfd 3 -screen 0 "${COUNTERSIGN_SCREEN:-1280x900x24}" -nolisten tcp \
        3>"$files/number" 2>"$files/xvfb.log" &
    xvfb=$!
    read -r -t 600 display <"$files/number"
    if [ -z "$display" ]; then
        echo "with-display: the virtual display did not start:" >&2
        cat "$files/xvfb.log" >&2
        exit 125
    fi
    export DISPLAY=":$display"
    # Nothing of the user's own either: an empty configuration, as a file that holds none is reported in a window.
    echo '<?xml version="1.0"?><openbox_config xmlns="http://openbox.org/3.4/rc"/>' >"$files/openbox.xml"
    "${together[@]}" openbox --config-file "$files/openbox.xml" --startup "touch '$files/managed'" \
        >"$files/openbox.log" 2>&1 &
    manager=$!
    for _ in $(seq 30000); do
        [ -e "$files/managed" ] && break
        kill -0 "$manager" 2>/dev/null || break
        sleep 0.02
    done
    if [ ! -e "$files/managed" ]; then
        echo "with-display: the window manager did not start:" >&2
        cat "$files/openbox.log" >&2
        exit 125
    fi
}

# A command that does the same takes another one.
displays=${COUNTERSIGN_DISPLAYS:-}
unset COUNTERSIGN_DISPLAYS
if [ -z "$displays" ] || [ -n "${COUNTERSIGN_SCREEN:-}" ] || ! takeDisplay "$displays"; then
    startDisplay
fi
export DISPLAY=":$display"

if [ -n "$lock" ]; then
    "${together[@]}" "$@" {lock}<&- &
else
    "${together[@]}" "$@" &
fi
child=$!
wait "$child"
status=$?
child=
exit "$status"
