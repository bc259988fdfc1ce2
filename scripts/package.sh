#!/usr/bin/env bash
# Builds the Debian package: a release build into build-package/, installed
# under /usr, with dependencies worked out from the binaries, checked by
# lintian. Prints where the package is.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
if ! command -v lintian >/dev/null || ! command -v fakeroot >/dev/null; then
    SUDO=""
    if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
    echo "package: installing lintian and fakeroot"
    $SUDO apt-get install -y -qq --no-install-recommends lintian fakeroot
fi
BUILD_DIR=build-package BUILD_TYPE=Release ./scripts/build.sh \
    -DCMAKE_INSTALL_PREFIX=/usr -DCORVANTIDE_TESTS=OFF -DCORVANTIDE_BENCH=OFF \
    "-DCMAKE_CXX_FLAGS=-D_FORTIFY_SOURCE=2 -fstack-protector-strong" \
    "-DCMAKE_EXE_LINKER_FLAGS=-Wl,-z,relro,-z,now"
(cd build-package && fakeroot cpack -G DEB)
deb=$(ls build-package/corvantide_*.deb)
lintian "$deb" || true
echo "package: $deb"
echo "install it with: sudo apt install ./$deb"
