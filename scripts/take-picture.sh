#!/usr/bin/env bash
# Runs a program on the present display until its window stands, writes a picture of the screen around that window,
# closes the window and waits for the program to end. Ends with 0 when all of it went well.
#
#   scripts/take-picture.sh PICTURE.png PROGRAM [ARGUMENT...]
set -u

picture=$1
shift
"$@" &
program=$!
trap 'kill "$program" 2>/dev/null' EXIT

# The frame comes first, its contents are drawn when the toolkit is idle.
window=$(timeout 60 xdotool search --sync --onlyvisible --pid "$program" 2>/dev/null | head -n 1)
if [ -z "$window" ]; then
    echo "take-picture: no window appeared" >&2
    exit 1
fi
sleep 2
import -silent -window root "$picture" || exit 1

xdotool windowclose "$window"
wait "$program"
status=$?
trap - EXIT
exit "$status"
