#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Gives every fuzzer its seeds and five seconds, where there is a compiler for them.
#
#   fiveSecondsEach.sh SOURCE-FOLDER
#
# The random choices are the same each time, so that a change that passed does not fail by chance. scripts/fuzz.sh by
# itself makes others, and the release check does so for ten minutes.
set -u
source=$1
if [ -z "$(. "$source/scripts/lib.sh" && fuzzingCompiler)" ]; then
    echo "skipped: the fuzzers take clang with its runtime (packages clang and libclang-rt-dev)"
    exit 77
fi
COUNTERSIGN_FUZZ_SEED=1 "$source/scripts/fuzz.sh" all 5
