#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds the project with sanitizers, in a folder of its own, and runs its tests.
#
#   sanitized.sh asan|tsan SOURCE-FOLDER
#
# asan: everything, windows too; tests without windows run as one process a suite, as a sanitized program takes long to
# start. tsan: what has threads. Tests with windows run as one process a program, with one display for all of its tests.
# For asan the compiler is clang where it is there with its sanitizers, as the other tests are gcc's;
# its thread sanitizer does not let tests bring an operator new of their own.
set -u
preset=$1 source=$2
. "$source/scripts/lib.sh"
build=$source/build/sanitized-$preset
suppressions=$source/tests/project/suppressions

targets=()
tests=()
if [ "$preset" = tsan ]; then
    # Where there is one thread, there is nothing to find.
    targets=(--target test_bigdigits test_baseTools test_osWrappers test_osProcess test_assertion_handler test_crypto
        test_commandLine test_hostEngine test_hostFaults test_assertionThreads test_hostWindow test_main_thread_call)
    tests=(-R '[Tt]hread|Registry|AtATime|IsWonByOneOfMany|DocumentWork|NewKeyPair')
fi
export LSAN_OPTIONS=suppressions=$suppressions/leaks.txt:print_suppressions=0
export TSAN_OPTIONS=suppressions=$suppressions/threads.txt

compiler=()
clang=
[ "$preset" != asan ] || clang=$(fuzzingCompiler)
[ -z "$clang" ] || compiler=(-DCMAKE_C_COMPILER="${clang/++/}" -DCMAKE_CXX_COMPILER="$clang")
launcher=()
if command -v ccache >/dev/null 2>&1; then
    launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi
# It would not keep what is compiled with precompiled headers.
export CCACHE_SLOPPINESS=pch_defines,time_macros
cd "$source" || exit 1
mkdir -p "$build" || exit 1
log=$build/made.log
if ! cmake --fresh --preset "$preset" -B "$build" -DCOUNTERSIGN_WITH_TOOLKIT=ON -DCOUNTERSIGN_BUILD_DESKTOP=ON \
    -DCOUNTERSIGN_BUILD_TESTS=ON -DCOUNTERSIGN_WINDOW_TESTS=ON -DCOUNTERSIGN_PRECOMPILE=ON -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1 -g1" \
    "${compiler[@]}" "${launcher[@]}" >"$log" 2>&1 || ! cmake --build "$build" "${targets[@]}" >>"$log" 2>&1; then
    tail -n 60 "$log" >&2
    exit 1
fi

status=0
if [ "$preset" = tsan ]; then
    ctest --test-dir "$build" --output-on-failure --no-tests=error -LE '^(window|project)$' "${tests[@]}" -j "$(nproc)" || status=1
fi
# The programs of the tests that ctest's arguments choose.
programsOf() {
    ctest --test-dir "$build" -N -V "$@" | sed -n 's/.*Test command: \([^ ]*\).*/\1/p' | sort -u
}
runSuite() {
    local program=$1 suite=$2 log
    log=$program.$(tr / _ <<<"$suite").log
    if ! timeout --kill-after=30 1800 "$program" --gtest_filter="$suite*" >"$log" 2>&1 </dev/null ||
        grep -q '^\[=*\] 0 tests' "$log"; then
        echo "FAILED: $program $suite"
        cat "$log"
        return 1
    fi
    echo "passed: ${program##*/} $suite"
}
export -f runSuite
# Of the session bus a process sees one; the program itself is started by a script.
singly='SessionBus|NotificationWindow|Taskbar|host\.program|host\.wayland'
if [ "$preset" = asan ]; then
    ctest --test-dir "$build" --output-on-failure --no-tests=error -LE '^project$' -R "$singly" -j "$(nproc)" || status=1
    # The project's scripts are the same in every build.
    suites=$(programsOf -LE '^(window|project)$' -E "$singly" | while read -r program; do
        found=$("$program" --gtest_list_tests | sed -n 's/^\([^ ]*\.\)\( *#.*\)\{0,1\}$/\1/p' | grep -vE "$singly")
        printf '%s\n' "${found:-$program has no tests}" | sed "s|^|$program |"
    done)
    xargs -r -L 1 -P "$(nproc)" bash -c 'runSuite "$0" "$1"' <<<"$suites" || status=1
fi
programs=$(programsOf -L '^window$' -E "$singly")
[ -n "$programs" ] || status=1

# Moments of the windows' end are tried often enough without sanitizers.
export COUNTERSIGN_SHUTDOWNS=8
runOne() {
    local program=$1
    # Some tests catch standard error.
    local found=$program.found
    rm -f "$found".*
    export ASAN_OPTIONS=log_path=$found UBSAN_OPTIONS=log_path=$found TSAN_OPTIONS=$TSAN_OPTIONS:log_path=$found
    # A program that waits for ever would take the names of all other failures with it. At rest none takes three
    # minutes.
    if ! timeout --kill-after=30 1800 "$program" >"$program.log" 2>&1 || grep -q '^\[=*\] 0 tests' "$program.log"; then
        echo "FAILED: $program"
        cat "$program.log" "$found".* 2>/dev/null
        return 1
    fi
    echo "passed: $program"
}
export -f runOne
if [ "$preset" = tsan ]; then
    work="Signing.SignsAndTestsByKeys:Signing.ShowsProgress*:Signing.SurvivesTheWindowsEnd:Signing.MakesKeyPairs*"
    assertions="AssertionThreads.*:MainThreadCall.*:HostileAssertions.*:AssertionReportWindow.HoldsWhatFails*"
    export GTEST_FILTER=$work:Shutdown.OfTheWindowWhileItWorks:$assertions
fi
xargs -r -n 1 -P "$(nproc)" bash -c 'runOne "$0"' <<<"$programs" || status=1
exit "$status"
