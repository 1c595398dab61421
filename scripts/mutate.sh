#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Tries how much the tests notice: changes the sources in one place at a time and looks whether a test fails.
#
#   scripts/mutate.sh [ROOM...] [OPTION...]     for example: scripts/mutate.sh cli host/signing --sample 60
#
# docs/mutants.md says how it works, and --help which options there are.
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

needsDisplay=yes
for argument in "$@"; do
    case $argument in
        --help | -h | --tree | --tree=*) needsDisplay=no ;;
    esac
done
"$root/scripts/install-dependencies.sh" test || exit 2
# Debian's own Python, which has the compiler's bindings.
command=(nice env PYTHONPATH="$root/scripts" /usr/bin/python3 -B -m mutants "$@")
# One display for the whole run instead of one for each start of a test program.
[ "$needsDisplay" != yes ] ||
    command=("$root/scripts/with-display.sh" env COUNTERSIGN_WINDOW_TEST_HAS_DISPLAY=1 "${command[@]}")
exec "${command[@]}"
