#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Tries whether the tests defend what the headers promise: breaks one sentence at a time and looks whether its test fails.
#
#   scripts/try-promises.sh [ROOM...] [OPTION...]     for example: scripts/try-promises.sh crypto
#
# ROOM is a folder of tests/promises; without one, all are taken. Each patch there breaks one sentence. Its first line
# names the test program, the test that must fail (a filter of GoogleTest's) and the sentence:
#
#     test_crypto Key.IsEmptyAtFirst: a key is empty at first
#     tsan:test_baseTools Registry.*: this one fails in the build of another preset than release
#
# It is done in a copy of what git tracks, build/promises/tree, so an edit meanwhile does no harm.
#
#   --only TEXT      only patches that have this in their name
#   --fit            tries none, and says which patches do not fit any more
#   --any            whichever test fails: all programs that the room's patches name are run whole. For new patches; the
#                    tests that have failed are printed.
#
# The status is 0 if every test fails as its patch says, 1 if one passes, 2 if something could not be tried: a test that
# fails without a patch, a patch that does not fit any more or does not compile.
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

only=
any=no
fit=no
patience=120
rooms=()
while [ $# -gt 0 ]; do
    case $1 in
        --help | -h)
            sed -n '3,/^set -u/{/^#/s/^# \{0,1\}//p}' "${BASH_SOURCE[0]}"
            exit 0
            ;;
        --only)
            [ $# -ge 2 ] || fail "--only needs a text"
            only=$2
            shift
            ;;
        --any) any=yes && patience=600 ;;
        --fit) fit=yes ;;
        -*) say "unknown option $1" && exit 2 ;;
        *) rooms+=("$1") ;;
    esac
    shift
done

"$root/scripts/install-dependencies.sh" test || exit 2
promises=$root/tests/promises
if [ ${#rooms[@]} -eq 0 ]; then
    for folder in "$promises"/*/; do
        rooms+=("$(basename "$folder")")
    done
fi

work=$root/build/promises
tree=$work/tree
kept=$work/kept
log=$work/log
mkdir -p "$tree" "$kept" || exit 2

# One line of a patch's first: preset, program, filter, sentence.
readPatch() {
    local first rest
    IFS= read -r first <"$1"
    program=${first%% *}
    rest=${first#* }
    filter=${rest%%: *}
    sentence=${rest#*: }
    preset=release
    case $program in
        *:*)
            preset=${program%%:*}
            program=${program#*:}
            ;;
    esac
    [ -n "$program" ] && [ "$rest" != "$first" ] && [ "$sentence" != "$rest" ]
}

# What differs gets a new time, so that what an interrupted run has left is built anew.
copyTree() {
    local file
    git -C "$root" ls-files -z | while IFS= read -r -d '' file; do
        if [ -f "$root/$file" ] && ! cmp -s "$root/$file" "$tree/$file"; then
            mkdir -p "$(dirname "$tree/$file")" && cp --preserve=mode "$root/$file" "$tree/$file" || return 1
        fi
    done
}

touchedFiles() {
    sed -n 's/^+++ b\/\([^[:space:]]*\).*/\1/p' "$1"
}

buildProgram() {
    env -C "$tree" cmake --build --preset "$1" --target "$2" >"$log" 2>&1
}

# Runs tests of a program: 0 they pass, 1 one fails, 2 they do not run.
runTests() {
    local status
    timeout --kill-after=10 "$patience" "$tree/build/$1/bin/$2" --gtest_brief=1 --gtest_fail_fast "--gtest_filter=$3" >"$log" 2>&1
    status=$?
    case $status in
        0) return 0 ;;
        125 | 126 | 127) return 2 ;;
        *) return 1 ;;
    esac
}

hasTests() {
    "$tree/build/$1/bin/$2" --gtest_list_tests "--gtest_filter=$3" | grep -q '^  '
}

caught=0
survived=0
failed=0

problem() {
    failed=$((failed + 1))
    printf '%-14s %s\n' "NOT TRIED" "$1"
    tail -n 20 "$log"
}

