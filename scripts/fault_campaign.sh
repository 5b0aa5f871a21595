#!/usr/bin/env bash
# fault_campaign.sh [--rounds N] [--seed N] [--program FILE]
# Starts the program N times (100, about 15 minutes) in a virtual display over sixteen cameras with faults,
# all recording on a small disk of their own, and ends it: mostly with SIGKILL at a random instant, else by
# SIGTERM or by taking its display away. In some rounds the disk is full for a while or some files are
# read-only. After each round every record file is verified and compared, byte for byte, with the cameras'
# own account of what they sent. Prints a table of what became of every picture, and fails when one was
# lost without a reason, a file isn't sound or was given up, or the program ended by itself. The same seed
# gives the same faults. Needs root, or user namespaces, for the small disk.
set -euo pipefail
cd "$(dirname "$0")/.."

if [[ -z ${FAULT_CAMPAIGN_READY:-} ]]; then
  scripts/install_dependencies.sh benchmark
  cmake --preset release >/dev/null
  cmake --build --preset release --target marvolen camera_server record_file >/dev/null
  scripts/make_frames.sh build/frames
  # A mount namespace of its own: nothing stays mounted, however this ends.
  spaces=(--mount)
  [[ $(id -u) -eq 0 ]] || spaces+=(--user --map-root-user)
  FAULT_CAMPAIGN_READY=1 exec unshare "${spaces[@]}" "$0" "$@"
fi
exec python3 scripts/fault_campaign.py "$@"
