#!/usr/bin/env bash
# Configures and builds into ${BUILD_DIR:-build}; extra CMake arguments in CMAKE_ARGS.
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/install-deps.sh
BUILD_DIR=${BUILD_DIR:-build}
# shellcheck disable=SC2086
cmake -S . -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=${BUILD_TYPE:-RelWithDebInfo} ${CMAKE_ARGS:-} > "$BUILD_DIR.configure.log" 2>&1 || { cat "$BUILD_DIR.configure.log"; exit 1; }
cmake --build "$BUILD_DIR"
