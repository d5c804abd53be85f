#!/usr/bin/env bash
# Builds everything and runs all tests headless.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/build.sh "$@"
cd build
QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j2
