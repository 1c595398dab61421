#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds Countersign, says where its programs are, and opens the given documents in the window. Installs what is missing
# first.
#
#   ./run.sh [FILE...]
#
# Without a display the application runs on a virtual one and a picture of its window is written.
set -u
. "$(dirname "${BASH_SOURCE[0]}")/scripts/lib.sh"

"$root/scripts/install-dependencies.sh" run || exit
# Whoever only runs the application needs no test libraries; whoever has built the tests keeps them.
[ -e "$root/build/release/CMakeCache.txt" ] || cmakeArguments=(-DCOUNTERSIGN_BUILD_TESTS=OFF)
configureAndBuild release countersign_desktop countersign_cli

programs=$root/build/release/bin
program=$programs/countersign-desktop
say "the programs countersign and countersign-desktop are ready; this line puts them on the path:"
printf 'export PATH=%q:"$PATH"\n' "$programs"
if hasDisplay; then
    say "running the application"
    exec "$program" "$@"
fi

say "there is no display: running the application on a virtual one"
picture=$root/build/countersign.png
rm -f "$picture"
"$root/scripts/with-display.sh" "$root/scripts/take-picture.sh" "$picture" "$program" "$@" ||
    fail "taking a picture of the running application"
say "a picture of the window is in $picture"
