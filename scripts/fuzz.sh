#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds the fuzzers and lets them look for trouble.
#
#   scripts/fuzz.sh [TARGET] [SECONDS]     for example: scripts/fuzz.sh keyFile 600
#
# TARGET is a fuzzer of the folder fuzz/ without its extension, or all (the default). Each first takes its seeds and what
# earlier runs have kept (build/fuzz/corpus/TARGET), then looks for SECONDS (default 60; 0: the seeds only). What it
# finds is put into build/fuzz/findings, and the status is not 0; the program build/fuzz/bin/fuzz_TARGET takes such a
# file as its argument. COUNTERSIGN_FUZZ_SEED: the number that the random choices come from (default: another each time).
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

target=${1:-all}
seconds=${2:-60}
case $seconds in
    '' | *[!0-9]*) fail "'$seconds' is no number of seconds; scripts/fuzz.sh [TARGET] [SECONDS]" ;;
esac

cd "$root" || fail "entering $root"
names=()
for source in fuzz/*.cpp; do
    name=$(basename "$source" .cpp)
    if [ "$target" = all ] || [ "$target" = "$name" ]; then
        names+=("$name")
    fi
done
[ "${#names[@]}" -gt 0 ] || fail "there is no fuzzer '$target'; see the folder fuzz/"

"$root/scripts/install-dependencies.sh" test || exit
compiler=$(fuzzingCompiler)
[ -n "$compiler" ] || fail "looking for a clang with its runtime (packages clang and libclang-rt-dev)"
# ccache would not keep what is compiled with precompiled headers.
export CCACHE_SLOPPINESS=pch_defines,time_macros
cmakeArguments=(-DCMAKE_C_COMPILER="${compiler/++/}" -DCMAKE_CXX_COMPILER="$compiler")
configureAndBuild fuzz fuzzers

export seconds findings=build/fuzz/findings
mkdir -p "$findings" || fail "making the folder $findings"

tryOne() {
    local name=$1 corpus=build/fuzz/corpus/$1 log=build/fuzz/$1.log
    if [ ! -x "build/fuzz/bin/fuzz_$name" ]; then
        say "$name: not for this processor"
        return 0
    fi
    mkdir -p "$corpus" || fail "making the folder $corpus"
    local arguments=(-artifact_prefix="$findings/$name-" -timeout=25 -rss_limit_mb=2560 -print_final_stats=1 -verbosity=0)
    [ -z "${COUNTERSIGN_FUZZ_SEED:-}" ] || arguments+=(-seed="$COUNTERSIGN_FUZZ_SEED")
    # A dictionary has no effect on the seeds.
    [ ! -f "fuzz/dictionaries/$name.dict" ] || arguments+=(-dict="fuzz/dictionaries/$name.dict")
    if [ "$seconds" -eq 0 ]; then
        arguments+=(-runs=0)
    else
        arguments+=(-max_total_time="$seconds")
    fi
    if "build/fuzz/bin/fuzz_$name" "${arguments[@]}" "$corpus" "fuzz/seeds/$name" >"$log" 2>&1; then
        say "$name: nothing found, $(sed -n 's/^stat::number_of_executed_units: *//p' "$log") executions"
    else
        tail -n 60 "$log" >&2
        say "$name: FOUND SOMETHING; see $log and $findings"
        return 1
    fi
}
export -f tryOne say fail

printf '%s\n' "${names[@]}" | xargs -n 1 -P "$(nproc)" bash -c 'tryOne "$0"' || exit 1
