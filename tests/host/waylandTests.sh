#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs tests of a program in the Wayland session of wayland.sh, instead of on a virtual X display of their own.
#
#   waylandTests.sh PROGRAM FILTER
#
# The tests are those that press no key, click nowhere and look at no picture, for which the support of the tests takes X.
set -u
program=$1 filter=$2
export COUNTERSIGN_WINDOW_TEST_HAS_DISPLAY=1

# Windows get the keyboard only where there is one: this stays, and presses nothing but a key that nobody knows.
wtype -p F20 -s 86400000 </dev/null >/dev/null 2>&1 &
keyboard=$!
trap 'kill "$keyboard"' EXIT
# Not into a pipe: what outlives the program would keep it open.
"$program" --gtest_filter="$filter" </dev/null >tests.log 2>&1
status=$?
cat tests.log
[ "$status" -eq 0 ] && grep -q '^\[  PASSED  \] [1-9]' tests.log
