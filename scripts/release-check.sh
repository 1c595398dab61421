#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Does what takes too long for ./test.sh --all, and writes into docs/release-check.md what came of each step.
#
#   scripts/release-check.sh [--again] [STEP...]     for example: scripts/release-check.sh builds.clang fresh.trixie
#   scripts/release-check.sh --list      names the steps
#   scripts/release-check.sh --table     runs nothing; the page names each step, with what came of it if it has been run
#
# Without STEP, all of them, which takes many hours: it may be stopped at any time. What has passed for this commit is not
# done once more (--again: it is); a change of docs/release-check.md alone makes no other commit of it. Each step's
# log is build/release-check/STEP.log. The status is not 0 if a step has failed.
#
# COUNTERSIGN_FUZZ_SECONDS (600 for each fuzzer) and COUNTERSIGN_SOAK_MINUTES (60) say how long those two take.
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

fuzzSeconds=${COUNTERSIGN_FUZZ_SECONDS:-600}
soakMinutes=${COUNTERSIGN_SOAK_MINUTES:-60}
# A name and a command a line.
steps="
tests ./test.sh --all
tests.debug env COUNTERSIGN_PRESET=debug ./test.sh
lint scripts/lint.sh --all
coverage scripts/coverage.sh
builds.clang env COUNTERSIGN_OTHER_TESTS=^long$ scripts/otherBuilds.sh clang
builds.libc++ scripts/otherBuilds.sh libc++
builds.c++20 scripts/otherBuilds.sh c++20
builds.c++23 scripts/otherBuilds.sh c++23
builds.lto scripts/otherBuilds.sh lto
builds.debugMode env COUNTERSIGN_OTHER_TESTS=^long$ scripts/otherBuilds.sh debugMode
builds.makefiles scripts/otherBuilds.sh makefiles
builds.path scripts/otherBuilds.sh path
builds.user env COUNTERSIGN_OTHER_TESTS=^long$ scripts/otherBuilds.sh user
builds.offline scripts/otherBuilds.sh offline
builds.arm64 scripts/otherBuilds.sh arm64
processors scripts/cross-test.sh --fetch
fresh.bookworm scripts/fresh-debian.sh bookworm
fresh.trixie scripts/fresh-debian.sh trixie
packages scripts/debian-package.sh
fuzzing scripts/fuzz.sh all $fuzzSeconds
soak scripts/soak.sh $soakMinutes
promises scripts/try-promises.sh
mutants.tool tests/project/scripts.sh mutantsAreTried .
mutants scripts/mutate.sh
"
steps=$(sed '/^$/d' <<<"$steps")

again=
table=
wanted=()
for argument; do
    case $argument in
        --again) again=yes ;;
        --table) table=yes ;;
        --list)
            cut -d ' ' -f 1 <<<"$steps"
            exit 0
            ;;
        *)
            grep -qF -- "$argument " <<<"$(cut -d ' ' -f 1 <<<"$steps" | sed 's/$/ /')" ||
                fail "there is no step '$argument'; scripts/release-check.sh --list names them"
            wanted+=("$argument")
            ;;
    esac
done
[ "${#wanted[@]}" -gt 0 ] || mapfile -t wanted < <(cut -d ' ' -f 1 <<<"$steps")

cd "$root" || fail "entering $root"
page=docs/release-check.md
logs=$root/build/release-check
mkdir -p "$logs" || fail "making the folder $logs"
[ -f "$page" ] || fail "there is no $page"

# The last commit that changed more than the page.
commit=$(git log -1 --format=%h -- . ":!$page") || fail "looking for the commit"
[ -z "$(git status --porcelain -- . ":!$page")" ] || commit+=" with changes"

# A step's row in the page, without the name: "| result | commit | date | minutes | what it said |".
row() {
    sed -n "/<!-- results -->/,\$s/^| \`${1//./\\.}\` |/|/p" "$page"
}

# writePage STEP ROW: the page with this row, and a row for each step.
writePage() {
    local name kept new=$page.part
    {
        sed '/<!-- results -->/q' "$page"
        echo
        echo "| step | result | commit | date | processor minutes | what it said |"
        echo "|---|---|---|---|---|---|"
        while read -r name _; do
            if [ "$name" = "$1" ]; then
                kept=$2
            else
                kept=$(row "$name")
            fi
            echo "| \`$name\` ${kept:-| not run | | | | |}"
        done <<<"$steps"
        echo
        sed -n '/<!-- end of results -->/,$p' "$page"
    } >"$new" || fail "writing $new"
    mv "$new" "$page" || fail "writing $page"
}

# What a log says of the whole, in a line.
lastWord() {
    local said
    said=$(grep -E 'tests passed, |: passed, |: SKIPPED, ' "$1" | tail -n 1)
    [ -n "$said" ] || said=$(sed '/^ *$/d' "$1" | tail -n 1)
    said=${said#countersign: }
    said=${said//"$root/"/}
    tr -d '|`' <<<"$said" | cut -c 1-160
}

writePage "" ""
[ -z "$table" ] || exit 0
failed=()
for name in "${wanted[@]}"; do
    if [ -z "$again" ] && [[ $(row "$name") == "| passed | $commit |"* ]]; then
        say "$name: has passed for this commit"
        continue
    fi
    read -r -a command <<<"$(grep -F -- "$name " <<<"$steps" | sed -n "s/^${name//./\\.} //p")"
    log=$logs/$name.log
    say "$name: ${command[*]} ($log)"
    # The second line is what ended children have taken, user and system time.
    times >"$logs/before"
    "${command[@]}" >"$log" 2>&1 </dev/null
    status=$?
    times >"$logs/after"
    minutes=$(sed -s -n '2{s/[ms]/ /g;p}' "$logs/before" "$logs/after" |
        awk '{ now = $1 * 60 + $2 + $3 * 60 + $4; spent = now - before; before = now } END { printf "%.1f", spent / 60 }')
    result=passed
    if [ "$status" -eq 77 ]; then
        result=skipped
    elif [ "$status" -ne 0 ]; then
        result=FAILED
        failed+=("$name")
    elif grep -q '^[^ ]*: SKIPPED, ' "$log"; then
        result=skipped
    fi
    say "$name: $result, $(lastWord "$log")"
    writePage "$name" "| $result | $commit | $(date +%F) | $minutes | $(lastWord "$log") |"
done
[ "${#failed[@]}" -eq 0 ] || fail "these steps: ${failed[*]}"
say "the results are in $page"