tryPatch() {
    local patch=$1 name file one last='' status=0 isCaught=no
    name=$(basename "$(dirname "$patch")")/$(basename "$patch" .patch)
    readPatch "$patch"
    for file in $(touchedFiles "$patch"); do
        mkdir -p "$(dirname "$kept/$file")"
        cp --preserve=mode "$tree/$file" "$kept/$file" 2>/dev/null
    done
    if ! patch -d "$tree" -p1 --batch --forward --no-backup-if-mismatch -r - <"$patch" >"$log" 2>&1; then
        problem "$name: the patch does not fit"
    elif [ "$any" = yes ]; then
        # Its own program first.
        for one in "$preset:$program" "${programs[@]}"; do
            [ "${one%%:*}" = "$preset" ] || continue
            [ "$one" != "$preset:$program" ] || [ -z "$last" ] || continue
            last=$one
            if ! buildProgram "$preset" "${one#*:}"; then
                problem "$name: ${one#*:} does not compile"
                isCaught=broken
                break
            fi
            runTests "$preset" "${one#*:}" "*"
            if [ $? -eq 1 ]; then
                isCaught=yes
                caught=$((caught + 1))
                printf '%-14s %s: %s %s\n' caught "$name" "${one#*:}" \
                    "$(sed -n 's/^\[  FAILED  \] \([^ ,]*\).*/\1/p' "$log" | sort -u | head -n 5 | tr '\n' ' ')"
                break
            fi
        done
        if [ "$isCaught" = no ]; then
            survived=$((survived + 1))
            printf '%-14s %s: %s\n' SURVIVED "$name" "$sentence"
        fi
    elif ! buildProgram "$preset" "$program"; then
        problem "$name: does not compile"
    else
        runTests "$preset" "$program" "$filter"
        status=$?
        case $status in
            0)
                survived=$((survived + 1))
                printf '%-14s %s: %s passes. %s\n' SURVIVED "$name" "$filter" "$sentence"
                ;;
            1)
                caught=$((caught + 1))
                printf '%-14s %s\n' caught "$name"
                ;;
            *) problem "$name: $program does not run" ;;
        esac
    fi
    for file in $(touchedFiles "$patch"); do
        cp --preserve=mode "$kept/$file" "$tree/$file"
    done
}

# What is to be tried, and the programs for that.
patches=()
programs=()
for room in "${rooms[@]}"; do
    [ -d "$promises/$room" ] || { say "there is no folder tests/promises/$room" && exit 2; }
    for patch in "$promises/$room"/*.patch; do
        case $(basename "$patch") in
            *"$only"*) ;;
            *) continue ;;
        esac
        readPatch "$patch" || { say "the first line of $patch names no test" && exit 2; }
        patches+=("$patch")
        case " ${programs[*]} " in
            *" $preset:$program "*) ;;
            *) programs+=("$preset:$program") ;;
        esac
    done
done
[ ${#patches[@]} -gt 0 ] || { say "there is no such patch" && exit 2; }

if [ "$fit" = yes ]; then
    for patch in "${patches[@]}"; do
        if ! patch -d "$root" -p1 --batch --forward --dry-run <"$patch" >"$log" 2>&1; then
            failed=$((failed + 1))
            printf '%-14s %s\n' "DOES NOT FIT" "${patch#"$promises"/}"
        fi
    done
    printf '%d patches, %d do not fit\n' "${#patches[@]}" "$failed"
    [ "$failed" -eq 0 ] || exit 2
    exit 0
fi

copyTree || exit 2
configured=
for one in "${programs[@]}"; do
    preset=${one%%:*}
    case $configured in
        *" $preset "*) ;;
        *)
            # A patch may leave something unused.
            cacheArguments=(-DCOUNTERSIGN_BUILD_TESTS=ON -DCOUNTERSIGN_WERROR=OFF)
            if command -v ccache >/dev/null 2>&1; then
                cacheArguments+=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
            fi
            (step "configuring the copy (preset $preset)" env -C "$tree" cmake --preset "$preset" "${cacheArguments[@]}") ||
                exit 2
            configured="$configured $preset "
            ;;
    esac
    (step "building ${one#*:} (preset $preset)" env -C "$tree" cmake --build --preset "$preset" --target "${one#*:}") ||
        exit 2
    [ "$any" = no ] || runTests "$preset" "${one#*:}" "*" || { problem "${one#*:}: fails without a patch" && exit 2; }
done
tests=" "
for patch in "${patches[@]}"; do
    readPatch "$patch"
    case $tests in
        *" $preset:$program:$filter "*) continue ;;
    esac
    tests="$tests$preset:$program:$filter "
    hasTests "$preset" "$program" "$filter" || { say "$program has no test $filter ($patch)" && exit 2; }
    runTests "$preset" "$program" "$filter" || { problem "$program $filter: fails without a patch" && exit 2; }
done

for patch in "${patches[@]}"; do
    tryPatch "$patch"
done
printf '%d tried, %d caught, %d survived, %d not tried\n' "$((caught + survived))" "$caught" "$survived" \
    "$failed"
[ "$failed" -eq 0 ] || exit 2
[ "$survived" -eq 0 ]
