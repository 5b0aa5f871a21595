#!/usr/bin/env bash
# install_dependencies.sh [checks|benchmark|packaging]
# Installs the Debian packages that building, testing and demonstrating Marvolen needs; with "checks"
# those of the sanitizer and fuzz presets and of the checks of the sources, too, with "benchmark" those of
# the benchmarks and long runs, with "packaging" those that check packages. Does nothing, and needs no
# rights, when all of them are there.
set -euo pipefail

packages=(
  g++ cmake ninja-build pkg-config
  qt6-base-dev qt6-base-dev-tools qt6-svg-dev libxcb1-dev fonts-dejavu-core
  libgtest-dev libbenchmark-dev libturbojpeg0-dev
  xvfb xauth xdotool imagemagick x11-utils ffmpeg
  dpkg-dev fakeroot
)
case ${1:-} in
  "") ;;
  checks) packages+=(clang clang-format clang-tidy libclang-rt-14-dev python3) ;;
  benchmark) packages+=(libavcodec-dev libswscale-dev libjpeg-turbo-progs openbox python3) ;;
  packaging) packages+=(lintian desktop-file-utils appstream) ;;
  *) echo "usage: $0 [checks|benchmark|packaging]" >&2; exit 2 ;;
esac

missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query -W -f '${db:Status-Abbrev}' "$package" 2>/dev/null || true)
  [[ $status == ii* ]] || missing+=("$package")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

sudo=()
if [[ $(id -u) -ne 0 ]]; then sudo=(sudo); fi
echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update -q
"${sudo[@]}" apt-get install -q -y --no-install-recommends "${missing[@]}"
