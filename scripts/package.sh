#!/usr/bin/env bash
# Builds the Debian package delfor_<version>_amd64.deb in build-package/ (a Release build of the
# three programs only; build/ is left alone) and prints its path.
set -euo pipefail
cd "$(dirname "$0")/.."
# The package's dependencies are read from the programs by dpkg-shlibdeps (dpkg-dev), which needs file.
bash scripts/install-deps.sh dpkg-dev file
# Debian's hardening flags (stack protector, fortified functions, read-only relocations bound at
# start); no -g, since the programs are stripped in the package.
export DEB_BUILD_MAINT_OPTIONS=hardening=+all DEB_CXXFLAGS_MAINT_STRIP=-g
# The install step builds only what it installs, not the tests and benchmarks.
cmake -S . -B build-package -DCMAKE_BUILD_TYPE=Release -DCMAKE_SKIP_INSTALL_ALL_DEPENDENCY=ON \
      -DCMAKE_CXX_FLAGS="$(dpkg-buildflags --get CXXFLAGS) $(dpkg-buildflags --get CPPFLAGS)" \
      -DCMAKE_EXE_LINKER_FLAGS="$(dpkg-buildflags --get LDFLAGS)" >/dev/null
cmake --build build-package -j"$(nproc)" --target delfor delfor-cli delfor-sim
cd build-package
rm -f delfor_*.deb
cpack -G DEB >/dev/null
ls "$PWD"/delfor_*_amd64.deb
