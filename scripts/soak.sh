#!/usr/bin/env bash
# soak.sh [MINUTES] [--output FOLDER] [--fault C=FAULT]...
# Runs the program for that long (30 minutes) in a virtual display over sixteen channels of 704 x 480 at
# 30 pictures a second, all recording, and watches what mustn't grow. FOLDER (build/soak) gets soak.csv
# and soak.svg. Fails, and says why, when memory, descriptors or threads show a trend after the first
# minute, when the interface thread was kept for more than 50 ms, and when a picture wasn't recorded.
# Faults are camera_server's; a camera that fails fills the log, whose rows may then cost memory.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install_dependencies.sh benchmark
cmake --preset release >/dev/null
cmake --build --preset release --target marvolen camera_server >/dev/null
scripts/make_frames.sh build/frames
exec python3 scripts/soak.py "$@"
