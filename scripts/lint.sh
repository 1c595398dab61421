#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Looks for mistakes without running anything: formatting (clang-format), clang-tidy, scripts (shellcheck), manual pages
# (mandoc), the desktop entry and the metainfo (the desktop's own validators).
#
#   scripts/lint.sh FILE...          these files
#   scripts/lint.sh [--base COMMIT]  every file; clang-tidy, which takes long, for what has changed since COMMIT only
#   scripts/lint.sh --all            every file, with clang-tidy
#
# Without --base, COMMIT is where the branch has left main; on main it is the last commit's parent. For clang-tidy the
# project is configured in build/lint, with clang, and only generated headers are built. A header is looked at together
# with a source that includes it. A tool that is not installed is named and left out, and so are clang-format and clang-tidy
# of another version than Debian 12's, which find other things.
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

all=
base=
given=()
while [ "$#" -gt 0 ]; do
    case $1 in
        --all) all=yes ;;
        --base)
            [ "$#" -gt 1 ] || fail "--base takes a commit"
            base=$2
            shift
            ;;
        -*) fail "unknown option '$1'; scripts/lint.sh [--all | --base COMMIT | FILE...]" ;;
        *)
            [ -f "$1" ] || fail "there is no file '$1'"
            given+=("$(realpath --relative-to="$root" -- "$1")")
            ;;
    esac
    shift
done

"$root/scripts/install-dependencies.sh" develop || exit
cd "$root" || fail "entering $root"

# The commit that changes are counted from.
findBase() {
    local main
    if [ -n "$base" ]; then
        git rev-parse --verify --quiet "$base^{commit}" || fail "there is no commit '$base'"
        return
    fi
    for main in origin/main main; do
        git rev-parse --verify --quiet "$main" >/dev/null || continue
        base=$(git merge-base HEAD "$main") || continue
        if [ "$base" != "$(git rev-parse HEAD)" ]; then
            echo "$base"
            return
        fi
    done
    git rev-parse --verify --quiet HEAD~ || git rev-parse HEAD
}

if [ "${#given[@]}" -gt 0 ]; then
    files=("${given[@]}")
    changed=("${given[@]}")
else
    mapfile -t files < <(git ls-files --cached --others --exclude-standard --deduplicate |
        while read -r file; do [ ! -f "$file" ] || echo "$file"; done)
    if [ -n "$all" ]; then
        changed=("${files[@]}")
    else
        commit=$(findBase) || exit
        mapfile -t changed < <({ git diff --name-only "$commit" && git ls-files --others --exclude-standard; } | sort -u |
            while read -r file; do [ ! -f "$file" ] || echo "$file"; done)
    fi
fi

failures=()
# check PACKAGE NAME PROGRAM [ARGUMENT...] -- FILE...: runs a tool over files, if there are any.
check() {
    local package=$1 name=$2 command=()
    shift 2
    while [ "$1" != -- ]; do
        command+=("$1")
        shift
    done
    shift
    [ "$#" -gt 0 ] || return 0
    if ! command -v "${command[0]}" >/dev/null 2>&1; then
        say "left out: $name (package $package)"
        return 0
    fi
    say "$name: $# files"
    "${command[@]}" "$@" || failures+=("$name")
}

