#!/usr/bin/env bash
# Builds the program, its tools and tests into build/ (pass extra CMake options, e.g. -DDELFOR_SANITIZE=ON).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null
cmake --build build -j"$(nproc)"
