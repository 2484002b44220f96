#!/bin/sh
# Installs what the build needs (Debian 12), configures and builds. Idempotent: packages
# already present are not touched, and an up-to-date build does nothing.
set -eu
ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD=${KLIPVANE_BUILD_DIR:-$ROOT/build}

# clang and libclang-rt-dev build the fuzz test (the runtime is only recommended by clang,
# and recommendations are not installed below); libsingleapplication-dev and
# ffmpegthumbnailer are benchmark peers; dbus-daemon gives the D-Bus tests a private bus.
PACKAGES="build-essential cmake ninja-build ccache pkg-config git
  qtbase5-dev qttools5-dev-tools qttools5-dev libqt5opengl5-dev
  libboost-dev libgoogle-glog-dev
  libavformat-dev libavcodec-dev libavutil-dev libswscale-dev libavfilter-dev ffmpeg
  xvfb xauth clang libclang-rt-dev libsingleapplication-dev ffmpegthumbnailer fonts-dejavu-core
  fonts-wqy-microhei qttranslations5-l10n dbus-daemon"

missing=""
for p in $PACKAGES; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing="$missing $p"
done
if [ -n "$missing" ]; then
    echo "setup: installing$missing"
    SUDO=""
    [ "$(id -u)" -eq 0 ] || SUDO=sudo
    $SUDO apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends $missing >/dev/null
fi

export CCACHE_BASEDIR="$ROOT"
# Arguments are extra configure options, used when the build folder is first configured
# (scripts/test-sanitizers.sh passes its sanitizer build's).
if [ ! -f "$BUILD/build.ninja" ]; then
    cmake -S "$ROOT" -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@"
fi
cmake --build "$BUILD"
