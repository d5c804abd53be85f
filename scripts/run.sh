#!/usr/bin/env bash
# Builds and starts the program on the built-in analyser simulator.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/build.sh
exec build/src/delfor --simulate "$@"
