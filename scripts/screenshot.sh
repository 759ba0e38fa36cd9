#!/usr/bin/env bash
# Takes the README's pictures on a virtual X display, each program running against the simulated
# engine for a few seconds:
#   window    docs/window.png: the instrument window, emitters named by the analysis, a marker
#             on the strongest peak
#   handheld  docs/screenshot.png: the handheld analyzer, cut to its 800 x 400 window
#
# Usage: scripts/screenshot.sh [window|handheld]   (default: both)
#   BUILD_DIR      build directory (default: build); configured and built when needed
#   SHOT_SECONDS   seconds of sweeps before the picture is taken (default: 8; the window 25)
# Needs Xvfb, ImageMagick's import and xdotool; missing Debian packages are installed.
set -euo pipefail

root="$(cd "$(dirname "$0")/.." && pwd)"
build="${BUILD_DIR:-$root/build}"
case "$build" in /*) ;; *) build="$root/$build" ;; esac
run_for="${SHOT_SECONDS:-}"
case "${1:-both}" in
both) "$0" window && exec "$0" handheld ;;
window | handheld) mode=$1 ;;
*) echo "usage: scripts/screenshot.sh [window|handheld]" >&2; exit 2 ;;
esac

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
cmake --build "$build" --target wsa_standalone wsa_desktop_variant wsa_raw

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

# The handheld: the screen of the unit, 800 x 480, the analyzer's window at y 60 under the title
# bar. The instrument window: a desktop's screen.
screen=800x480x24
[ "$mode" = window ] && screen=1600x1000x24
Xvfb -displayfd 3 -screen 0 "$screen" -nolisten tcp 3>"$work/display" 2>"$work/xvfb.log" &
xvfb_pid=$!
for _ in $(seq 100); do
    [ -s "$work/display" ] && break
    sleep 0.1
done
[ -s "$work/display" ] || { echo "the virtual display did not start" >&2; exit 1; }
export DISPLAY=":$(head -n1 "$work/display")"

export QT_QPA_PLATFORM=xcb
export WSA_ENGINE_PATH="$build/engine/wsa_raw"
export WSA_RESULT_DIR="$work/results"
export HOME="$work/home" XDG_CONFIG_HOME="$work/home/config" XDG_RUNTIME_DIR="$work/runtime"
mkdir -p "$HOME" && mkdir -m 700 "$XDG_RUNTIME_DIR"

if [ "$mode" = window ]; then
    out="$root/docs/window.png"
    (
        cd "$work"
        export WSA_SIM_SCENE=emitters WSA_SIM_RATE=20
        exec "$build/apps/wsa-desktop-variant" --source sim --band 2g4 --no-record >"$work/wsa.log" 2>&1
    ) &
    app_pid=$!
    sleep "${run_for:-25}"
    kill -0 "$app_pid" 2>/dev/null || { cat "$work/wsa.log" >&2; exit 1; }
    window=$(xdotool search --onlyvisible --name "Wi-Fi Spectrum Analyzer" | head -n1)
    [ -n "$window" ] || { echo "the window did not show" >&2; exit 1; }
    xdotool windowsize "$window" 1600 1000 windowmove "$window" 0 0
    sleep 1
    # Marker 1 on the strongest peak of the current trace: click the spectrum, then Peak.
    xdotool mousemove 500 200 click 1 sleep 0.5 key p
    sleep 1
    mkdir -p "$(dirname "$out")"
    import -display "$DISPLAY" -window "$window" "$out"
    echo "wrote $out"
    exit 0
fi

out="$root/docs/screenshot.png"
(
    cd "$work"
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

sleep "${run_for:-8}"
# A tap on the Planar view shows the Inspector's cursor and read-out.
xdotool mousemove 300 120 click 1
sleep 0.5

mkdir -p "$(dirname "$out")"
import -display "$DISPLAY" -window root -crop 800x400+0+60 +repage "$out"
echo "wrote $out"
