#!/usr/bin/env bash
# Installs what is missing, builds, and opens the instrument window on our engine, which records
# every sweep into run/recordings/. Arguments go to the program:
#   scripts/run.sh --handheld          (the handheld analyzer's 800 x 400 screen instead)
#   scripts/run.sh --source hackrf --band 5g
#   scripts/run.sh --replay run/recordings/wsa-20240301-123005-2g4.csv
#   scripts/run.sh --no-record
# Without a display the window is served over VNC on localhost:5900 (loopback only).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
# Only what the run needs: the program as the desktop package builds it (the instrument window,
# the handheld view behind --handheld) and its engine, not the tests and benchmarks.
cmake --preset dev -S "$root" >/dev/null
cmake --build "$root/build" -j"$(nproc)" --target wsa_desktop_variant wsa_raw

# The program runs in run/, so paths given relative to here are made absolute first.
args=()
path_next=0
size=1600x1000
for arg in "$@"; do
    [ "$arg" = --handheld ] && size=800x480
    if ((path_next)); then
        arg=$(realpath -m -- "$arg")
        path_next=0
    else
        case "$arg" in
        --replay | --record) path_next=1 ;;
        --replay=* | --record=*) arg="${arg%%=*}=$(realpath -m -- "${arg#*=}")" ;;
        esac
    fi
    args+=("$arg")
done

# The engine socket (SERVERSOCK), the test results and the recordings live in a working
# directory of their own.
work="$root/run"
mkdir -p "$work/results"
export WSA_ENGINE_PATH="$root/build/engine/wsa_raw"
export WSA_RESULT_DIR="${WSA_RESULT_DIR:-$work/results}"
export WSA_RECORD_DIR="${WSA_RECORD_DIR-$work/recordings}"
cd "$work"

program=("$root/build/apps/wsa-desktop-variant" ${args[@]+"${args[@]}"})
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ] && [ -z "${QT_QPA_PLATFORM:-}" ]; then
    echo "No display: the window is served over VNC. Connect a viewer to localhost:5900"
    echo "(for example: vncviewer localhost:5900)."
    exec "$root/scripts/serve-display.sh" --size "$size" "${program[@]}"
fi
exec "${program[@]}"
