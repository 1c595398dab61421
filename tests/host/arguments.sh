#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Starts the real program with arguments that need care, in two locales, and looks at what it remembers of them.
#
#   arguments.sh SOURCE-FOLDER PROGRAM
set -u
source=$1 program=$2

here=$(mktemp -d)
trap 'rm -rf "$here"' EXIT
cd "$here" || exit 1

plain='-a plain name.txt'
bytes=$'bytes \xff\xfe.txt'
lines=$'two\nlines.txt'
accents=$'caf\xc3\xa9.txt'
for name in "$plain" "$bytes" "$lines" "$accents"; do
    printf x >"$name"
done
mkfifo pipe

for locale in C.UTF-8 C; do
    export XDG_CONFIG_HOME=$here/config.$locale
    LC_ALL=$locale "$source/scripts/with-display.sh" "$source/scripts/take-picture.sh" "$here/picture.png" \
        "$program" "$plain" pipe "$bytes" missing "$lines" "$accents" 2>"$here/talk" || {
        cat "$here/talk" >&2
        exit 1
    }
    expected=$(printf 'recent.%s\n' "1=$(realpath .)/caf%C3%A9.txt" "2=$(realpath .)/two%0Alines.txt" \
        "3=$(realpath .)/bytes%20%FF%FE.txt" "4=$(realpath .)/-a%20plain%20name.txt")
    found=$(grep '^recent' "$XDG_CONFIG_HOME/countersign/settings")
    if [ "$found" != "$expected" ]; then
        printf 'in locale %s: expected\n%s\nfound\n%s\n' "$locale" "$expected" "$found" >&2
        exit 1
    fi
done

# Without a display there is no window.
status=0
env -u DISPLAY -u WAYLAND_DISPLAY "$program" "$plain" >"$here/talk" 2>&1 || status=$?
if [ "$status" != 255 ]; then
    printf 'without a display the status is %s:\n%s\n' "$status" "$(cat "$here/talk")" >&2
    exit 1
fi
