#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs the tests with executed lines counted, and prints the line coverage of each source file.
#
#   scripts/coverage.sh [ROOM...]          for example: scripts/coverage.sh bigdigits crypto
#
# A room is a folder of tests/; without one, all are taken. Lines that no test has run are named. The build is in
# build/coverage, and so is a page to look at: build/coverage/coverage.html.
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

"$root/scripts/install-dependencies.sh" develop || exit
build=$root/build/coverage

# Where the sources of a room lie that is tested in tests/ROOM.
sourceFolder() {
    case $1 in
        bigdigits) echo src ;;
        *) echo "$1" ;;
    esac
}

rooms=("$@")
filters=()
targets=()
labels=
for room in "${rooms[@]}"; do
    [ -f "$root/tests/$room/CMakeLists.txt" ] || fail "there is no room '$room' with tests in tests/$room"
    filters+=(--filter "$root/$(sourceFolder "$room")/")
    targets+=(--target "tests/$room/all")
    labels+="${labels:+|}^$room\$"
done
if [ "${#rooms[@]}" -eq 0 ]; then
    for folder in src platform crypto assertionHandling assertionReporting app host cli; do
        [ ! -d "$root/$folder" ] || filters+=(--filter "$root/$folder/")
    done
    labels=.
fi

cache=()
if command -v ccache >/dev/null 2>&1; then
    cache=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi
step "configuring (build/coverage)" cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
    -DCOUNTERSIGN_COVERAGE=ON "${cache[@]}"
step "building (build/coverage)" cmake --build "$build" "${targets[@]}"
# What earlier runs counted would count again.
find "$build" -name '*.gcda' -delete
step "running the tests" ctest --test-dir "$build" --output-on-failure --no-tests=error \
    -j "$(nproc)" -L "$labels" -LE '^long$'

gcovr --root "$root" --object-directory "$build" "${filters[@]}" --exclude-throw-branches \
    --html-details "$build/coverage.html" --txt - "$build" || fail "reading what was counted"
