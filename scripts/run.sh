#!/usr/bin/env bash
# Installs what is missing, builds, and starts the stand-alone analyzer with our engine and its
# simulated probe. Without a display the window is served over VNC on localhost:5900.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
"$root/scripts/build.sh" "$root/build"

# The engine socket (SERVERSOCK) and the test results live in a working directory of their own.
work="$root/run"
mkdir -p "$work/results"
export WSA_ENGINE_PATH="$root/build/engine/wsa_raw"
export WSA_RESULT_DIR="${WSA_RESULT_DIR:-$work/results}"
cd "$work"

if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ] && [ -z "${QT_QPA_PLATFORM:-}" ]; then
    export QT_QPA_PLATFORM="vnc:size=800x480"
    echo "No display: the analyzer is served over VNC. Connect a viewer to localhost:5900"
    echo "(for example: vncviewer localhost:5900). Stop it with Ctrl+C."
fi
exec "$root/build/source/wsa" "$@"
