#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds everything and runs the tests. Installs what is missing first.
#
#   ./test.sh [CTEST-ARGUMENT...]          for example: ./test.sh -R bigdigits
#   COUNTERSIGN_PRESET=asan ./test.sh      with another preset than release: debug, asan, tsan
set -u
. "$(dirname "${BASH_SOURCE[0]}")/scripts/lib.sh"

preset=${COUNTERSIGN_PRESET:-release}
"$root/scripts/install-dependencies.sh" test || exit
cmakeArguments=(-DCOUNTERSIGN_BUILD_TESTS=ON)
configureAndBuild "$preset"

say "running the tests (preset $preset)"
cd "$root" || fail "entering $root"
ctest --preset "$preset" "$@"
status=$?
[ "$status" -eq 0 ] || say "FAILED (status $status) while: running the tests"
exit "$status"
