#!/usr/bin/env bash
# Builds in release mode, writes the large school once (into bench-school/) and runs every benchmark
# (or only the groups whose names contain the first argument, e.g. tools/bench.sh postgresql or
# tools/bench.sh circulation,getdata,postgresql).
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD_DIR=build-release BUILD_TYPE=Release bash tools/build.sh
export QT_QPA_PLATFORM=offscreen
if [ ! -f bench-school/library.db ]; then
  build-release/bench/shelvora_make_school bench-school
fi
# The server benchmarks run on a private PostgreSQL cluster that flushes every commit.
source tools/pg-cluster.sh
SHELVORA_PG_DURABLE=1 shelvora_pg_start
build-release/bench/shelvora_bench bench-school "$@"
