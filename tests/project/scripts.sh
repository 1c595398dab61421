#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Tries the scripts that people start.
#
#   scripts.sh CASE SOURCE-FOLDER
set -u
case=$1 source=$2

here=$(mktemp -d)
trap 'rm -rf "$here"' EXIT

complain() {
    printf '%s\n' "$*" >&2
    [ ! -e "$here/output" ] || cat "$here/output" >&2
    exit 1
}

expectLine() {
    grep -qE -- "$1" "$here/output" || complain "no line like: $1"
}

# A stand-in for a program, first on the PATH.
stand() {
    mkdir -p "$here/bin"
    printf '#!/bin/sh\n%s\n' "$2" >"$here/bin/$1"
    chmod +x "$here/bin/$1"
}

case $case in
    failingStepIsNamed)
        bash -c '. "$1/scripts/lib.sh"; step "walking the dog" sh -c "echo it bites; exit 7"; echo went on' \
            - "$source" >"$here/output" 2>&1
        status=$?
        [ "$status" -eq 7 ] || complain "status $status instead of 7"
        expectLine '^countersign: walking the dog$'
        expectLine '^it bites$'
        expectLine '^countersign: FAILED \(status 7\) while: walking the dog$'
        ! grep -q 'went on' "$here/output" || complain "it went on after a failing step"
        ;;

    installsOnlyWhatIsMissing)
        stand dpkg-query 'for last; do :; done; case $last in gdb | xvfb) echo not-installed ;; *) echo installed ;; esac'
        stand id 'echo 0'
        stand apt-get "echo \"\$@\" >>'$here/apt'"
        PATH=$here/bin:$PATH "$source/scripts/install-dependencies.sh" test >"$here/output" 2>&1 ||
            complain "it failed"
        grep -qE '^update$' "$here/apt" || complain "the package lists were not refreshed"
        grep -qE ' install .* xvfb gdb$' "$here/apt" || complain "asked for: $(cat "$here/apt")"
        expectLine '^countersign: installing missing packages: xvfb gdb$'
        ;;

    installsNothingWhenAllIsThere)
        stand dpkg-query 'echo installed'
        stand apt-get "touch '$here/called'"
        PATH=$here/bin:$PATH "$source/scripts/install-dependencies.sh" develop >"$here/output" 2>&1 ||
            complain "it failed"
        [ ! -e "$here/called" ] || complain "apt-get was called"
        [ ! -s "$here/output" ] || complain "it talked"
        ;;

    saysWhenItMayNotInstall)
        stand dpkg-query 'echo not-installed'
        stand id 'echo 1000'
        stand sudo 'exit 1'
        stand apt-get "touch '$here/called'"
        if PATH=$here/bin:$PATH "$source/scripts/install-dependencies.sh" run </dev/null >"$here/output" 2>&1; then
            complain "it did not fail"
        fi
        [ ! -e "$here/called" ] || complain "apt-get was called"
        expectLine 'these packages are missing: .*libwxgtk3.2-dev'
        expectLine 'FAILED: installing packages: it takes root or sudo'
        ;;

    displayGivesTheStatusOfTheCommand)
        "$source/scripts/with-display.sh" sh -c 'xdpyinfo >/dev/null && exit 42' >"$here/output" 2>&1
        status=$?
        [ "$status" -eq 42 ] || complain "status $status instead of 42"
        ;;

    mutantsAreTried)
        # One bound of the little project is not tested, reading too much shows only to the address sanitizer, and what
        # becomes of parts of size 0 goes when the compiler optimises.
        "$source/scripts/mutate.sh" numbers --tree "$source/tests/project/mutation" --work "$here/work" \
            --then asan >"$here/output" 2>&1
        status=$?
        [ "$status" -eq 1 ] || complain "status $status instead of 1"
        expectLine '^SURVIVED numbers/numbers.cpp:22$'
        expectLine '^\+ return hour <= 12;$'
        expectLine '^NOT EQUIVALENT, though listed: numbers/numbers.cpp:[0-9]+ is caught by test_numbers Numbers.AreFound'
        expectLine '^numbers +37 +37 +0 +2 +30 +3 +2 +85.7 % +93.8 %$'
        expectLine '^2 survived that are not in equivalent-mutants.txt$'
        expectLine '^mutate: numbers/numbers.cpp: [0-9]+ of [0-9]+ mutants at once$'
        grep -q '^caught.asan: .*i <= amount' "$here/work/numbers/results.tsv" || complain "the sanitizer was not asked"
        grep -q '^same.*size == 1' "$here/work/numbers/results.tsv" || complain "more optimisation was not tried"
        grep -q '^caught.*isAfternoon' "$here/work/numbers/results.tsv" || complain "a header that tests alone use is lost"
        grep -q '^caught.*(time limit).*b = rest' "$here/work/numbers/results.tsv" || complain "what hangs is not caught"
        cmp -s "$here/work/numbers/tree/numbers/numbers.cpp" "$source/tests/project/mutation/numbers/numbers.cpp" ||
            complain "a mutant was left behind"
        ;;

    runsWithoutADisplay)
        # From another folder, with a name that needs care, twice.
        cd "$here" || exit 1
        printf 'hello\n' >'-a document.txt'
        rm -f "$source/build/countersign.png"
        for _ in 1 2; do
            env -u DISPLAY -u WAYLAND_DISPLAY "$source/run.sh" "$source/README.md" '-a document.txt' \
                >"$here/output" 2>&1 </dev/null || complain "status $?"
            expectLine '^countersign: there is no display: running the application on a virtual one$'
            expectLine "^countersign: a picture of the window is in .*/build/countersign.png\$"
        done
        # A window of its own stands out from the bare screen by its many colours.
        colours=$(identify -format '%k' "$source/build/countersign.png") || complain "the picture cannot be read"
        [ "$colours" -gt 50 ] || complain "the picture has $colours colours only"
        ;;

    *)
        complain "unknown case '$case'"
        ;;
esac
