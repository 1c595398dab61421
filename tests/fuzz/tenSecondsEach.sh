#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Gives every fuzzer its seeds and ten seconds, where there is a compiler for them.
#
#   tenSecondsEach.sh SOURCE-FOLDER
set -u
source=$1
if [ -z "$(. "$source/scripts/lib.sh" && fuzzingCompiler)" ]; then
    echo "skipped: the fuzzers take clang with its runtime (packages clang and libclang-rt-dev)"
    exit 77
fi
"$source/scripts/fuzz.sh" all 10
