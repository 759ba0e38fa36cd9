#!/usr/bin/env bash
# Builds the libFuzzer target with clang-14 (AddressSanitizer and UndefinedBehaviorSanitizer)
# and runs it on the checked-in seed corpus: scripts/fuzz.sh [SECONDS] (default 60).
# New inputs go to a scratch copy; the checked-in corpus is not changed. A crash leaves its
# input in build-fuzz/ and fails the script.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-60}
dir="$root/build-fuzz"
cmake -S "$root" -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_C_COMPILER=clang-14 -DCMAKE_CXX_COMPILER=clang++-14 -DWSA_FUZZ=ON >/dev/null
cmake --build "$dir" --target fuzz_link
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$dir"
export QT_QPA_PLATFORM=offscreen ASAN_OPTIONS=detect_leaks=0
set +e
"$dir/fuzz/fuzz_link" -max_total_time="$seconds" -max_len=65536 -timeout=20 \
    -print_final_stats=1 -artifact_prefix="$dir/" "$scratch" "$root/fuzz/corpus" >"$dir/fuzz.log" 2>&1
status=$?
set -e
# The target's console lines may run into libFuzzer's own, so its status lines are cut out.
grep -oE "#[0-9]+[[:space:]]+(INITED|DONE).*|^stat::.*|ERROR.*|SUMMARY.*|^artifact_prefix.*|Test unit written.*" \
    "$dir/fuzz.log" || true
exit $status
