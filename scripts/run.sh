#!/usr/bin/env bash
# Installs what is missing, builds, and starts Corvantide on its default.
# Every file of the run is kept under .home/ in the checkout.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
./scripts/build.sh
mkdir -p .home
exec ./build/corvantide --headless --home .home "$@"