sources=()
scripts=()
zshScripts=()
fishScripts=()
manualPages=()
entries=()
metainfo=()
for file in "${files[@]}"; do
    case $file in
        *.cpp | *.h | *.c) sources+=("$file") ;;
        *.[1-9] | *.[1-9].in) manualPages+=("$file") ;;
        # File managers' actions have the ending, too.
        *.desktop) grep -qE '^Type=(Action|Service)$' "$file" || entries+=("$file") ;;
        *.metainfo.xml) metainfo+=("$file") ;;
        *.zsh | */completion/_*) zshScripts+=("$file") ;;
        *.fish) fishScripts+=("$file") ;;
        *.sh | */completion/*) scripts+=("$file") ;;
        *) [[ $(head -c 64 "$file" | head -n 1 | tr -d '\0') =~ ^#!.*[/\ ](ba|da)?sh ]] && scripts+=("$file") ;;
    esac
done

# mandoc wants a version where the build fills one in.
lintManualPages() {
    local page status=0
    for page; do
        sed 's/@[A-Z_]*@/1.0.0/g' "$page" | mandoc -T lint -W style | sed "s|^mandoc: <stdin>|$page|"
        [ "${PIPESTATUS[1]}" -eq 0 ] || status=1
    done
    return "$status"
}

# What these two find differs from one version to the next.
llvmVersion=14
# llvmTool NAME: sets "tool" to the program of that version, or to nothing.
llvmTool() {
    tool=
    if command -v "$1-$llvmVersion" >/dev/null 2>&1; then
        tool=$1-$llvmVersion
    elif ! command -v "$1" >/dev/null 2>&1; then
        say "left out: $1 (package $1)"
    elif "$1" --version | grep -qE "version $llvmVersion\."; then
        tool=$1
    else
        say "left out: $1, as this one is not version $llvmVersion"
    fi
}
llvmTool clang-format
format=$tool
llvmTool clang-tidy
tidy=$tool
[ -z "$format" ] || check clang-format "formatting (clang-format -i mends it)" "$format" --dry-run -Werror -- "${sources[@]}"
# The formatter does not wrap comments.
lintWidth() {
    ! LC_ALL=C.UTF-8 grep -nHE '^.{121,}' -- "$@"
}
check grep "lines of at most 120 characters" lintWidth -- "${sources[@]}"
check shellcheck "scripts (shellcheck)" shellcheck -- "${scripts[@]}"
# Each by itself: zsh takes further names for arguments.
lintZsh() {
    local script status=0
    for script; do
        zsh -n "$script" || status=1
    done
    return "$status"
}
if command -v zsh >/dev/null 2>&1; then
    check zsh "scripts of zsh (zsh -n)" lintZsh -- "${zshScripts[@]}"
else
    say "left out: scripts of zsh (package zsh)"
fi
check fish "scripts of fish (fish --no-execute)" fish --no-execute -- "${fishScripts[@]}"
if command -v mandoc >/dev/null 2>&1; then
    check mandoc "manual pages (mandoc)" lintManualPages -- "${manualPages[@]}"
else
    say "left out: manual pages (package mandoc)"
fi
check desktop-file-utils "desktop entries (desktop-file-validate)" desktop-file-validate -- "${entries[@]}"
check appstream "metainfo (appstreamcli)" appstreamcli validate --no-net -- "${metainfo[@]}"

# What clang-tidy looks at: sources, and for a header the source of its name or another one that includes it.
tidied=()
for file in "${changed[@]}"; do
    case $file in
        *.cpp) tidied+=("$file") ;;
        *.h)
            name=$(basename "$file")
            including=$(git grep -lE "#include \"(.*/)?${name//./\\.}\"" -- '*.cpp')
            same=$(grep -E "(^|/)${name%.h}(Test)?\.cpp$" <<<"$including" | head -n 1)
            tidied+=("${same:-$(head -n 1 <<<"$including")}")
            ;;
    esac
done
mapfile -t tidied < <(printf '%s\n' "${tidied[@]}" | sed '/^$/d' | sort -u)

runClangTidy() {
    local build=build/lint headers known=() unknown=() file arguments
    arguments=(-DCOUNTERSIGN_BUILD_TESTS=ON -DCOUNTERSIGN_BUILD_FUZZERS=ON
        -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++)
    if pkg-config --exists benchmark libtommath x11; then
        arguments+=(-DCOUNTERSIGN_BUILD_BENCHMARKS=ON)
    fi
    step "configuring ($build)" cmake --preset release -B "$build" "${arguments[@]}"
    for file; do
        if grep -qF -- "\"file\": \"$root/$file\"" "$build/compile_commands.json"; then
            known+=("$file")
        else
            unknown+=("$file")
        fi
    done
    [ "${#unknown[@]}" -eq 0 ] || say "no build compiles these, so clang-tidy leaves them out: ${unknown[*]}"
    [ "${#known[@]}" -gt 0 ] || return 0
    mapfile -t headers < <(ninja -C "$build" -t targets all | sed -n 's/^\([^/].*\.h\): CUSTOM_COMMAND$/\1/p')
    [ "${#headers[@]}" -eq 0 ] || step "building generated headers ($build)" ninja -C "$build" "${headers[@]}"
    printf '%s\0' "${known[@]}" | xargs -0 -P "$(nproc)" -n 1 "$tidy" --quiet -p "$build" 2>"$build/tidy.log"
}
if [ -n "$tidy" ] && ! command -v clang++ >/dev/null 2>&1; then
    say "left out: clang-tidy (package clang)"
elif [ -n "$tidy" ] && [ "${#tidied[@]}" -gt 0 ]; then
    say "clang-tidy: ${#tidied[@]} files"
    runClangTidy "${tidied[@]}" || failures+=("clang-tidy")
fi

[ "${#failures[@]}" -eq 0 ] || fail "$(printf '%s; ' "${failures[@]}" | sed 's/; $//')"
say "nothing to mend"
