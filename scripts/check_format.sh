#!/usr/bin/env bash
# Fails, and shows where, when a source isn't laid out as .clang-format says. With --fix it lays it out.
set -euo pipefail
cd "$(dirname "$0")/.."

mode=(--dry-run --Werror)
[[ ${1:-} == --fix ]] && mode=(-i)
git ls-files -z '*.cpp' '*.h' | xargs -0 clang-format "${mode[@]}"
