#!/usr/bin/env bash
# Builds the desktop variant as far as the Debian package needs it, packs it with CPack and checks
# it: lintian without errors, the desktop entry and the AppStream metainfo valid, and the package
# unpacked into a scratch root, where the program reports its version and the manual pages render.
#
# Usage: scripts/package-check.sh [BUILD_DIR]   (default: build-package)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
dir=${1:-$root/build-package}
case "$dir" in /*) ;; *) dir="$root/$dir" ;; esac

cmake --preset desktop -S "$root" -B "$dir" >/dev/null
# The desktop defaults are checked in the build they belong to.
cmake --build "$dir" -j"$(nproc)" --target wsa_standalone wsa_raw wsa-analyze wsaplugin wsa_package_files tst_package
QT_QPA_PLATFORM=offscreen "$dir/tests/tst_package" -silent

rm -f "$dir"/*.deb
(cd "$dir" && cpack -G DEB >/dev/null)
debs=("$dir"/*.deb)
[ ${#debs[@]} -eq 1 ] || { echo "expected one package, found: ${debs[*]}" >&2; exit 1; }
deb=${debs[0]}
echo "== package: $(basename "$deb")"
dpkg-deb --field "$deb" Package Version Depends Recommends

echo "== lintian"
# Errors fail the check; warnings are listed (and justified in the README).
lintian --fail-on error "$deb"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
dpkg-deb -x "$deb" "$scratch"

echo "== desktop entry and AppStream metainfo"
desktop-file-validate "$scratch"/usr/share/applications/*.desktop
appstreamcli validate --no-net --pedantic "$scratch"/usr/share/metainfo/*.metainfo.xml

echo "== the package's own files"
version=$(dpkg-deb --field "$deb" Version)
grep -q "Common $version\$" "$scratch/usr/share/wsa/vendor-info.txt" ||
    { echo "vendor information does not carry version $version" >&2; exit 1; }
engine=$(find "$scratch/usr/lib" -name wsa_raw -type f)
[ -x "$engine" ] || { echo "no engine in the package" >&2; exit 1; }
grep -aq "${engine#"$scratch"}" "$scratch/usr/bin/wsa" ||
    { echo "the program does not name the packaged engine ${engine#"$scratch"}" >&2; exit 1; }

echo "== wsa --version in the scratch root"
status=0
out=$(QT_QPA_PLATFORM=offscreen timeout 20 "$scratch/usr/bin/wsa" --version </dev/null) || status=$?
[ "$status" -eq 0 ] || { echo "wsa --version failed with status $status (124: still running after 20 s)" >&2; exit 1; }
echo "$out"
project_version=${version%-*}
grep -q "$project_version" <<<"$out" ||
    { echo "wsa --version does not print $project_version" >&2; exit 1; }

echo "== wsa-analyze in the scratch root"
status=0
"$scratch/usr/bin/wsa-analyze" "$scratch/no-such-recording.csv" 2>/dev/null || status=$?
[ "$status" -eq 2 ] || { echo "wsa-analyze on a missing file exited $status, not 2" >&2; exit 1; }
echo "wsa-analyze refuses a missing file with status 2"

echo "== manual pages"
for page in "$scratch"/usr/share/man/man1/*.1.gz; do
    warnings=$(LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -l "$page" 2>&1 >/dev/null)
    [ -z "$warnings" ] || { echo "$page: $warnings" >&2; exit 1; }
    LC_ALL=C.UTF-8 MANWIDTH=80 man -l "$page" | grep -q . || { echo "$page is empty" >&2; exit 1; }
    echo "$(basename "$page") renders"
done
echo "== package checks passed"
