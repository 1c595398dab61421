#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Starts the real program as often as it takes to meet every way in which its window gets its place, and sees that it
# writes nothing.
#
#   startsSilently.sh SOURCE-FOLDER PROGRAM
set -u
source=$1 program=$2

here=$(mktemp -d)
trap 'rm -rf "$here"' EXIT
cd "$here" || exit 1
export XDG_CONFIG_HOME=$here/config
settings=$XDG_CONFIG_HOME/countersign/settings

# start WHAT [ARGUMENT...]
start() {
    local what=$1
    shift
    rm -f "$here/compared"
    "$source/scripts/with-display.sh" "$source/scripts/take-picture.sh" "$here/picture.png" "$program" "$@" \
        >"$here/talk" 2>&1 || {
        cat "$here/talk" >&2
        exit 1
    }
    if [ -s "$here/talk" ]; then
        echo "$what writes:" >&2
        cat "$here/talk" >&2
        exit 1
    fi
}

# The first comparison of two pictures says that all of them has changed, in the way that large numbers are written.
compare=$(command -v compare) || exit 1
mkdir bin
cat >bin/compare <<EOF
#!/bin/sh
[ -e "$here/compared" ] && exec "$compare" "\$@"
touch "$here/compared"
echo 1.12724e+06 >&2
exit 1
EOF
chmod +x bin/compare
export PATH=$here/bin:$PATH

printf x >document.txt
start "the first start"
grep -q '^window.decor_t=' "$settings" || {
    echo "the frame's borders are not remembered" >&2
    exit 1
}
start "the second start"
start "a start with a document" document.txt

# Nothing is known of what the window manager puts around windows.
sed -i '/^window.decor/d' "$settings"
start "a start with a size and without borders"
sed -i -e '/^window.decor/d' -e 's/^window.Maximized=.*/window.Maximized=1/' "$settings"
start "a start of a maximised window without borders"
start "a start of a maximised window"
rm -r "$XDG_CONFIG_HOME"
start "a first start with a document" document.txt
LC_ALL=C.UTF-8 LANGUAGE=de start "a start in German" document.txt
