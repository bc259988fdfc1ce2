#!/usr/bin/env bash
# Builds the libFuzzer targets with clang, ASan and UBSan, and runs one.
#   scripts/fuzz.sh                 lists the targets
#   scripts/fuzz.sh NAME [SECONDS]  runs fuzz_NAME for SECONDS (default 600)
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh >/dev/null
log=$(mktemp)
if ! CC=clang CXX=clang++ BUILD_DIR=build-fuzz ./scripts/build.sh -DCORVANTIDE_FUZZ=ON \
    -DCORVANTIDE_TESTS=OFF -DCORVANTIDE_BENCH=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo >"$log" 2>&1; then
    cat "$log"
    echo "fuzz: the build failed" >&2
    exit 1
fi
rm -f "$log"
if [ $# -eq 0 ]; then
    ls build-fuzz/fuzz | grep '^fuzz_' | sed 's/^fuzz_//'
    exit 0
fi
name=$1; seconds=${2:-600}
corpus=fuzz/corpus-$name
mkdir -p "$corpus"
seeds=()
[ -d "fuzz/seeds/$name" ] && seeds+=("fuzz/seeds/$name")
exec "build-fuzz/fuzz/fuzz_$name" -max_total_time="$seconds" -print_final_stats=1 "$corpus" "${seeds[@]}"
