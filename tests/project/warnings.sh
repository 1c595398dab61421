#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Looks for whom warnings are errors: for the presets, and for nobody else who does not ask for it.
#
#   warnings.sh here|subproject|byHand BUILD-FOLDER SOURCE-FOLDER
set -u
case=$1 build=$2 source=$3

here=$(mktemp -d)
trap 'rm -rf "$here"' EXIT

complain() {
    printf '%s\n' "$*" >&2
    exit 1
}

configure() {
    cmake -G Ninja -DCMAKE_EXPORT_COMPILE_COMMANDS=ON -DCOUNTERSIGN_BUILD_TESTS=OFF -DCOUNTERSIGN_BUILD_DESKTOP=OFF \
        -DCOUNTERSIGN_WITH_TOOLKIT=OFF "$@" -B "$here/build" >"$here/log" 2>&1 || complain "$(cat "$here/log")"
}

# expect all|none FOLDER: that of the compiler's calls, so many take warnings for errors.
expect() {
    local commands with
    commands=$(grep -F '"command"' "$2/compile_commands.json") || complain "there are no calls of the compiler in $2"
    case $1 in
        all) with=$(grep -vF -- ' -Werror ' <<<"$commands") && complain "not an error here: $(head -n 3 <<<"$with")" ;;
        none) with=$(grep -F -- ' -Werror ' <<<"$commands") && complain "an error here: $(head -n 3 <<<"$with")" ;;
    esac
    # In either way they are asked for.
    with=$(grep -vF -- ' -Wshadow ' <<<"$commands") && complain "compiled without warnings: $(head -n 3 <<<"$with")"
    return 0
}

case $case in
    here) expect all "$build" ;;
    subproject)
        mkdir "$here/parent"
        cat >"$here/parent/CMakeLists.txt" <<END
cmake_minimum_required(VERSION 3.25)
project(parent LANGUAGES C CXX)
add_subdirectory("$source" countersign)
END
        configure -S "$here/parent"
        expect none "$here/build"
        configure -S "$here/parent" -DCOUNTERSIGN_WERROR=ON
        expect all "$here/build"
        ;;
    byHand)
        configure -S "$source"
        expect none "$here/build"
        ;;
    *) complain "unknown case '$case'" ;;
esac
