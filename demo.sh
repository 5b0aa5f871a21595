#!/usr/bin/env bash
# Shows Marvolen watching sixteen cameras: builds it, starts sixteen camera servers on loopback ports
# and the program with settings for them, in the folder demo/. Installs missing packages first.
#
# On a desktop the window stays until it is closed. Without a display the program runs in a virtual
# one; the script waits until all sixteen pictures move, saves a screenshot and ends.
set -euo pipefail
cd "$(dirname "$0")"

firstPort=${MARVOLEN_DEMO_PORT:-8101}

scripts/install_dependencies.sh
cmake --preset release
cmake --build --preset release --target marvolen camera_server

bin=$PWD/build/release/bin
mkdir -p demo
processes=()
finish() {
  for process in "${processes[@]}"; do kill "$process" 2>/dev/null || true; done
  wait 2>/dev/null || true
}
trap finish EXIT

"$bin/camera_server" --port "$firstPort" --write-settings demo/recinfo.bin >demo/camera_server.log 2>&1 &
server=$!
processes+=("$server")
for _ in $(seq 600); do
  grep -q '^ready' demo/camera_server.log && break
  kill -0 "$server" 2>/dev/null || break
  sleep 0.1
done
if ! grep -q '^ready' demo/camera_server.log; then
  cat demo/camera_server.log
  echo "The camera server isn't ready." >&2
  exit 1
fi

if [[ -n ${DISPLAY:-} ]]; then
  echo "Sixteen cameras serve on ports $firstPort to $((firstPort + 15)). Close the window to end."
  (cd demo && "$bin/marvolen")
  exit 0
fi

display=90
while [[ -e /tmp/.X11-unix/X$display || -e /tmp/.X$display-lock ]]; do display=$((display + 1)); done
export DISPLAY=:$display
Xvfb "$DISPLAY" -screen 0 1920x1080x24 -nolisten tcp >demo/xvfb.log 2>&1 &
processes+=($!)
for _ in $(seq 100); do xdpyinfo >/dev/null 2>&1 && break; sleep 0.1; done

(cd demo && exec "$bin/marvolen") &
marvolen=$!
processes+=("$marvolen")

if scripts/wait_until_live.sh "$marvolen" demo/screenshot.png; then
  echo "All sixteen channels are live. Screenshot: $PWD/demo/screenshot.png"
else
  echo "Requests the cameras saw: $PWD/demo/camera_server.log"
  exit 1
fi

# Ends the program as closing its window does.
kill -TERM "$marvolen"
timeout 10 tail --pid="$marvolen" -f /dev/null || { echo "The program doesn't end." >&2; exit 1; }
wait "$marvolen"
