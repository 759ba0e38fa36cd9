#!/usr/bin/env bash
# The display served to machines without one has no password, so its VNC server must listen on
# the loopback interface and nowhere else.
set -euo pipefail
root=$1
port=$((20000 + RANDOM % 20000))
"$root/scripts/serve-display.sh" --port "$port" sleep 60 >/dev/null &
server=$!
trap 'kill "$server" 2>/dev/null || true; wait "$server" 2>/dev/null || true' EXIT
listeners=""
for _ in $(seq 100); do
    listeners=$(ss -Hltn "sport = :$port" | awk '{print $4}')
    [ -n "$listeners" ] && break
    sleep 0.1
done
[ -n "$listeners" ] || { echo "FAIL: nothing listens on port $port"; exit 1; }
echo "listening on: $(echo $listeners)"
while read -r address; do
    case "$address" in
    127.0.0.1:"$port" | "[::1]:$port") ;;
    *) echo "FAIL: the VNC server listens on $address"; exit 1 ;;
    esac
done <<<"$listeners"
kill "$server"
wait "$server" 2>/dev/null || true
sleep 0.5
if ss -Hltn "sport = :$port" | grep -q .; then
    echo "FAIL: the VNC server outlived the program"; exit 1
fi
echo "PASS: loopback only, and gone with the program"
