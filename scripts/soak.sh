#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Uses the program for long and says whether its memory grows or a handle gets lost.
#
#   scripts/soak.sh MINUTES [WORK]
#
# Files that change are signed and tested, by the command line and in the real window; assertion dialogs come and are
# answered by keys and clicks; documents, progress dialogs and the main window are opened and closed: all of it on a
# virtual display, for MINUTES. WORK is one kind alone (commandLine, window, dialogs, documents, progress, mainWindow, or
# bareDialogs: the toolkit's own), to find out where something grows. Then, without WORK, windows and programs are ended
# in the middle of their work a thousand times.
#
# At the end stands a table; the status is not 0 if something has grown or was lost. What counts as growth is said in
# tests/soak/skJudgement.h.
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

minutes=${1:-}
case $minutes in
    '' | *[!0-9]*) fail "'$minutes' is no number of minutes; scripts/soak.sh MINUTES [WORK]" ;;
esac
work=${2:-}

cd "$root" || fail "entering $root"
"$root/scripts/install-dependencies.sh" test || exit
configureAndBuild release test_soak test_hostWindow test_commandLineProgram

say "using the program for $minutes minutes"
export COUNTERSIGN_SOAK_SECONDS=$((minutes * 60))
[ -z "$work" ] || export COUNTERSIGN_SOAK_WORK=$work
status=0
build/release/bin/test_soak --gtest_filter=Soak.NothingGrowsAndNothingIsLost 2>build/soak.log || status=1
[ "$status" -eq 0 ] || tail -n 40 build/soak.log >&2
if [ -z "$work" ]; then
    export COUNTERSIGN_SHUTDOWNS=1000
    say "ending windows and programs in the middle of their work, $COUNTERSIGN_SHUTDOWNS times each"
    build/release/bin/test_hostWindow --gtest_filter='Shutdown.*' 2>>build/soak.log || status=1
    build/release/bin/test_commandLineProgram --gtest_filter='Interrupts.*' 2>>build/soak.log || status=1
fi
if [ "$status" -eq 0 ]; then
    say "nothing has grown, nothing was lost"
else
    say "SOMETHING HAS GROWN OR WAS LOST; see above and build/soak.log"
fi
exit "$status"
