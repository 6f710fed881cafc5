#!/usr/bin/env bash
# The web catalogue in a real browser: Debian's chromium driven by playwright-core, which never
# downloads a browser here. Usage: run.sh BUILD_DIR
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$(cd "${1:-build}" && pwd)
browser=${SHELVORA_CHROMIUM:-/usr/bin/chromium}
if [ ! -x "$browser" ] || ! command -v node > /dev/null || ! command -v npm > /dev/null; then
  echo "Browser tests skipped: no chromium, node or npm on this machine (tools/install-deps.sh installs them)"
  exit 0
fi
if [ "$(node -p 'process.versions.node.split(".")[0]')" -lt 20 ]; then
  echo "Browser tests skipped: playwright-core needs Node.js 20 or newer, this machine has $(node --version)"
  exit 0
fi
cd "$here"
# The packages the lock pins, installed once per lock.
if ! cmp -s package-lock.json node_modules/.installed-lock 2> /dev/null; then
  PLAYWRIGHT_SKIP_BROWSER_DOWNLOAD=1 npm ci --no-audit --no-fund --loglevel=error
  cp package-lock.json node_modules/.installed-lock
fi
echo "== Browser tests: the web catalogue in $("$browser" --version 2> /dev/null || echo chromium) =="
SHELVORA_BUILD="$build" SHELVORA_CHROMIUM="$browser" QT_QPA_PLATFORM=offscreen node --test --test-concurrency=1 opac.test.mjs
