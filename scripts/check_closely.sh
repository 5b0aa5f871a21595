#!/usr/bin/env bash
# Looks closer than the newcomer's tests: layout, sanitizers, threads, clang-tidy. About a quarter of an
# hour on two cores.
set -euo pipefail
cd "$(dirname "$0")/.."

step() { printf '\n== %s (%d min) ==\n' "$1" $((SECONDS / 60)); }
export QT_QPA_PLATFORM=offscreen
jobs=$(nproc)

scripts/install_dependencies.sh checks

step "Layout of the sources"
scripts/check_format.sh

step "Benchmarks"
cmake --preset release
cmake --build --preset release --target marvolen_benchmarks

step "Debug build with clang, AddressSanitizer and UndefinedBehaviorSanitizer, every test"
cmake --preset asan
cmake --build --preset asan
ctest --preset asan --parallel "$jobs"

step "ThreadSanitizer, the tests with threads"
cmake --preset tsan
cmake --build --preset tsan --target marvolen_threaded_tests
ctest --preset tsan --parallel "$jobs" --label-regex threads

step "clang-tidy"
scripts/check_tidy.sh build/asan
