#!/usr/bin/env bash
# check_tidy.sh BUILD_FOLDER
# Runs the checks of .clang-tidy over the program's and the tools' sources and fails on any finding.
# BUILD_FOLDER is one that clang has built everything in (build/asan): its commands are used.
set -euo pipefail
cd "$(dirname "$0")/.."

folders='app|config|display|jpeg|net|platform|playback|record|res|tools'
here=$(printf '%s' "$PWD" | sed 's/[^[:alnum:]\/_-]/\\&/g')  # any character may stand in a path
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! run-clang-tidy -quiet -p "$1" "^$here/($folders)/" >"$log" 2>&1; then
  grep -E -A 4 '(warning|error): ' "$log" || cat "$log"
  exit 1
fi
if ! grep -q '^clang-tidy' "$log"; then
  echo "No source was looked at: is $1 a build of clang in this folder?" >&2
  exit 1
fi
