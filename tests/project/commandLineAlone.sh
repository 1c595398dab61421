#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds the command line alone, on a system that seems to have neither the window's toolkit nor what lies below it.
#
#   commandLineAlone.sh SOURCE-FOLDER
set -u
source=$1

here=$(mktemp -d)
trap 'rm -rf "$here"' EXIT

complain() {
    printf '%s\n' "$*" >&2
    exit 1
}

# Nothing is found by pkg-config, and the toolkit's own program for that is not there.
export PKG_CONFIG_LIBDIR=$here/none PKG_CONFIG_PATH=
launcher=()
if command -v ccache >/dev/null 2>&1; then
    launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi
cmake -S "$source" -B "$here/build" -G Ninja -DCMAKE_BUILD_TYPE= -DCMAKE_DISABLE_FIND_PACKAGE_wxWidgets=ON \
    -DCOUNTERSIGN_WITH_TOOLKIT=OFF -DCOUNTERSIGN_BUILD_DESKTOP=OFF -DCOUNTERSIGN_BUILD_TESTS=OFF \
    "${launcher[@]}" >"$here/log" 2>&1 || complain "$(cat "$here/log")"
cmake --build "$here/build" >"$here/log" 2>&1 || complain "$(tail -n 60 "$here/log")"

needed=$(readelf -d "$here/build/bin/countersign" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
! grep -E 'wx|gtk|glib|gio|X11' <<<"$needed" || complain "the command line needs more than it uses"
"$here/build/bin/countersign" --version >/dev/null || complain "the program does not run"
