#!/usr/bin/env bash
# wait_until_live.sh PROCESS SCREENSHOT.png
# Waits until the picture in each of the sixteen panes of PROCESS's main window has moved, saves a
# screenshot of the screen and ends with 0. Names the channels that stay still for 30 looks, about two
# minutes, and ends with 1. Needs DISPLAY, xdotool and ImageMagick.
set -euo pipefail

process=$1
screenshot=$2
panelWidth=280  # the control panel right of the panes, about

frames=$(mktemp -d)
trap 'rm -rf "$frames"' EXIT
alive() { kill -0 "$process" 2>/dev/null; }

window=
for _ in $(seq 100); do
  window=$(xdotool search --onlyvisible --pid "$process" --name '^Marvolen$' 2>/dev/null | head -n 1) || true
  [[ -n $window ]] && break
  alive || { echo "The program has ended." >&2; exit 1; }
  sleep 0.1
done
[[ -n $window ]] || { echo "No main window." >&2; exit 1; }

# A hash of the middle of pane $2 in the window shot $1, well inside its picture.
pane() {
  local width=$(((WIDTH - panelWidth) / 4)) height=$((HEIGHT / 4))
  local left=$(($2 % 4 * width + width / 4)) top=$(($2 / 4 * height + height / 4))
  convert "$1" -crop "$((width / 2))x$((height / 2))+$left+$top" +repage rgb:- | sha1sum
}

still=($(seq 0 15))
for _ in $(seq 30); do
  alive || { echo "The program has ended." >&2; exit 1; }
  eval "$(xdotool getwindowgeometry --shell "$window" | grep -E '^(WIDTH|HEIGHT)=')"
  import -silent -window "$window" "$frames/before.png"
  sleep 1
  import -silent -window "$window" "$frames/after.png"
  waiting=()
  for k in "${still[@]}"; do
    if [[ $(pane "$frames/before.png" "$k") == "$(pane "$frames/after.png" "$k")" ]]; then
      waiting+=("$k")
    fi
  done
  still=("${waiting[@]}")
  if [[ ${#still[@]} -eq 0 ]]; then
    import -silent -window root "$screenshot"
    exit 0
  fi
  sleep 1
done

import -silent -window root "$screenshot"
for k in "${still[@]}"; do echo "NET.$((k + 1)) shows no moving picture." >&2; done
exit 1
