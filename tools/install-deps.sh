#!/usr/bin/env bash
# Installs the Debian packages Shelvora builds and tests with, skipping those already present.
set -euo pipefail
packages=(build-essential cmake ninja-build pkg-config
          qt6-base-dev qt6-base-dev-tools libgl-dev qt6-charts-dev libqt6opengl6-dev
          libsqlite3-dev libpq-dev libgtest-dev
          postgresql postgresql-contrib  # the library database on a server; tests start a private one
          libzint-dev glabels-data libxlsxwriter-dev  # barcodes, label stocks, spreadsheets
          libcpp-httplib-dev libsodium-dev  # the web catalogue: its HTTP server, and PINs kept as Argon2id hashes
          libyaz-dev  # MARC records and Z39.50/SRU searches (copy cataloguing)
          idzebra-2.0 yaz  # tests search a real Z39.50/SRU server of their own
          unzip  # tests open the exported workbooks
          poppler-utils zbar-tools  # tests read printed pages and barcodes back
          lintian desktop-file-utils  # the package test checks the .deb as Debian does
          chromium)  # the browser tests drive the web catalogue in Debian's chromium
# Node.js and npm run the browser tests (playwright-core, axe-core); a machine with its own Node.js keeps it.
command -v node > /dev/null || packages+=(nodejs)
command -v npm > /dev/null || packages+=(npm)
# The fuzzers (tools/fuzz.sh) need clang and its sanitizer and libFuzzer runtimes.
if [ "${1:-}" = "--fuzz" ]; then
  packages=(clang libclang-rt-dev)
fi
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi
echo "Installing: ${missing[*]}"
SUDO=""
[ "$(id -u)" -eq 0 ] || SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
