#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test twice: a plain build and one with
# AddressSanitizer and UndefinedBehaviorSanitizer; then the fuzz targets for a minute in all and the
# Debian package checks. The last line counts the steps that passed and failed.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh" --test

export QT_QPA_PLATFORM=offscreen
status=0
passed=0
failed=0
# Counts one step of the run for the closing line.
step() { if "$@"; then passed=$((passed + 1)); else failed=$((failed + 1)); status=1; fi; }
cd "$root"
for variant in plain asan; do
    echo "== $variant build"
    cmake --preset "$variant" >/dev/null
    cmake --build --preset "$variant" -j"$(nproc)"
    echo "== $variant tests"
    step ctest --preset "$variant" -j"$(nproc)"
done
echo "== fuzz run"
step "$root/scripts/fuzz.sh" 60
echo "== Debian package"
step "$root/scripts/package-check.sh" "$root/build-test-package"
echo "steps: $passed passed, $failed failed"
exit $status
