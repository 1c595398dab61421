#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Checks formatting (clang-format) and runs clang-tidy over all of our sources, or over those given.
#
#   scripts/lint.sh [FILE...]
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

"$root/scripts/install-dependencies.sh" develop || exit
cmakeArguments=(-DCOUNTERSIGN_BUILD_TESTS=ON)
configureAndBuild release
cd "$root" || fail "entering $root"

if [ "$#" -gt 0 ]; then
    files=("$@")
else
    mapfile -t files < <(git ls-files '*.cpp' '*.h' '*.c')
fi
say "checking the formatting of ${#files[@]} files"
clang-format --dry-run -Werror "${files[@]}" || fail "checking the formatting (clang-format -i mends it)"

mapfile -t sources < <(printf '%s\n' "${files[@]}" | grep -E '\.cpp$' |
    while read -r file; do grep -q "\"file\": \"$root/$file\"" build/release/compile_commands.json && echo "$file"; done)
say "running clang-tidy over ${#sources[@]} sources"
printf '%s\0' "${sources[@]}" | xargs -0 -P "$(nproc)" -n 1 clang-tidy --quiet -p build/release || fail "running clang-tidy"
say "nothing to mend"
