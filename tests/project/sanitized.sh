#!/usr/bin/env bash
# Builds what can be tested without a window with sanitizers, in a folder of its own, and runs its tests.
#
#   sanitized.sh asan|tsan SOURCE-FOLDER
set -u
preset=$1 source=$2
build=$source/build/sanitized-$preset

launcher=()
if command -v ccache >/dev/null 2>&1; then
    launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi
cd "$source" || exit 1
mkdir -p "$build" || exit 1
log=$build/made.log
if ! cmake --preset "$preset" -B "$build" -DCOUNTERSIGN_WITH_TOOLKIT=ON -DCOUNTERSIGN_BUILD_DESKTOP=OFF \
    -DCOUNTERSIGN_BUILD_TESTS=ON -DCOUNTERSIGN_WINDOW_TESTS=OFF "${launcher[@]}" >"$log" 2>&1 || ! cmake --build "$build" >>"$log" 2>&1; then
    tail -n 60 "$log" >&2
    exit 1
fi
exec ctest --test-dir "$build" --output-on-failure --no-tests=error -j 2
