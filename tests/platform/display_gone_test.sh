#!/usr/bin/env bash
# display_gone_test.sh MARVOLEN CAMERA_SERVER RECORD_FILE
# The display goes away under the running program, as at a logout: it ends in order all the same. Its
# settings are written, and its record file is closed with every record in it.
set -euo pipefail

marvolen=$1 camera_server=$2 record_file=$3
folder=$(mktemp -d)
processes=()
finish() {
  for process in "${processes[@]}"; do kill "$process" 2>/dev/null || true; done
  wait 2>/dev/null || true
  rm -rf "$folder"
}
trap finish EXIT
fail() { echo "$1" >&2; cat "$folder"/*.log >&2; exit 1; }
# until_true WHAT COMMAND...: waits for the command to succeed.
until_true() {
  local what=$1
  shift
  for _ in $(seq 600); do "$@" && return; sleep 0.1; done
  fail "Waited a minute in vain: $what"
}
file_has() { [[ -s $1 && $(stat -c %s "$1") -gt $2 ]]; }
has_ended() { ! kill -0 "$1" 2>/dev/null; }

cd "$folder"
Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>display >xvfb.log 2>&1 &
xvfb=$!
processes+=("$xvfb")
until_true "a display" file_has display 0
DISPLAY=:$(<display)
export DISPLAY QT_QPA_PLATFORM=xcb

port=$((10000 + RANDOM % 20000))
"$camera_server" --port "$port" --channels 1 --write-settings recinfo.bin >server.log 2>&1 &
processes+=($!)
until_true "the camera" grep -q '^ready' server.log
# Written at the end, it becomes younger.
touch -d '2001-01-01' recinfo.bin

"$marvolen" >marvolen.log 2>&1 &
program=$!
processes+=("$program")
window=$(timeout 60 xdotool search --sync --onlyvisible --pid "$program" --name '^Marvolen$' | head -n 1)
# From the selected pane the Tab key leads to "Start".
xdotool mousemove --window "$window" 100 100 click 1 key Tab key space
until_true "a recording" file_has drive_c/chl01.dbt 1000000

# The drawing threads run at the idle policy, the interface thread before everything ordinary.
[[ $(awk '$41 == 5' /proc/$program/task/*/stat | wc -l) -eq 16 ]] || fail "Not 16 idle threads"
if (renice -n -20 $BASHPID >/dev/null 2>&1); then
  [[ $(awk '{print $19}' "/proc/$program/stat") -eq -20 ]] || fail "The interface thread is ordinary"
fi

kill -KILL "$xvfb"
wait "$xvfb" 2>/dev/null || true
until_true "the end" has_ended "$program"
status=0
wait "$program" || status=$?
[[ $status -eq 0 ]] || fail "Exit status $status"
[[ $(stat -c %y recinfo.bin) != 2001* && $(stat -c %s recinfo.bin) -eq 25280 ]] ||
  fail "The settings weren't written"
"$record_file" verify drive_c/chl01.dbt || fail "The record file isn't sound"
[[ $("$record_file" list drive_c/chl01.dbt | wc -l) -gt 10 ]] || fail "The recording has no records"
