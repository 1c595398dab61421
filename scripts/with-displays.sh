#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs a command with virtual displays at hand, and gives the command's exit status. Each scripts/with-display.sh that the
# command starts takes one that is free, instead of starting its own, which takes longer than most tests.
#
#   scripts/with-displays.sh AMOUNT COMMAND [ARGUMENT...]
set -u
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
amount=$1
shift

holders=()
child=
files=$(mktemp -d) || exit 125
mkdir "$files/displays" || exit 125

cleanUp() {
    trap '' TERM INT HUP
    for process in $child "${holders[@]}"; do
        kill "$process" 2>/dev/null
    done
    wait 2>/dev/null
    rm -rf "$files"
}
trap cleanUp EXIT
trap 'exit 143' TERM
trap 'exit 130' INT
trap 'exit 129' HUP

# The command need not wait for them: one comes into the folder when it can be used.
unset COUNTERSIGN_DISPLAYS
for number in $(seq "$amount"); do
    # shellcheck disable=SC2016
    "$here/with-display.sh" sh -c 'echo "${DISPLAY#:}" >"$1/$2" && mv "$1/$2" "$1/displays/$2" && exec sleep infinity' \
        - "$files" "$number" &
    holders+=("$!")
done

COUNTERSIGN_DISPLAYS=$files/displays "$@" &
child=$!
wait "$child"
status=$?
child=
exit "$status"
