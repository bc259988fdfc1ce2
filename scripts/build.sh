#!/usr/bin/env bash
# Configures and builds Corvantide into build/ (or $BUILD_DIR).
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD_DIR=${BUILD_DIR:-build}
cmake -S . -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=${BUILD_TYPE:-RelWithDebInfo} "$@" | sed "/^-- /d"
cmake --build "$BUILD_DIR"
