#!/usr/bin/env bash
# Fails, and shows where, when a source isn't laid out as .clang-format says. With --fix it lays it out.
set -euo pipefail
cd "$(dirname "$0")/.."

mode=(--dry-run --Werror)
[[ ${1:-} == --fix ]] && mode=(-i)
find . -path ./build -prune -o \( -name '*.cpp' -o -name '*.h' \) -print0 |
  xargs -0 clang-format "${mode[@]}"
