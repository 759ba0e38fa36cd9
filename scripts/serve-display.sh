#!/usr/bin/env bash
# Runs a program on a virtual X display served over VNC on the loopback interface only, for
# machines without a display: scripts/serve-display.sh [--size WxH] [--port N] PROGRAM [ARGS...]
# Connect a viewer to localhost:PORT (default 5900), or through an SSH tunnel from elsewhere.
# The display and the VNC server end with the program.
set -euo pipefail
size=800x480
port=5900
while [ $# -gt 0 ]; do
    case "$1" in
    --size) size=$2; shift 2 ;;
    --port) port=$2; shift 2 ;;
    *) break ;;
    esac
done
[ $# -gt 0 ] || { echo "usage: $0 [--size WxH] [--port N] PROGRAM [ARGS...]" >&2; exit 2; }

pids=()
cleanup() { for p in "${pids[@]}"; do kill "$p" 2>/dev/null || true; done; }
trap cleanup EXIT
trap 'exit 143' TERM
trap 'exit 130' INT

# -displayfd picks a free display number and writes it once the server is ready.
number=$(mktemp)
pids+=("")
Xvfb -displayfd 3 -screen 0 "${size}x24" -nolisten tcp 3>"$number" 2>/dev/null &
pids[0]=$!
for _ in $(seq 100); do [ -s "$number" ] && break; sleep 0.1; done
display=$(cat "$number")
rm -f "$number"
[ -n "$display" ] || { echo "the virtual display did not start" >&2; exit 1; }
export DISPLAY=":$display"
# No password, so never on any interface but loopback.
x11vnc -display "$DISPLAY" -localhost -rfbport "$port" -nopw -forever -shared -quiet \
    >/dev/null 2>&1 &
pids+=("$!")
echo "Serving the display over VNC at localhost:$port (loopback only); stop with Ctrl+C."
# In the background, so that a signal to this script ends the display and the server too.
"$@" &
pids+=("$!")
status=0
wait "$!" || status=$?
exit "$status"
