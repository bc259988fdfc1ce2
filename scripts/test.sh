#!/usr/bin/env bash
# Installs what is missing, builds with warnings as errors and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh --tests
BUILD_DIR=${BUILD_DIR:-build} ./scripts/build.sh -DCORVANTIDE_WERROR=ON
cd "${BUILD_DIR:-build}"
ctest --output-on-failure --timeout 600 -j2
