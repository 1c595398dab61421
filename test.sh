#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds and runs the tests. Installs what is missing first.
#
#   ./test.sh [CTEST-ARGUMENT...]          all tests but the long ones
#   ./test.sh --all [CTEST-ARGUMENT...]    all tests
#   ./test.sh -R REGEX                     the tests with such names, long ones too; builds only the programs that have any
#   ./test.sh -L REGEX                     the same by label: a room (a folder of tests/), window, long
#   COUNTERSIGN_PRESET=asan ./test.sh      with another preset than release: debug, asan, tsan
#
# Long tests are those that build a tree or a compiler's variant, or take minutes.
set -u
. "$(dirname "${BASH_SOURCE[0]}")/scripts/lib.sh"

preset=${COUNTERSIGN_PRESET:-release}
arguments=()
# What the caller chooses by name and by label, and whether in a way that only ctest can tell.
names=()
labels=()
isChosenOtherwise=
hasAll=
excluded=()
hasJobs=
while [ "$#" -gt 0 ]; do
    case $1 in
        --help | -h)
            sed -n '3,/^set -u/{/^#/s/^# \{0,1\}//p}' "${BASH_SOURCE[0]}"
            exit 0
            ;;
        --all) hasAll=yes ;;
        -R | --tests-regex)
            names=("${2-}")
            arguments+=("$1" "${@:2:1}")
            shift
            ;;
        -L | --label-regex)
            labels+=("${2-}")
            arguments+=("$1" "${@:2:1}")
            shift
            ;;
        -LE | --label-exclude)
            excluded+=("${2-}")
            shift
            ;;
        *)
            case $1 in
                -I | --tests-information | --rerun-failed | -U | --union) isChosenOtherwise=yes ;;
                -j* | --parallel*) hasJobs=yes ;;
            esac
            arguments+=("$1")
            ;;
    esac
    [ "$#" -eq 0 ] || shift
done
if [ -z "$hasAll$isChosenOtherwise" ] && [ "${#names[@]}${#labels[@]}" = 00 ]; then
    # ctest leaves out what all of these match.
    if [ "${#excluded[@]}" -gt 0 ]; then
        excluded=("${excluded[@]/%/|^long$}")
    else
        excluded=('^long$')
    fi
fi
for label in "${excluded[@]}"; do
    arguments+=(-LE "$label")
done
# Two more than there are processors: tests of windows often wait for the screen.
jobs=$(($(nproc) + 2))
[ -n "$hasJobs" ] || arguments+=(-j "$jobs")

# The long ones lint, too.
packages='test'
[ -z "$hasAll" ] || packages='develop'
"$root/scripts/install-dependencies.sh" "$packages" || exit
cmakeArguments=(-DCOUNTERSIGN_BUILD_TESTS=ON)
configure "$preset"

targets=()
if [ -z "$isChosenOtherwise" ] && [ "${#names[@]}${#labels[@]}" != 00 ]; then
    choice=(-DLIST="$root/build/$preset/test-targets-list.cmake")
    [ "${#names[@]}" -eq 0 ] || choice+=(-DNAMES="${names[0]}")
    [ "${#labels[@]}" -eq 0 ] || choice+=(-DLABELS="$(IFS=';'; printf '%s' "${labels[*]}")")
    mapfile -t targets < <(cmake "${choice[@]}" -P "$root/scripts/test-targets.cmake" | sort -u)
fi
case " ${targets[*]} " in
    *' all '*) targets=() ;;
    ' none ') ;;
    *' none '*) mapfile -t targets < <(printf '%s\n' "${targets[@]}" | grep -vx none) ;;
esac
[ "${targets[*]}" = none ] || build "$preset" "${targets[@]}"

cd "$root" || fail "entering $root"
# The displays that windows will need at the same time.
windows=$(ctest --preset "$preset" "${arguments[@]}" -N -L '^window$' 2>/dev/null | sed -n 's/^Total Tests: //p')
runner=()
if [ "${windows:-0}" -gt 1 ]; then
    runner=("$root/scripts/with-displays.sh" "$((windows < jobs ? windows : jobs))")
fi

say "running the tests (preset $preset)"
summary=$(mktemp "$root/build/summary.XXXXXX") || fail "writing in $root/build"
trap 'rm -f "$summary"' EXIT
# ctest's summary comes last. Not by awk: Debian's reads lines in blocks.
"${runner[@]}" ctest --preset "$preset" "${arguments[@]}" | {
    isHeld=
    while IFS= read -r line || [ -n "$line" ]; do
        [[ -n $isHeld || ! $line =~ ^[0-9]+%\ tests\ passed ]] || isHeld=yes
        if [ -n "$isHeld" ]; then
            printf '%s\n' "$line" >>"$summary"
        else
            printf '%s\n' "$line"
        fi
    done
}
status=${PIPESTATUS[0]}
log=$root/build/$preset/Testing/Temporary/LastTest.log
[ ! -s "$summary" ] || [ ! -f "$log" ] || "$root/scripts/list-forms.sh" "$log"
cat "$summary"
[ "$status" -eq 0 ] || say "FAILED (status $status) while: running the tests"
exit "$status"
