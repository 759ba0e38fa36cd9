#!/usr/bin/env bash
# Takes docs/screenshot.png: the stand-alone analyzer runs against the simulated engine for a few
# seconds on a virtual X display, and the picture is cut to the analyzer's 800 x 400 window.
#
# Usage: scripts/screenshot.sh
#   BUILD_DIR      build directory (default: build); configured and built when needed
#   SHOT_SECONDS   seconds of sweeps before the picture is taken (default: 8)
# Needs Xvfb, ImageMagick's import and xdotool; missing Debian packages are installed.
set -euo pipefail

root="$(cd "$(dirname "$0")/.." && pwd)"
build="${BUILD_DIR:-$root/build}"
case "$build" in /*) ;; *) build="$root/$build" ;; esac
run_for="${SHOT_SECONDS:-8}"
out="$root/docs/screenshot.png"

missing=()
command -v Xvfb >/dev/null || missing+=(xvfb)
command -v import >/dev/null || missing+=(imagemagick)
command -v xdotool >/dev/null || missing+=(xdotool)
if ((${#missing[@]})); then
    sudo=""
    [ "$(id -u)" -eq 0 ] || sudo=sudo
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends \
        "${missing[@]}"
fi

if [ ! -f "$build/CMakeCache.txt" ]; then
    cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release
fi
cmake --build "$build" --target wsa_standalone wsa_raw

work="$(mktemp -d)"
xvfb_pid=""
app_pid=""

# Ends a process and everything it started (the analyzer starts the engine).
stop_tree() {
    local pid="$1" child
    for child in $(pgrep -P "$pid" || true); do
        stop_tree "$child"
    done
    kill "$pid" 2>/dev/null || true
}

cleanup() {
    [ -n "$app_pid" ] && stop_tree "$app_pid"
    [ -n "$xvfb_pid" ] && kill "$xvfb_pid" 2>/dev/null || true
    wait 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT

# The screen of the unit: 800 x 480, the analyzer's window at y 60 under the title bar.
Xvfb -displayfd 3 -screen 0 800x480x24 -nolisten tcp 3>"$work/display" 2>"$work/xvfb.log" &
xvfb_pid=$!
for _ in $(seq 100); do
    [ -s "$work/display" ] && break
    sleep 0.1
done
[ -s "$work/display" ] || { echo "the virtual display did not start" >&2; exit 1; }
export DISPLAY=":$(head -n1 "$work/display")"

(
    cd "$work"
    export QT_QPA_PLATFORM=xcb
    export WSA_ENGINE_PATH="$build/engine/wsa_raw"
    export WSA_RESULT_DIR="$work/results"
    export WSA_SIM_RATE=10
    exec "$build/apps/wsa" >"$work/wsa.log" 2>&1
) &
app_pid=$!

# The engine announces its band in a message box; answer it so that the sweeps come through.
for _ in $(seq 100); do
    if xdotool search --onlyvisible --name "Information" >/dev/null 2>&1; then
        sleep 0.3
        xdotool key Return
        break
    fi
    kill -0 "$app_pid" 2>/dev/null || { cat "$work/wsa.log" >&2; exit 1; }
    sleep 0.1
done

sleep "$run_for"
# A tap on the Planar view shows the Inspector's cursor and read-out.
xdotool mousemove 300 120 click 1
sleep 0.5

mkdir -p "$(dirname "$out")"
import -display "$DISPLAY" -window root -crop 800x400+0+60 +repage "$out"
echo "wrote $out"
