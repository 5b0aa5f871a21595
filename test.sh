#!/usr/bin/env bash
# Builds Marvolen and runs every test, without a screen. Installs missing packages first.
set -euo pipefail
cd "$(dirname "$0")"

scripts/install_dependencies.sh
cmake --preset release
cmake --build --preset release
QT_QPA_PLATFORM=offscreen ctest --preset release --parallel "$(nproc)"
