#!/bin/sh
# Builds everything and runs the whole test suite.
set -eu
ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD=${KLIPVANE_BUILD_DIR:-$ROOT/build}
"$ROOT/scripts/setup.sh"
cd "$BUILD"
ctest --output-on-failure -j "$(nproc)" "$@"
