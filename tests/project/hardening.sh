#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Looks at built files for what makes errors in memory harder to use.
#
#   hardening.sh "FLAG..." COMPILE-COMMANDS FILE...
#
# The flags are those that this compiler and linker have; what they are for is looked for in the files: programs, shared
# libraries and archives.
set -u
export LC_ALL=C
flags=$1 commands=$2
shift 2

failures=0
complain() {
    printf '%s\n' "$*" >&2
    failures=$((failures + 1))
}
has() {
    case " $flags " in
        *" $1"*) return 0 ;;
    esac
    return 1
}
# expect FILE WHAT PATTERN TEXT: some line of the text matches.
expect() {
    grep -qE -- "$3" <<<"$4" || complain "$1: $2"
}
# refuse FILE WHAT PATTERN TEXT: no line does.
refuse() {
    local found
    found=$(grep -E -m 3 -- "$3" <<<"$4") && complain "$1: $2: $found"
}

# What the loader gets.
lookAtLoaded() {
    local file=$1 name header segments dynamic symbols
    name=$(basename "$file")
    header=$(readelf -hW "$file") || complain "$name cannot be read"
    segments=$(readelf -lW "$file")
    dynamic=$(readelf -dW "$file")
    symbols=$(nm -D --undefined-only "$file")

    expect "$name" "has a fixed address" '^ *Type: +DYN ' "$header"
    if grep -q 'INTERP' <<<"$segments"; then
        expect "$name" "is no position-independent program" 'FLAGS_1.*PIE' "$dynamic"
    fi
    refuse "$name" "has code that the loader writes to" 'TEXTREL' "$dynamic"
    refuse "$name" "has memory that is both written to and run" '^ *(LOAD|GNU_STACK) .* RWE ' "$segments"
    expect "$name" "does not say that its stack holds no code" '^ *GNU_STACK .* RW ' "$segments"
    # A folder of this machine could be anybody's on another one.
    refuse "$name" "looks for libraries elsewhere than relative to itself" '(\[|:)([^$]|$)|:]' \
        "$(sed -n -E 's/^.*\((RPATH|RUNPATH)\).*(\[.*\])$/\2/p' <<<"$dynamic")"
    has -Wl,-z,relro && expect "$name" "keeps the loader's tables writable" '^ *GNU_RELRO ' "$segments"
    has -Wl,-z,now && expect "$name" "has functions looked up while it runs" 'BIND_NOW|FLAGS_1.*NOW' "$dynamic"
    if has -Wl,-z,separate-code; then
        # The first segment holds the file's headers, which are data.
        refuse "$name" "has data among its code" ' R E ' "$(grep -m 1 -E '^ *LOAD ' <<<"$segments")"
    fi
    has -fstack-protector && expect "$name" "does not check its stack frames" ' __stack_chk_fail' "$symbols"
    return 0
}

# What a program of somebody else is linked with.
lookAtArchive() {
    local file=$1 name symbols stacks
    name=$(basename "$file")
    symbols=$(nm --undefined-only "$file") || complain "$name cannot be read"
    has -fstack-protector && expect "$name" "does not check its stack frames" ' __stack_chk_fail' "$symbols"
    stacks=$(readelf -SW "$file" | grep -F .note.GNU-stack)
    [ "$(wc -l <<<"$stacks")" -eq "$(ar t "$file" | wc -l)" ] ||
        complain "$name: not every object says that it needs no code on the stack"
    refuse "$name" "wants code on the stack" ' [0-9a-f]{2} +[A-Z]*X' "$stacks"
    # What is linked of the C library's own may lack the marks, and so may a whole program then.
    if has -fcf-protection; then
        [ "$(readelf -nW "$file" | grep -c 'IBT, SHSTK')" -eq "$(ar t "$file" | wc -l)" ] ||
            complain "$name: not every object marks where jumps and returns may go"
    fi
    return 0
}

checked=
for file in "$@"; do
    case $file in
        *.a) lookAtArchive "$file" ;;
        *) lookAtLoaded "$file" ;;
    esac
    checked+=$(nm --undefined-only "$file"; nm -D --undefined-only "$file" 2>/dev/null)
done
if has -D_FORTIFY_SOURCE; then
    # Which calls can be checked is up to the compiler, so not every file has one; memory, texts and paths do.
    calls='memcpy vsnprintf'
    # clang does not check this one in what is built here.
    readelf -p .comment "$1" | grep -q clang || calls+=' realpath'
    for call in $calls; do
        grep -qE " __${call}_chk" <<<"$checked" || complain "no file calls the checked form of $call"
    done
fi

# Whatever a file's code needs of it: everything is compiled with all of it.
wanted=$(tr ' ' '\n' <<<"$flags" | grep -E '^-(f|m|D)')
while read -r flag; do
    without=$(grep '"command"' "$commands" | grep -vF -- " $flag " | grep -v -- ' -O0 ' | head -n 3)
    [ -z "$without" ] || complain "compiled without $flag: $without"
done <<<"$wanted"
[ -n "$wanted" ] || complain "no flags were given"
exit "$((failures > 0))"
