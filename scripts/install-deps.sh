#!/usr/bin/env bash
# Installs every Debian package that building, testing and running Corvantide
# needs. Safe to run again: packages already present are left alone.
set -euo pipefail

PACKAGES=(
    cmake ninja-build g++ pkg-config
    qt6-base-dev qt6-base-dev-tools qt6-declarative-dev
    qt6-httpserver-dev qt6-websockets-dev
    libsqlite3-dev libssl-dev libedit-dev
    libgtest-dev libgmock-dev libbenchmark-dev
    clang libclang-rt-14-dev
    libxkbcommon-dev libxcb1-dev
    xvfb xauth dbus dbus-daemon x11-utils
    desktop-file-utils appstream man-db dpkg-dev file
)
# The web page's end-to-end test drives a real browser; at some 350 MB it is
# installed only for the tests: install-deps.sh --tests.
if [ "${1:-}" = "--tests" ]; then
    PACKAGES+=(chromium)
fi

missing=()
for p in "${PACKAGES[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$p")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    echo "install-deps: all ${#PACKAGES[@]} packages are already installed"
    exit 0
fi

SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
echo "install-deps: installing ${missing[*]}"
$SUDO apt-get update -qq
DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
echo "install-deps: done"
