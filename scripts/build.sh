#!/usr/bin/env bash
# Configures and builds into build/ (or $LXR_BUILD_DIR).
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD_DIR=${LXR_BUILD_DIR:-build}
cmake -S . -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=${LXR_BUILD_TYPE:-RelWithDebInfo} "$@" >/dev/null
ninja -C "$BUILD_DIR"
