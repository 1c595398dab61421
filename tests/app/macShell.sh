#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Compiles the application shell's header with clang for the shape that the toolkit has on macOS, and runs the program.
#
#   macShell.sh SOURCE-FOLDER
set -eu
source=$1

here=$(mktemp -d)
trap 'rm -rf "$here"' EXIT
clang++ -std=c++17 -Wall -Wextra -Wpedantic -Woverloaded-virtual -Winconsistent-missing-override -Wsuggest-override \
    -Werror -D__WXMAC__ -D__WXOSX__ -D__WXOSX_COCOA__ -I"$source/tests/app/macToolkit" -I"$source" \
    "$source/tests/app/macShell.cpp" -o "$here/macShell"
"$here/macShell"
