#!/usr/bin/env bash
# Installs what is missing, builds, and starts Corvantide on its default: the
# local sandbox server with busy residents, and a demo profile that logs on to
# it. Every file of the run is kept under .home/ in the checkout; the sandbox
# stops with the bot.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
./scripts/build.sh
mkdir -p .home

ports=$(mktemp)
./build/corvantide-sandbox --bncs-port 0 --bnls-port 0 --residents 12 --resident-rate 1 \
    >"$ports" 2>.home/sandbox.log &
sandbox=$!
trap 'kill $sandbox 2>/dev/null || true; rm -f "$ports"' EXIT
for _ in $(seq 50); do
    [ "$(grep -c listening "$ports" || true)" -ge 2 ] && break
    sleep 0.1
done
bncs=$(sed -n 's/^BNCS listening on //p' "$ports")
bnls=$(sed -n 's/^BNLS listening on //p' "$ports")
if [ -z "$bncs" ] || [ -z "$bnls" ]; then
    echo "run: the sandbox did not start; see .home/sandbox.log" >&2
    exit 1
fi

# The demo profile, pointed at this run's ports, made with the same verbs a
# person types.
bot() { ./build/corvantide --home .home "$@" >/dev/null; }
bot profile get Demo Account 2>/dev/null || bot profile new Demo
bot profile set Demo Account demobot
bot profile set Demo Password demo
bot profile set Demo Product STAR
bot profile set Demo Verbyte d3
bot profile set Demo Cdkey1 7178075237576
bot profile set Demo Channel Sandbox
bot profile set Demo Server "$bncs"
bot profile set Demo ServerBNLS "$bnls"
bot profile set Demo "Load at Startup" on

mode=()
if [ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    mode=(--headless)
fi
./build/corvantide --home .home --connect "${mode[@]}" "$@"
