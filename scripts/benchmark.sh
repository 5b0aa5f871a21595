#!/usr/bin/env bash
# benchmark.sh [--quick] [SECTION]...
# Measures everything against its peer, in turns, and prints one table; docs/performance.md explains it.
# Each figure is the median of three runs, or with --quick that of one, which takes under three minutes.
# The sections are decoder, parser, stretch, append and program; without any all are run. Builds what it
# needs, and needs a machine that does nothing else, 4 GB of disk and no display.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install_dependencies.sh benchmark
cmake --preset release >/dev/null
benches=(jpeg_decode_bench parser_bench stretch_bench record_bench)
cmake --build --preset release --target marvolen camera_server "${benches[@]}" >/dev/null
scripts/make_frames.sh build/frames
exec python3 scripts/benchmark.py "$@"
