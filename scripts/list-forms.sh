#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Lists the forms of the arithmetic in bigdigits as tried or skipped, and how the skipped ones are tried elsewhere. A form
# that this processor lacks is tried emulated: all of it but its machine code.
# Prints nothing about a run that has tried none of them.
#
#   scripts/list-forms.sh LOG          LOG is ctest's, build/PRESET/Testing/Temporary/LastTest.log
set -u
exec awk '
function expect(name, elsewhere) { forms[++amount] = name; advice[name] = elsewhere }
function note(name, result) {
    isEmulated = sub(/: Emulated/, ": ", name)
    if (!(name in advice)) expect(name, there "instructions for it")
    if (isEmulated && result == "OK") emulated[name] = 1
    else if (result == "FAILED" || (result == "OK" && results[name] != "FAILED") || results[name] == "") results[name] = result
}
BEGIN {
    there = "run ./test.sh -L bigdigits on a processor with "
    expect("product and quotient: Rows")
    expect("product and quotient: Columns128Bits", "build for x86-64 or arm64")
    expect("product and quotient: Columns256Bits", there "AVX2 and BMI2")
    expect("product and quotient: Columns512Bits", there "AVX-512 (F, BW, DQ, VL) and BMI2")
    expect("product and quotient: PairsNeon", "run scripts/cross-test.sh aarch64")
    expect("product and quotient: LimbsNeon", "run scripts/cross-test.sh aarch64")
    expect("product and quotient: BothNeon", "run scripts/cross-test.sh aarch64")
    expect("product and quotient: ColumnsForThisProcessor", "build for x86-64 or arm64")
    expect("square: Rows")
    expect("square: Words", "build for a processor of 64 bits")
    expect("square: WordsWithBmi2", there "BMI2")
    expect("square: Limbs", there "AVX-512 (F, IFMA) and BMI2")
    expect("square: ForThisProcessor")
}
match($0, /^\[ +(OK|SKIPPED|FAILED) +\] (Columns|Squares)\/[A-Za-z0-9_]+\.[A-Za-z0-9_]+\/[A-Za-z0-9_]+/) {
    line = substr($0, RSTART, RLENGTH)
    result = line; sub(/ +\].*/, "", result); sub(/^\[ +/, "", result)
    form = line; sub(/.*\//, "", form)
    note((line ~ /Squares\// ? "square: " : "product and quotient: ") form, result)
    isTried = 1
}
/^Command: ".*otherBuilds\.sh"/ { isOther = 1; isTried = 1 }
/^<end of output>/ { isOther = 0 }
isOther && /^left out, / { sub(/^[^:]*: /, ""); others[++otherAmount] = "skipped  whole module: " $0 "; install its compiler and library" }
isOther && /^FAILED: / { sub(/^[^:]*: /, ""); others[++otherAmount] = "FAILED   whole module: " $0 }
isOther && /^[0-9a-f]+ / { sub(/^[0-9a-f]+ /, ""); others[++otherAmount] = "tried    whole module: " $0 }
END {
    if (!isTried) exit
    print "\nForms of the arithmetic:"
    for (i = 1; i <= amount; i++) {
        name = forms[i]
        if (results[name] == "OK") print "  tried    " name
        else if (results[name] == "FAILED") print "  FAILED   " name
        else print (name in emulated ? "  tried (emulated) " : "  skipped  ") name (advice[name] == "" ? "" : "; " advice[name])
    }
    for (i = 1; i <= otherAmount; i++) print "  " others[i]
    if (otherAmount == 0) print "  skipped  whole module by other compilers, options and word sizes; ./test.sh -R OtherBuilds"
    print ""
}' "$1"
