#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test twice: a plain build and one with
# AddressSanitizer and UndefinedBehaviorSanitizer; then the fuzz target for a minute.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh" --test

export QT_QPA_PLATFORM=offscreen
status=0
for variant in plain asan; do
    dir="$root/build-test-$variant"
    opts=()
    [ "$variant" = asan ] && opts+=(-DWSA_SANITIZE=ON)
    echo "== $variant build"
    "$root/scripts/build.sh" "$dir" "${opts[@]}"
    echo "== $variant tests"
    (cd "$dir" && ctest --output-on-failure -j"$(nproc)") || status=1
done
echo "== fuzz run"
"$root/scripts/fuzz.sh" 60 || status=1
echo "== Debian package"
"$root/scripts/package-check.sh" "$root/build-test-package" || status=1
exit $status
