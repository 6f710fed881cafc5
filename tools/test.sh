#!/usr/bin/env bash
# Builds and runs every test (offscreen; no display needed). The data-layer and loan-engine
# tests run once more on a private PostgreSQL server started for the run.
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/build.sh
source tools/pg-cluster.sh
shelvora_pg_start
export QT_QPA_PLATFORM=offscreen
ctest --test-dir "${BUILD_DIR:-build}" --output-on-failure -j2
bash tests/browser/run.sh "${BUILD_DIR:-build}"
