#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Tries how much the tests notice: changes the sources in one place at a time and looks whether a test fails.
#
#   scripts/mutate.sh [ROOM...] [OPTION...]     for example: scripts/mutate.sh crypto --sample 200
#
# ROOM is crypto, platform, assertionHandling or bigdigits; without one, all are taken, which lasts for hours. It is
# done in a copy, build/mutate/ROOM: an edit meanwhile does no harm, and different rooms may be tried side by side.
#
#   --sample N       only N mutants of each room, drawn by --seed S (default 1)
#   --file NAME      only those of this source; may be given several times
#   --go-on          only those that no run has come to yet: one was stopped, or drew a sample, or the source has changed
#   --again          only those that nothing caught in the last run, for instance because a test has been added (with
#                    --go-on: both)
#   --singly         each mutant in a program of its own from the start; else most meet the tests in one that has them all
#   --table          tries none, and prints what became of those of earlier runs
#   --dry-run        shows the mutants and tries none
#   --percent N      random cases of bigdigits to begin with, in percent (default 2); survivors meet all of them
#   --then BUILDS    in what other builds the tests of survivors are run: release,asan,tsan (the default), or none
#   --without-windows
#                    only tests without windows (with another --work): for sources that have such, much faster
#   --tree FOLDER, --work FOLDER, --list FILE
#                    another source tree, another folder than build/mutate, another list than the one below
#
# tests/equivalent-mutants.txt lists the mutants that change nothing that could be noticed, each with the reason. What
# survives and is not in the list is printed, in the form that the list has. At the end there is a table, with the part
# that is caught of those that are not the same program, and of those that are not listed either. The status is 0 if
# nothing new survives, 1 if something does, 2 if the run failed.
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

needsWindows=
rooms=0
for argument in "$@"; do
    case $argument in
        --help | -h)
            sed -n '3,/^set -u/{/^#/s/^# \{0,1\}//p}' "${BASH_SOURCE[0]}"
            exit 0
            ;;
        --tree | --tree=*) needsWindows=no ;;
        assertionHandling) needsWindows=${needsWindows:-yes} ;;
        crypto | platform | bigdigits) rooms=$((rooms + 1)) ;;
    esac
done
[ "$rooms" -gt 0 ] || needsWindows=${needsWindows:-yes}

"$root/scripts/install-dependencies.sh" test || exit 2
# Debian's own Python, which has the package.
command=(nice /usr/bin/python3 "$root/scripts/mutate.py" "$@")
# One display for the whole run instead of one for each start of a test program.
[ "$needsWindows" != yes ] ||
    command=("$root/scripts/with-display.sh" env COUNTERSIGN_WINDOW_TEST_HAS_DISPLAY=1 "${command[@]}")
exec "${command[@]}"
