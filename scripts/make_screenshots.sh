#!/usr/bin/env bash
# Makes the pictures of the documents anew: docs/images/*.jpg. Builds what it needs, runs the program
# against the camera server in a virtual display and drives it with real clicks.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install_dependencies.sh
cmake --preset release >/dev/null
cmake --build --preset release --target marvolen camera_server >/dev/null

bin=$PWD/build/release/bin
images=$PWD/docs/images
folder=$(mktemp -d)
mkdir -p "$images"
processes=()
finish() {
  for process in "${processes[@]}"; do kill "$process" 2>/dev/null || true; done
  wait 2>/dev/null || true
  rm -rf "$folder"
}
trap finish EXIT

display=95
while [[ -e /tmp/.X11-unix/X$display || -e /tmp/.X$display-lock ]]; do display=$((display + 1)); done
export DISPLAY=:$display
Xvfb "$DISPLAY" -screen 0 1920x1080x24 -nolisten tcp >"$folder/xvfb.log" 2>&1 &
processes+=($!)
for _ in $(seq 100); do xdpyinfo >/dev/null 2>&1 && break; sleep 0.1; done

shoot() { import -silent -window "$window" png:- | convert png:- -quality 84 "$images/$1.jpg"; }
# first_window PROCESS TITLE: waits for the window.
first_window() { xdotool search --sync --all --onlyvisible --pid "$1" --name "^$2\$" | head -n 1; }

# The first run: a folder without settings.
mkdir "$folder/first"
(cd "$folder/first" && exec "$bin/marvolen") &
marvolen=$!
processes+=("$marvolen")
window=$(first_window "$marvolen" Marvolen)
sleep 1
shoot first
kill -TERM "$marvolen"
wait "$marvolen" || true

cd "$folder"
"$bin/camera_server" --port 8181 --write-settings recinfo.bin >camera_server.log 2>&1 &
processes+=($!)
for _ in $(seq 600); do grep -q '^ready' camera_server.log && break; sleep 0.1; done
"$bin/marvolen" &
marvolen=$!
processes+=("$marvolen")
"$OLDPWD/scripts/wait_until_live.sh" "$marvolen" "$folder/screen.png"

window=$(first_window "$marvolen" Marvolen)
eval "$(xdotool getwindowgeometry --shell "$window")"
# A click at a place of the window; negative numbers count from its right and bottom edge.
click() {
  local x=$1 y=$2
  xdotool mousemove --window "$window" $((x < 0 ? WIDTH + x : x)) $((y < 0 ? HEIGHT + y : y)) click 1
  sleep 0.7
}
# The middle of a control of the panel, as docs and tests name it, from its top-left corner.
panel() { click $((-PANEL + $1)) "$2"; }

# The panel's width, and its and the settings dialog's controls' places, in the font that a bare Debian shows.
PANEL=285
startAll=(92 90) cancel=(711 456) setting=(60 167) playback=(205 167) view1=(57 655) view4=(147 655) view16=(226 655) popUp=(25 681)
lens=(221 71)

shoot live
panel "${startAll[@]}"
click 900 600
panel "${view4[@]}"
sleep 1
shoot view4
panel "${view1[@]}"
sleep 1
shoot view1
panel "${view16[@]}"
panel "${popUp[@]}"
xdotool mousemove --window "$window" 500 400
sleep 0.3
xdotool mousemove --window "$window" 505 405
sleep 1
import -silent -window root -crop "900x520+$((X + 352))+$((Y + 253))" +repage png:- |
  convert png:- -quality 84 "$images/popup.jpg"

main=$window
panel "${setting[@]}"
sleep 2
window=$(first_window "$marvolen" "Channel Setting")
shoot settings
click "${cancel[@]}"
sleep 2
window=$main

panel "${lens[@]}"
window=$(first_window "$marvolen" "About Marvolen")
shoot about
xdotool key Escape
sleep 1
window=$main

panel "${playback[@]}"
sleep 1
window=$(first_window "$marvolen" Playback)
play=(131 621) pause=(215 621) selStart=(58 730) selEnd=(143 730)
for mark in selStart selEnd; do
  click "${play[@]}"
  click "${pause[@]}"
  declare -n place=$mark
  click "${place[@]}"
done
click "${play[@]}"
click "${pause[@]}"
shoot playback

kill -TERM "$marvolen"
wait "$marvolen" || true
echo "Pictures are in docs/images."
