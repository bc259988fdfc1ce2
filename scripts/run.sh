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

# The demo profile, pointed at this run's ports. REGEDIT4 wants CR LF lines.
{
    printf 'REGEDIT4\r\n\r\n'
    printf '[HKEY_CURRENT_USER\\Software\\Corvantide4\\Profiles\\Demo]\r\n'
    printf '"Account"="demobot"\r\n"Password"="demo"\r\n"Product"="STAR"\r\n'
    printf '"Verbyte"="d3"\r\n"Cdkey1"="7178075237576"\r\n"Channel"="Sandbox"\r\n'
    printf '"Server"="%s"\r\n"ServerBNLS"="%s"\r\n' "$bncs" "$bnls"
    printf '"Load at Startup"=dword:00000001\r\n\r\n'
} >.home/demo.reg
./build/corvantide --home .home --import-reg .home/demo.reg >/dev/null

mode=()
if [ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    mode=(--headless)
fi
./build/corvantide --home .home --connect "${mode[@]}" "$@"
