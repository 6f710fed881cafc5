#!/usr/bin/env bash
# Installs what is missing, builds, writes the demo school once (into demo/) and starts Shelvora on it.
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/build.sh
if [ ! -f demo/library.db ]; then
  build/src/app/shelvora --make-demo demo
fi
exec build/src/app/shelvora --settings demo/shelvora.ini --app-folder demo "$@"
