#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Tries the scripts that people start.
#
#   scripts.sh CASE SOURCE-FOLDER [BUILD-FOLDER]
#
# Each case is a test, but for mutantsAreTried: that takes minutes and is a step of scripts/release-check.sh.
set -u
case=$1 source=$(realpath -- "$2")

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

# A system of packages that lacks those given: a list of the missing, and stand-ins that read and change it. What stands
# in the file "impossible" can be installed only by removing others, what stands in "broken" fails.
packageSystem() {
    printf '%s\n' "$@" >"$here/missing"
    : >"$here/status"
    stand dpkg 'echo amd64'
    stand dpkg-query "for last; do :; done
        if grep -qxF -- \"\$last\" '$here/missing'; then echo not-installed; else echo installed; fi"
    stand id 'echo 0'
    stand apt-get "echo \"\$@\" >>'$here/apt'
        case \"\$*\" in *install*) ;; *) exit 0 ;; esac
        for argument; do
            grep -qxsF -- \"\$argument\" '$here/impossible' && exit 100
        done
        [ \"\$1\" != -s ] || exit 0
        for argument; do
            grep -qxsF -- \"\$argument\" '$here/broken' && exit 100
        done
        for argument; do
            grep -vxF -- \"\$argument\" '$here/missing' >'$here/rest'
            mv '$here/rest' '$here/missing'
        done"
    # A copy, because it keeps what it has found out beside the sources.
    mkdir -p "$here/copy"
    cp -r "$source/scripts" "$here/copy"
}

installDependencies() {
    PATH=$here/bin:$PATH COUNTERSIGN_DPKG_STATUS=$here/status \
        "$here/copy/scripts/install-dependencies.sh" "$1" </dev/null >"$here/output" 2>&1
}

# expectCalls [PATTERN...]: what apt-get was asked for, one call after the other.
expectCalls() {
    local call pattern
    exec 3<"$(if [ -e "$here/apt" ]; then echo "$here/apt"; else echo /dev/null; fi)"
    for pattern; do
        read -r call <&3 || complain "apt-get was not called with: $pattern"
        grep -qxE -- "$pattern" <<<"$call" || complain "apt-get was called with '$call', not with '$pattern'"
    done
    ! read -r call <&3 || complain "apt-get was also called with: $call"
    exec 3<&-
}

# A copy of what starts the tests, with stand-ins that write down how they were called, and a list of three programs.
testScript() {
    mkdir -p "$here/copy/build/release" "$here/copy/tests"
    cp "$source/test.sh" "$here/copy"
    cp -r "$source/scripts" "$here/copy"
    printf '#!/bin/sh\n' >"$here/copy/scripts/install-dependencies.sh"
    printf 'TEST(Apple, FallsDown)\nTEST_F(Apple, RollsOn)\n' >"$here/copy/tests/fruit.cpp"
    # A case with parameters, and one that another macro makes.
    printf 'TEST_P(Dwarf, Sings)\nINSTANTIATE_TEST_SUITE_P(Seven, Dwarf, testing::Values("Doc"))\n' \
        >"$here/copy/tests/people.cpp"
    printf '#define CASE(name) TEST(Wheel, name)\nCASE(Turns)\n' >"$here/copy/tests/things.cpp"
    cat >"$here/copy/build/release/test-targets-list.cmake" <<END
countersign_test_program(test_fruit [[garden.]] [[garden]] [[$here/copy/tests/fruit.cpp]])
countersign_test_program(test_people [[house.]] [[house;window]] [[$here/copy/tests/people.cpp]])
countersign_test_program(test_things [[house.]] [[house]] [[$here/copy/tests/things.cpp]])
countersign_command([[garden.gate]] [[garden;long]] [[gate;hinge]])
countersign_command([[project.all]] [[project;long]] [[all]])
countersign_command([[project.nothing]] [[project]] [[]])
END
    local cmake
    cmake=$(command -v cmake)
    stand cmake "case \"\$*\" in *'-P '*) exec '$cmake' \"\$@\" ;; esac
        echo cmake \"\$@\" >>'$here/called'"
    stand ctest "echo ctest \"\$@\" >>'$here/called'
        case \" \$* \" in *' -N '*) echo 'Total Tests: 0'; exit ;; esac
        echo ran; echo '80% tests passed, 1 tests failed out of 5'; echo the rest
        exit 8"
    stand nproc 'echo 3'
}

# runTestScript [ARGUMENT...]: its calls are in "built" and "tested" then.
runTestScript() {
    rm -f "$here/called"
    PATH=$here/bin:$PATH "$here/copy/test.sh" "$@" >"$here/output" 2>&1
    status=$?
    [ "$status" -eq 8 ] || complain "status $status instead of ctest's 8"
    built=$(sed -n 's/^cmake --build --preset release *//p' "$here/called")
    grep -q '^cmake --build' "$here/called" || built=nothing
    tested=$(grep -v -- ' -N ' "$here/called" | sed -n 's/^ctest --preset release *//p')
}

# expectRun BUILT TESTED [ARGUMENT...]
expectRun() {
    local expectedBuilt=$1 expectedTested=$2
    shift 2
    runTestScript "$@"
    [ "$built" = "$expectedBuilt" ] || complain "with '$*' it built '$built' and not '$expectedBuilt'"
    [ "$tested" = "$expectedTested" ] || complain "with '$*' it tested '$tested' and not '$expectedTested'"
}

case $case in
    testsOfBothTiersAreRun)
        testScript
        expectRun '' '-LE ^long$ -j 5'
        # ctest's summary is the last of it.
        [ "$(sed -n '/^ran$/,$p' "$here/output")" = $'ran\n80% tests passed, 1 tests failed out of 5\nthe rest\n'\
"countersign: FAILED (status 8) while: running the tests" ] || complain "the output is another"
        expectRun '' '-j 5' --all
        expectRun '' '-V -LE ^long$ -j 5' -V
        expectRun '' '-j 1 -LE ^long$' -j 1
        expectRun '' '-LE window|^long$ -j 5' -LE window
        expectRun '' '-LE window -j 5' --all -LE window
        # What is chosen may be a long one.
        expectRun '' '--rerun-failed -j 5' --rerun-failed
        expectRun '' '-I 3,4 -j 5' -I 3,4
        # Lines come as ctest prints them, also where no terminal takes them.
        stand ctest "case \" \$* \" in *' -N '*) echo 'Total Tests: 0'; exit ;; esac
            echo first; while [ ! -e '$here/seen' ]; do sleep 0.1; done"
        mkfifo "$here/lines"
        PATH=$here/bin:$PATH "$here/copy/test.sh" >"$here/lines" 2>&1 &
        exec 3<"$here/lines"
        line=
        while [ "$line" != first ] && read -r -t 60 line <&3; do :; done
        : >"$here/seen"
        [ "$line" = first ] || complain "a line is held back"
        cat <&3 >/dev/null
        exec 3<&-
        wait
        ;;

    testsThatAreChosenAreBuilt)
        testScript
        expectRun '--target test_fruit' '-R Apple.Falls -j 5' -R Apple.Falls
        expectRun '--target test_fruit' '-R Apple -LE window -j 5' -R Apple -LE window
        expectRun '--target gate --target hinge --target test_fruit' '-R ^garden -j 5' -R ^garden
        expectRun '--target test_people' '-R Seven/Dwarf.Sings/Doc$ -j 5' -R 'Seven/Dwarf.Sings/Doc$'
        # Names with parameters and names that macros make are made of words of the source, as far as can be seen.
        expectRun '--target test_things' '-R Turns -j 5' -R Turns
        expectRun '--target test_people --target test_things' '-R ^house[.] -j 5' -R '^house[.]'
        expectRun '--target test_fruit --target test_people --target test_things' '-R Apple|(D|x)w -j 5' -R 'Apple|(D|x)w'
        expectRun '--target test_people --target test_things' '-L house -j 5' -L house
        expectRun '--target test_people' '-L house -L window -j 5' -L house -L window
        expectRun '--target test_fruit' '-L garden -R Rolls -j 5' -L garden -R Rolls
        expectRun '' '-L long -j 5' -L long
        expectRun nothing '-R nothing -j 5' -R nothing
        # What none has that is known may be there all the same.
        expectRun '' '-R Pear -j 5' -R Pear
        ;;

    testsAreKnown)
        # Whatever ctest has found in the built programs is found in their sources, too.
        build=$3
        # From a folder of its own: a ctest in the build's would begin the log anew that the running one writes there.
        mkdir "$here/tests"
        printf 'subdirs([[%s]])\n' "$build" >"$here/tests/CTestTestfile.cmake"
        logs=$build/Testing/Temporary
        before=$(cat "$logs"/LastTest.log* 2>/dev/null | wc -c)
        ctest --test-dir "$here/tests" -N | grep -v ' (Disabled)$' | sed -n 's/^ *Test *#[0-9]*: //p' >"$here/names"
        cmake -DLIST="$build/test-targets-list.cmake" -DKNOWN=ON -P "$source/scripts/test-targets.cmake" >"$here/known"
        grep -F '*' "$here/known" | sed 's/[.]/\\./g; s/[*]/.*/g; s/^/^/' >"$here/patterns"
        unknown=$(grep -vxFf "$here/known" "$here/names" | grep -vEf "$here/patterns")
        [ -z "$unknown" ] || complain "not known: $unknown"
        [ "$(wc -l <"$here/names")" -gt 100 ] || complain "ctest has found $(wc -l <"$here/names") tests"
        [ "$(cat "$logs"/LastTest.log* 2>/dev/null | wc -c)" -ge "$before" ] || complain "the log of the running tests is lost"
        ;;

    formsAreListed)
        {
            echo '[       OK ] Columns/EachForm.Multiplies/Rows (3 ms)'
            echo '[  SKIPPED ] Columns/EachForm.Multiplies/Columns512Bits (0 ms)'
            echo '[       OK ] Squares/EachSquare.Agrees/Words (3 ms)'
            echo '[  FAILED  ] Squares/EachSquare.AgreesAround/Words (3 ms)'
            echo '[       OK ] Squares/EachSquare.AgreesAround/Spirals (3 ms)'
            echo '[  SKIPPED ] Squares/EachSquare.AgreesAround/Circles (0 ms)'
            echo '[       OK ] Squares/EachSquare.AgreesAround/EmulatedLimbs (3 ms)'
            echo '[       OK ] Columns/EachForm.Multiplies/EmulatedColumns256Bits (3 ms)'
            echo '[  FAILED  ] Columns/EachForm.Divides/EmulatedColumns256Bits (3 ms)'
            echo '[       OK ] Squares/EachSquare.AgreesAround/WordsWithBmi2 (3 ms)'
            echo '[       OK ] Squares/EachSquare.AgreesAround/EmulatedWordsWithBmi2 (3 ms)'
        } >"$here/log"
        "$source/scripts/list-forms.sh" "$here/log" >"$here/output"
        expectLine '^  tried    product and quotient: Rows$'
        expectLine '^  skipped  product and quotient: Columns512Bits; run .* with AVX-512'
        expectLine '^  tried .emulated. square: Limbs; run .* with AVX-512'
        expectLine '^  FAILED   product and quotient: Columns256Bits$'
        expectLine '^  tried    square: WordsWithBmi2$'
        expectLine '^  FAILED   square: Words$'
        expectLine '^  tried    square: Spirals$'
        expectLine '^  skipped  square: Circles; run .* on a processor'
        expectLine '^  skipped  whole module by other compilers.*-R OtherBuilds$'
        printf '%s\n' 'Command: "/somewhere/otherBuilds.sh" "a"' '0123abcd 32 bits' \
            'left out, it is not installed here: clang' 'FAILED: differs: pdp' >>"$here/log"
        "$source/scripts/list-forms.sh" "$here/log" >"$here/output"
        expectLine '^  tried    whole module: 32 bits$'
        expectLine '^  skipped  whole module: clang; install its'
        expectLine '^  FAILED   whole module: differs: pdp$'
        ! grep -q 'R OtherBuilds' "$here/output" || complain "they were run"
        echo 'Test Passed.' >"$here/log"
        [ -z "$("$source/scripts/list-forms.sh" "$here/log")" ] || complain "none was tried, and some are listed"
        ;;

    displaysAreShared)
        # One display for two, of which neither knows, and another for one that comes in between.
        "$source/scripts/with-displays.sh" 1 bash -c '
            until [ -e "$COUNTERSIGN_DISPLAYS/1" ]; do sleep 0.1; done
            shared=:$(cat "$COUNTERSIGN_DISPLAYS/1")
            "$1" sh -c "echo \$DISPLAY; xdotool mousemove 1 2; xdotool keydown shift"
            "$1" sh -c "echo \$DISPLAY; xdotool getmouselocation; \"$1\" sh -c \"echo \\\$DISPLAY\""
            "$1" sh -c "exit 42" || echo "status $?"
            echo "$shared"' - "$source/scripts/with-display.sh" >"$here/output" 2>&1 || complain "status $?"
        mapfile -t lines <"$here/output"
        shared=${lines[5]-}
        [ "${lines[0]} ${lines[1]}" = "$shared $shared" ] || complain "the display is not shared"
        [ "${lines[2]% screen*}" = 'x:640 y:450' ] || complain "the mouse is where it was left"
        [ "${lines[3]}" != "$shared" ] || complain "two have the same display at the same time"
        [ "${lines[4]}" = 'status 42' ] || complain "the status is lost"
        "$source/scripts/with-displays.sh" 1 sh -c 'exit 42'
        [ "$?" -eq 42 ] || complain "the status of the command is lost"
        ;;

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
        packageSystem gdb xvfb
        installDependencies test || complain "it failed"
        expectCalls 'update' '-y --no-remove .* install xvfb gdb'
        expectLine '^countersign: installing missing packages: xvfb gdb$'
        ;;

    installsNothingWhenAllIsThere)
        packageSystem
        installDependencies release || complain "it failed"
        expectCalls
        [ ! -s "$here/output" ] || complain "it talked"
        ;;

    leavesOutWhatRemovesOthers)
        packageSystem gdb clang mandoc shellcheck
        printf 'mandoc\n' >"$here/impossible"
        installDependencies develop || complain "it failed"
        expectCalls update '-y --no-remove .* install gdb' '-s -y --no-remove .* install clang' \
            '-s -y --no-remove .* install clang shellcheck' '-s -y --no-remove .* install clang shellcheck mandoc' \
            '-y --no-remove .* install clang shellcheck'
        expectLine '^countersign: skipped, not available here without removing other packages: mandoc$'
        # It is not asked for again before something changes.
        rm "$here/apt"
        installDependencies develop || complain "it failed the second time"
        expectCalls
        [ ! -s "$here/output" ] || complain "it talked the second time"
        rm "$here/impossible"
        touch -d '+1 minute' "$here/status"
        installDependencies develop || complain "it failed the third time"
        expectCalls update '-s -y --no-remove .* install mandoc' '-y --no-remove .* install mandoc'
        ;;

    goesOnWhenAnOptionalPackageFails)
        packageSystem clang mandoc shellcheck
        printf 'clang\n' >"$here/broken"
        installDependencies develop || complain "it failed"
        grep -qx shellcheck "$here/missing" && complain "shellcheck was not installed"
        expectLine '^countersign: skipped, not available here without removing other packages: clang$'
        # One that is needed does not go without saying.
        packageSystem gdb
        printf 'gdb\n' >"$here/broken"
        ! installDependencies develop || complain "it did not fail"
        expectLine '^countersign: FAILED \(status 100\) while: installing missing packages: gdb$'
        ;;

    goesOnWithoutOptionalPackages)
        packageSystem clang
        stand id 'echo 1000'
        stand sudo 'exit 1'
        installDependencies test || complain "it failed"
        expectCalls
        expectLine '^countersign: skipped, as it takes root or sudo to install them: clang$'
        ;;

    saysWhenItMayNotInstall)
        packageSystem clang libwxgtk3.2-dev
        stand id 'echo 1000'
        stand sudo 'exit 1'
        ! installDependencies run || complain "it did not fail"
        expectCalls
        expectLine 'these packages are missing: libwxgtk3.2-dev$'
        expectLine 'FAILED: installing packages: it takes root or sudo'
        ;;

    lintLooksAtWhatHasChanged)
        for tool in clang-format clang-tidy clang++ shellcheck mandoc desktop-file-validate appstreamcli; do
            if ! command -v "$tool" >/dev/null 2>&1; then
                echo "skipped: $tool is not installed"
                exit 77
            fi
        done
        if ! clang-format --version | grep -q 'version 14\.'; then
            echo "skipped: what is to be found is another version's than that of clang-format and clang-tidy here"
            exit 77
        fi
        # A project of two sources, of which one is touched after the last commit.
        packageSystem
        # Shell scripts take longest, and two are enough.
        find "$here/copy/scripts" -type f ! -name lint.sh ! -name lib.sh ! -name install-dependencies.sh -delete
        cp "$source/CMakePresets.json" "$source/.clang-format" "$source/.clang-tidy" "$source/.shellcheckrc" "$here/copy"
        cd "$here/copy" || exit 1
        printf '%s\n' 'cmake_minimum_required(VERSION 3.25)' 'project(little LANGUAGES CXX)' \
            'set(CMAKE_EXPORT_COMPILE_COMMANDS ON)' 'add_library(little old.cpp new.cpp)' >CMakeLists.txt
        printf '%s\n' '#include "new.h"' '' 'int* noOldNumber()' '{' '    return 0;' '}' >old.cpp
        printf '%s\n' '#include "new.h"' '' 'int* noNewNumber()' '{' '    return nullptr;' '}' >new.cpp
        printf '%s\n' '#pragma once' '' 'int* noNewNumber();' >new.h
        printf '%s\n' '/build/' >.gitignore
        printf '%s\n' '#!/bin/sh' 'echo hello' >greet
        printf '%s\n' '.TH LITTLE 1 2026-01-01 "Little @VERSION@"' '.SH NAME' 'little \- does little' >little.1.in
        git init -q -b main . && git add . && git -c user.name=n -c user.email=e@invalid commit -q -m first ||
            complain "no repository can be made"
        lint() {
            PATH=$here/bin:$PATH COUNTERSIGN_DPKG_STATUS=$here/status \
                "$here/copy/scripts/lint.sh" "$@" </dev/null >"$here/output" 2>&1
        }
        lint || complain "it found something where nothing is wrong"
        expectLine '^countersign: scripts \(shellcheck\): [0-9]+ files$'
        expectLine '^countersign: nothing to mend$'
        printf '%s\n' '' 'int* newest();' >>new.h
        lint || complain "it found something that has not changed"
        expectLine '^countersign: clang-tidy: 1 files$'
        ! lint --all || complain "it did not find what is old"
        expectLine 'old.cpp:5:12: error: use nullptr'
        expectLine '^countersign: FAILED: clang-tidy$'
        # One mistake for each tool.
        printf '%s\n' '' 'int*  noNewestNumber(){' '    return 0;' '}' >>new.cpp
        printf '%s\n' 'rm $1' >>greet
        printf '%s\n' '.BX wrong' >>little.1.in
        printf '%s\n' '[Desktop Entry]' 'Name=little' >little.desktop
        printf '%s\n' '<component><name>little</name></component>' >little.metainfo.xml
        ! lint || complain "it found nothing"
        expectLine 'new.cpp:9:12: error: use nullptr'
        expectLine 'SC2086'
        expectLine '^little.1.in:4:2: '
        expectLine 'FAILED: formatting .*; scripts .*; manual pages .*; desktop entries .*; metainfo .*; clang-tidy$'
        # Of a file that is given, nothing else is looked at, and nothing is built for a script.
        rm -r build
        ! lint greet || complain "it found nothing in one file"
        expectLine '^countersign: FAILED: scripts \(shellcheck\)$'
        [ ! -e build/lint ] || complain "it configured for a script"
        ;;

    releaseCheckKeepsWhatItFound)
        # A project whose steps are stand-ins.
        copy=$here/copy
        mkdir -p "$copy/scripts" "$copy/docs"
        cp "$source/scripts/release-check.sh" "$source/scripts/lib.sh" "$copy/scripts"
        cp "$source/docs/release-check.md" "$copy/docs"
        sed -i '/<!-- results -->/,/<!-- end of results -->/{//!d}' "$copy/docs/release-check.md"
        for script in lint otherBuilds; do
            printf '%s\n' '#!/bin/sh' "echo \"$script \$*\" >>'$here/calls'" 'echo "nothing | to mend"' \
                '[ "$1" != lto ] || echo "lto: SKIPPED, there is none"' "[ ! -e '$here/broken' ]" >"$copy/scripts/$script.sh"
        done
        chmod +x "$copy"/scripts/*.sh
        printf '/build/\n' >"$copy/.gitignore"
        commitAll() {
            git -C "$copy" add . && git -C "$copy" -c user.name=n -c user.email=e@invalid commit -q -m "$1"
        }
        git init -q -b main "$copy" && commitAll first || complain "no repository can be made"
        commit=$(git -C "$copy" rev-parse --short HEAD)
        releaseCheck() {
            "$copy/scripts/release-check.sh" "$@" </dev/null >"$here/output" 2>&1
        }
        # expectRow PATTERN: the page has such a line.
        expectRow() {
            grep -qxE -- "$1" "$copy/docs/release-check.md" || complain "no row '$1' in: $(cat "$copy/docs/release-check.md")"
        }
        day=$(date +%F)
        releaseCheck --table || complain "the table failed"
        expectRow "\\| .lint. \\| not run \\| \\| \\| \\| \\|"
        [ ! -e "$here/calls" ] || complain "it ran something for the table"
        releaseCheck lint builds.lto || complain "it failed"
        expectRow "\\| .lint. \\| passed \\| $commit \\| ($day|$(date +%F)) \\| [0-9]+\\.[0-9] \\| nothing  to mend \\|"
        expectRow "\\| .builds.lto. \\| skipped \\| $commit \\| .* \\| lto: SKIPPED, there is none \\|"
        expectRow "\\| .soak. \\| not run \\| \\| \\| \\| \\|"
        grep -q '^# Release check$' "$copy/docs/release-check.md" || complain "the page has lost its words"
        # What has passed is not done again, also when the page has been committed.
        commitAll "the page" || complain "nothing was written"
        releaseCheck lint || complain "it failed the second time"
        [ "$(grep -c '^lint' "$here/calls")" -eq 1 ] || complain "what had passed was done again"
        releaseCheck --again lint || complain "it failed the third time"
        [ "$(grep -c '^lint --all$' "$here/calls")" -eq 2 ] || complain "--again did nothing"
        # A failure is written too, the others stay, and it is tried again.
        touch "$here/broken"
        ! releaseCheck --again lint builds.clang || complain "it did not fail"
        expectLine '^countersign: FAILED: these steps: lint builds.clang$'
        expectRow "\\| .lint. \\| FAILED \\| $commit \\| .*"
        expectRow "\\| .builds.lto. \\| skipped \\| $commit \\| .*"
        rm "$here/broken"
        releaseCheck lint || complain "it did not pass when it was mended"
        # Another commit is another matter.
        printf 'x\n' >"$copy/file" && commitAll second || complain "nothing to commit"
        releaseCheck lint || complain "it failed for the other commit"
        expectRow "\\| .lint. \\| passed \\| $(git -C "$copy" rev-parse --short HEAD) \\| .*"
        ;;

    displayGivesTheStatusOfTheCommand)
        "$source/scripts/with-display.sh" sh -c 'xdpyinfo >/dev/null && exit 42' >"$here/output" 2>&1
        status=$?
        [ "$status" -eq 42 ] || complain "status $status instead of 42"
        ;;

    mutantsAreTried)
        if ! /usr/bin/python3 -c 'import clang.cindex' 2>/dev/null; then
            echo "skipped: the mutants' tool takes the package python3-clang"
            exit 77
        fi
        # In the little project, nobody asks for an enumerator, an argument and a call; a leak shows only to the address
        # sanitizer.
        "$source/scripts/mutate.sh" numbers --tree "$source/tests/project/mutation" --work "$here/work" \
            --then asan >"$here/output" 2>&1
        status=$?
        [ "$status" -eq 1 ] || complain "status $status instead of 1"
        [ "$(grep -A 2 '^SURVIVED' "$here/output" | grep -v '^--$')" = 'SURVIVED numbers/numbers.cpp:17
@ numbers.cpp firstSeason
  return Season::«Winter→Summer»;
SURVIVED numbers/numbers.cpp:33
@ numbers.cpp differenceOf
  return difference(a«, b→»);
SURVIVED numbers/numbers.cpp:55
@ numbers.cpp addUnseen
  «add(number)→»;' ] || complain "others survived"
        expectLine '^NOT EQUIVALENT, though listed: numbers/numbers.cpp:49$'
        expectLine '^NO MUTANT ANY MORE, though listed:$'
        expectLine '^  number [+]= «2→3»;$'
        expectLine '^numbers +30 +30 +0 +2 +24 +1 +3 '
        results=$here/work/numbers/results.tsv
        # What became of the others: some of each kind, in the source, in a header that tests alone use, and in a loop.
        while read -r state change; do
            grep -E "^$state"$'\t' "$results" | grep -qF -- "$change" || complain "not $state: $change"
        done <<'END'
caught return hour «<→<=» 12;
caught return hour < «12→11»;
caught return «difference(a, b) != 0→{}»;
caught return Season::«Summer→Winter»;
caught return difference(«a, b→b, a»);
caught «add(number)→»; #1
caught return «true→false»;
same return «Season::Winter→{}»;
equivalent return difference(«a, b→b, a») != 0;
END
        grep -q '^caught.asan: .*delete pNumber' "$results" || complain "the sanitizer was not asked"
        grep -q '^caught.*(time limit).*break' "$results" || complain "what hangs is not caught"
        cmp -s "$here/work/numbers/tree/numbers/numbers.cpp" "$source/tests/project/mutation/numbers/numbers.cpp" ||
            complain "a mutant was left behind"
        ;;

    mutantsAreListed)
        # Each entry of the list of equivalents has its line; one that has lost it is found.
        lostEntries() {
            PYTHONPATH=$source/scripts python3 -B -m mutants.equivalents "$1" >"$here/output" 2>&1
        }
        lostEntries "$source" || complain "entries of tests/equivalent-mutants.txt have lost their line"
        ! lostEntries "$source/tests/project/mutation" || complain "the lost entry is not found"
        [ "$(cat "$here/output")" = '@ numbers.cpp addTwice
  number += «2→3»;' ] || complain "other entries are found"
        ;;

    promisesFit)
        # Each patch of tests/promises still breaks its source; one that has lost its place is found.
        "$source/scripts/try-promises.sh" --fit >"$here/output" 2>&1 || complain "a patch does not fit"
        expectLine '^[0-9]+ patches, 0 do not fit$'
        mkdir -p "$here/copy/tests/promises"
        cp -r "$source/scripts" "$source/crypto" "$here/copy"
        cp -r "$source/tests/promises/crypto" "$here/copy/tests/promises"
        sed -i 's/_amountOfProductBits = productBits;/_amountOfProductBits = (productBits);/' \
            "$here/copy/crypto/crRSAEncryptionKey.cpp"
        ! "$here/copy/scripts/try-promises.sh" --fit >"$here/output" 2>&1 || complain "the lost place is not found"
        expectLine '^DOES NOT FIT +crypto/bitCountsAreRounded\.patch$'
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

        # README's worked example, with the programs where the line to paste finds them.
        line=$(grep '^export PATH=' "$here/output") || complain "there is no line to paste"
        awk '/^## /{ here = /^## A worked example$/ } here && /^```/ { if (inside) exit; inside = 1; next } inside' \
            "$source/README.md" >"$here/example"
        {
            printf '%s\nexec 2>&1\n' "$line"
            grep '^\$ ' "$here/example" | while IFS= read -r command; do
                printf "status=\$?; cat <<'THE_COMMAND'\n%s\nTHE_COMMAND\n(exit \$status)\n%s\n" \
                    "$command" "${command#\$ }"
            done
        } >"$here/commands"
        env PATH=/usr/local/bin:/usr/bin:/bin bash "$here/commands" >"$here/output"
        [ -s "$here/example" ] || complain "there is no worked example"
        cmp "$here/example" "$here/output" || complain "the worked example does something else"
        ;;

    *)
        complain "unknown case '$case'"
        ;;
esac
