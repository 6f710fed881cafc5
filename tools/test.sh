#!/usr/bin/env bash
# Builds and runs every test (offscreen; no display needed).
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/build.sh
export QT_QPA_PLATFORM=offscreen
ctest --test-dir "${BUILD_DIR:-build}" --output-on-failure -j2
