#!/bin/sh
# Installs the build into a scratch prefix and builds a consumer with find_package.
# A third argument names the sanitizers the installed libraries were built with; the consumer
# is built with them too, since their runtime must be loaded before the libraries.
set -eu
BUILD=$1
SOURCE=$2
SANITIZE=${3:-}
WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT
cmake --install "$BUILD" --prefix "$WORK/prefix" >/dev/null
cmake -S "$SOURCE" -B "$WORK/consumer" -DCMAKE_PREFIX_PATH="$WORK/prefix" \
    ${SANITIZE:+"-DCMAKE_CXX_FLAGS=-fsanitize=$SANITIZE"} >/dev/null
cmake --build "$WORK/consumer" >/dev/null
LD_LIBRARY_PATH="$WORK/prefix/lib" "$WORK/consumer/c"
echo "installed package builds and runs a consumer"
