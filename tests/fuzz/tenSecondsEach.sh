#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Gives every fuzzer its seeds and ten seconds, where there is a compiler for them.
#
#   tenSecondsEach.sh SOURCE-FOLDER
set -u
source=$1
probe=$(mktemp -d) || exit 1
trap 'rm -rf "$probe"' EXIT

if ! echo 'extern "C" int LLVMFuzzerTestOneInput(const unsigned char*, unsigned long) { return 0; }' |
    clang++ -fsanitize=fuzzer,address,undefined -x c++ - -o "$probe/fuzzer" 2>/dev/null; then
    echo "skipped: the fuzzers take clang with its runtime (packages clang and libclang-rt-dev)"
    exit 77
fi
"$source/scripts/fuzz.sh" all 10
