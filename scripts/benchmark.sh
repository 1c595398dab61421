#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Measures the rooms beside their peers and writes the figures into docs/performance.md, medians of repeated runs.
#
#   scripts/benchmark.sh [ROOM...]          for example: scripts/benchmark.sh bigdigits
#
# A room is a folder of benchmarks/; without one, all are taken, and only then is the page written. Nothing else should
# run meanwhile. COUNTERSIGN_BENCHMARK_REPETITIONS sets how often each figure is taken (3; starts of the window vary more
# than all else, 9).
# COUNTERSIGN_BENCHMARK_FILTER chooses by a regular expression of names, <operation>/<size>/<who>.
# COUNTERSIGN_BENCHMARK_WITHOUT_AVX512=yes measures bigdigits alone as on a processor that has AVX2 and no AVX-512.
# COUNTERSIGN_BENCHMARK_INSTRUCTIONS=yes prints how many instructions bigdigits and its peers take instead, for the names
# that COUNTERSIGN_BENCHMARK_FILTER finds (by default those of docs/performance.md); nothing else need rest.
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

"$root/scripts/install-dependencies.sh" develop || exit
build=$root/build/benchmark
flags="-O3 -DNDEBUG"
rooms=("$@")
if [ -n "${COUNTERSIGN_BENCHMARK_WITHOUT_AVX512:-}" ]; then
    build=$root/build/benchmark-without-avx512
    flags="$flags -DMP_WITHOUT_AVX512"
    # The same for libcrypto: without AVX-512 F, DQ, IFMA, CD, BW and VL.
    export OPENSSL_ia32cap=:~0xD0230000
    set -- bigdigits
    rooms=(bigdigits)
elif [ -n "${COUNTERSIGN_BENCHMARK_INSTRUCTIONS:-}" ]; then
    rooms=(bigdigits)
elif [ "${#rooms[@]}" -eq 0 ]; then
    rooms=(bigdigits crypto signing cli platform host)
fi
targets=()
for room in "${rooms[@]}"; do
    [ -d "$root/benchmarks/$room" ] || fail "there is no room '$room' with benchmarks in benchmarks/$room"
    targets+=(--target "benchmark_$room")
    [ "$room" != cli ] || targets+=(--target countersign_cli)
done

cache=()
if command -v ccache >/dev/null 2>&1; then
    cache=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi
step "configuring (${build#"$root/"})" cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    "-DCMAKE_CXX_FLAGS_RELEASE=$flags" -DCOUNTERSIGN_BUILD_BENCHMARKS=ON -DCOUNTERSIGN_BUILD_TESTS=OFF \
    -DCOUNTERSIGN_BUILD_CLI=ON "${cache[@]}"
step "building (${build#"$root/"})" cmake --build "$build" "${targets[@]}"

if [ -n "${COUNTERSIGN_BENCHMARK_INSTRUCTIONS:-}" ]; then
    names='(mpMultiply/(64|128)|mpSquare/(32|64)|mpDivide/64) digits/(ours|GMP)|64 bits/(1024|2048|4096) bits/(ours|OpenSSL)'
    exec "$build/bin/benchmark_bigdigits" "--count-instructions=${COUNTERSIGN_BENCHMARK_FILTER:-$names}"
fi
files=()
for room in "${rooms[@]}"; do
    say "measuring $room (some minutes)"
    program=("$build/bin/benchmark_$room")
    [ "$room" != cli ] || program+=("$build/bin/countersign")
    repetitions=3
    if [ "$room" = host ]; then
        repetitions=9
        # The first start, without what somebody has opened here before.
        mkdir -p "$build/config" && rm -rf "$build/config/countersign" || fail "emptying $build/config"
        program=(env XDG_CONFIG_HOME="$build/config" "$root/scripts/with-display.sh" "${program[@]}"
            "$build/bin/countersign-desktop" "$build/bin/benchmark_bareFrame")
    fi
    "${program[@]}" --benchmark_filter="${COUNTERSIGN_BENCHMARK_FILTER:-all}" \
        --benchmark_repetitions="${COUNTERSIGN_BENCHMARK_REPETITIONS:-$repetitions}" --benchmark_min_time=0.03 \
        --benchmark_report_aggregates_only=true --benchmark_format=console \
        --benchmark_out_format=json --benchmark_out="$build/$room.json" >"$build/$room.log" ||
        fail "measuring $room; see $build/$room.log"
    files+=("$build/$room.json")
done
page=
[ "$#" -gt 0 ] || [ -n "${COUNTERSIGN_BENCHMARK_FILTER:-}" ] || page=$root/docs/performance.md
python3 "$root/benchmarks/figures.py" "$(c++ --version | head -n 1)" "$page" "${files[@]}" ||
    fail "reading what was measured"
