#!/usr/bin/env bash
# make_frames.sh FOLDER
# Makes the frames that benchmarks decode and cameras send, from the photographs of a Debian package
# (lomiri-wallpapers-16.04: CC-BY, CC-BY-SA, CC0): a folder of JPEG files for each kind. Needs
# ImageMagick, cjpeg and, unless the package is installed, a Debian mirror. Folders that are there
# already stay.
set -euo pipefail

package=lomiri-wallpapers-16.04
target=$1
mkdir -p "$target"
target=$(cd "$target" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Photographs only: the package has two patterns, too.
photographs() { find "$1" -name '*.jpg' ! -name 'umang*' ! -name 'analogpattern*' | sort; }

kinds=(
  "704x480-420-q75:704x480:-quality 75"
  "704x480-420-q50:704x480:-quality 50"
  "704x480-420-q90:704x480:-quality 90"
  "704x480-422-q75:704x480:-quality 75 -sample 2x1"
  "704x480-444-q75:704x480:-quality 75 -sample 1x1"
  "704x480-optimised:704x480:-quality 75 -optimize"
  "704x480-restarts:704x480:-quality 75 -restart 1"
  "352x240-420-q75:352x240:-quality 75"
  "1280x720-420-q75:1280x720:-quality 75"
  "1920x1080-420-q75:1920x1080:-quality 75"
  "704x480-gray:704x480:-quality 75 -grayscale"
  "704x480-progressive:704x480:-quality 75 -progressive"
)

missing=0
for kind in "${kinds[@]}"; do [[ -d $target/${kind%%:*} ]] || missing=1; done
[[ $missing -eq 0 ]] && exit 0

source=/usr/share/backgrounds
if ! dpkg-query -W "$package" >/dev/null 2>&1; then
  (cd "$work" && apt-get download -q "$package" >apt.log 2>&1) || { cat "$work/apt.log" >&2; exit 1; }
  dpkg-deb -x "$work/$package"_*.deb "$work/package"
  source=$work/package$source
fi

for size in 1920x1080 1280x720 704x480 352x240; do
  mkdir "$work/$size"
  number=0
  while IFS= read -r photograph; do
    number=$((number + 1))
    convert "$photograph" -resize "$size^" -gravity center -extent "$size" -depth 8 \
      "$work/$size/$(printf %02d $number).ppm"
  done < <(photographs "$source")
done
for kind in "${kinds[@]}"; do
  IFS=: read -r name size options <<<"$kind"
  [[ -d $target/$name ]] && continue
  mkdir "$work/$name"
  for picture in "$work/$size"/*.ppm; do
    # shellcheck disable=SC2086
    cjpeg $options -outfile "$work/$name/$(basename "$picture" .ppm).jpg" "$picture"
  done
  mv "$work/$name" "$target/$name"
done
