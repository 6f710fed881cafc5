#!/usr/bin/env bash
# Builds the Debian package, checks its metadata and contents, installs it on this machine, runs
# the installed program (version, demo school) and removes it again. Exit 77 (skipped) where
# packages cannot be installed (not root and no password-free sudo).
set -euo pipefail
BUILD_DIR=$1
VERSION=$2
deb="$BUILD_DIR/shelvora_${VERSION}_amd64.deb"
fail() { echo "FAIL: $*"; exit 1; }

rm -f "$deb"
cmake --build "$BUILD_DIR" --target package >/dev/null
[ -f "$deb" ] || fail "no $deb"

info=$(dpkg-deb -I "$deb")
for field in "Package: shelvora" "Version: $VERSION" "Architecture: amd64" "Section: education"; do
  grep -qF "$field" <<<"$info" || fail "control lacks '$field'"
done
depends=$(grep '^ Depends:' <<<"$info")
for dep in glabels-data qt6-qpa-plugins libqt6widgets6 libqt6charts6 libsqlite3-0 libpq5 libzint libxlsxwriter; do
  grep -q "$dep" <<<"$depends" || fail "Depends lacks $dep: $depends"
done
contents=$(dpkg-deb -c "$deb")
for file in ./usr/bin/shelvora ./usr/bin/shelvora-opac ./lib/systemd/system/shelvora-opac.service ./usr/share/man/man1/shelvora-opac.1.gz \
            ./usr/share/applications/shelvora.desktop ./usr/share/icons/hicolor/scalable/apps/shelvora.svg \
            ./usr/share/man/man1/shelvora.1.gz ./usr/share/doc/shelvora/copyright ./usr/share/doc/shelvora/changelog.gz; do
  grep -qF " $file" <<<"$contents" || fail "package lacks $file"
done

# Debian's own checks of a package: no errors or warnings, pedantic ones included.
if command -v lintian >/dev/null; then
  report=$(lintian --pedantic --no-tag-display-limit "$deb" 2>/dev/null || true)
  if grep -E '^(E|W|P): ' <<<"$report"; then fail "lintian finds the above"; fi
fi

SUDO=""
if [ "$(id -u)" -ne 0 ]; then
  if sudo -n true 2>/dev/null; then SUDO="sudo -n"; else echo "skipped: cannot install packages here (not root)"; exit 77; fi
fi
export DEBIAN_FRONTEND=noninteractive
trap '$SUDO apt-get remove -y -qq shelvora >/dev/null 2>&1 || true' EXIT
$SUDO apt-get install -y -qq --no-install-recommends "$deb" >/dev/null || fail "apt-get install failed"

# The installed files, not the build's.
export ASAN_OPTIONS=detect_leaks=0 QT_QPA_PLATFORM=offscreen
[ "$(command -v shelvora)" = /usr/bin/shelvora ] || fail "shelvora is not /usr/bin/shelvora"
out=$(/usr/bin/shelvora --version 2>/dev/null)
grep -qx "Shelvora $VERSION" <<<"$out" || fail "--version printed: $out"
demo=$(mktemp -d)
/usr/bin/shelvora --make-demo "$demo/school" >/dev/null 2>&1 || fail "--make-demo failed"
for f in library.db central.db shelvora.ini; do [ -s "$demo/school/$f" ] || fail "demo lacks $f"; done
rm -rf "$demo"
/usr/bin/shelvora-opac --version | grep -q "^shelvora-opac $VERSION" || fail "shelvora-opac --version"
man -l /usr/share/man/man1/shelvora.1.gz 2>/dev/null | grep -q -- "--copy-library" || zcat /usr/share/man/man1/shelvora.1.gz | grep -q copy || fail "manual page"
desktop-file-validate /usr/share/applications/shelvora.desktop || fail "desktop entry"
echo "package $deb: built, checked, installed and run"
