#!/usr/bin/env bash
# Builds the libFuzzer targets with clang-14 (AddressSanitizer and UndefinedBehaviorSanitizer)
# and runs each on its checked-in seed corpus: scripts/fuzz.sh [SECONDS] (default 60, shared
# between the targets): fuzz_link (records, store, paints) on fuzz/corpus, fuzz_csv (sweep CSV
# reader, assembler, resampler) on fuzz/corpus-csv, fuzz_frontstream (the front-end stream reader)
# on fuzz/corpus-frontstream. New inputs go to scratch copies; the
# checked-in corpora are not changed. A crash leaves its input in build-fuzz/ and fails the script.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-60}
dir="$root/build-fuzz"
cmake --preset fuzz -S "$root" -B "$dir" >/dev/null
cmake --build "$dir" --target fuzz_link fuzz_csv fuzz_frontstream
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$dir"
export QT_QPA_PLATFORM=offscreen ASAN_OPTIONS=detect_leaks=0
status=0
run() { # target corpus seconds
    mkdir -p "$scratch/$1"
    set +e
    "$dir/fuzz/$1" -max_total_time="$3" -max_len=70000 -timeout=20 -print_final_stats=1 \
        -artifact_prefix="$dir/$1-" "$scratch/$1" "$root/fuzz/$2" >"$dir/$1.log" 2>&1
    local rc=$?
    set -e
    echo "== $1"
    # The target's console lines may run into libFuzzer's own, so its status lines are cut out.
    grep -oE "#[0-9]+[[:space:]]+(INITED|DONE).*|^stat::.*|ERROR.*|SUMMARY.*|^artifact_prefix.*|Test unit written.*" \
        "$dir/$1.log" || true
    [ $rc -eq 0 ] || status=$rc
}
run fuzz_link corpus $((seconds - 2 * (seconds / 4)))
run fuzz_csv corpus-csv $((seconds / 4))
run fuzz_frontstream corpus-frontstream $((seconds / 4))
exit $status
