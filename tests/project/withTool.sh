#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs a command whose program may not be installed; then the test counts as skipped.
#
#   withTool.sh PACKAGE PROGRAM [ARGUMENT...]
set -u
package=$1
shift
if ! command -v "$1" >/dev/null 2>&1; then
    echo "skipped: $1 is not installed (package $package)"
    exit 77
fi
exec "$@"
