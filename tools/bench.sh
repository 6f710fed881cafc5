#!/usr/bin/env bash
# Builds in release mode, writes the large school once (into bench-school/) and runs every benchmark.
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD_DIR=build-release BUILD_TYPE=Release bash tools/build.sh
export QT_QPA_PLATFORM=offscreen
if [ ! -f bench-school/library.db ]; then
  build-release/bench/shelvora_make_school bench-school
fi
build-release/bench/shelvora_bench bench-school
