#!/usr/bin/env bash
# package_test.sh BUILD_FOLDER
# Makes the packages, installs them into an empty root and starts the program there, under Xvfb and through
# its launcher, as an ordinary user who has never run it. Then upgrades and removes the packages: what the
# user has stays, and nothing of ours does. Their dependencies are those of the machine.
set -euo pipefail

build=$1
folder=$(mktemp -d)
processes=()
finish() {
  for process in "${processes[@]}"; do kill "$process" 2>/dev/null || true; done
  wait 2>/dev/null || true
  rm -rf "$folder"
}
trap finish EXIT
fail() { echo "$1" >&2; cat "$folder"/*.log >&2; exit 1; }
# until_true WHAT COMMAND...: waits for the command to succeed.
until_true() {
  local what=$1
  shift
  for _ in $(seq 600); do "$@" && return; sleep 0.1; done
  fail "Waited a minute in vain: $what"
}
has_window() { xdotool search --onlyvisible --name '^Marvolen$' >/dev/null 2>&1; }
has_ended() { ! kill -0 "$1" 2>/dev/null; }

cpack -G DEB --config "$build/CPackConfig.cmake" -B "$folder/packages" >"$folder/cpack.log" 2>&1 || fail "cpack"
program=$(echo "$folder"/packages/marvolen_*.deb)
cameras=$(echo "$folder"/packages/marvolen-camera-server_*.deb)

depends=$(dpkg-deb -f "$program" Depends)
for needed in libqt6widgets6 libqt6svg6 qt6-wayland; do
  [[ $depends == *"$needed"* ]] || fail "The package doesn't need $needed: $depends"
done

root=$folder/root
mkdir -p "$root"/var/lib/dpkg/{info,updates}
touch "$root/var/lib/dpkg/status"
owner=()
if [[ $(id -u) -ne 0 ]]; then owner=(fakeroot); fi
package() {
  "${owner[@]}" dpkg --root="$root" --log="$folder/dpkg.log" --force-depends "$@" >>"$folder/dpkg.log" 2>&1 ||
    fail "dpkg $*"
}
installed() { (cd "$root" && find . -path ./var -prune -o ! -type d -print | sort); }

package --install "$program" "$cameras"
for file in usr/bin/{marvolen,marvolen-session,record_file,camera_server} \
  usr/share/applications/marvolen.desktop usr/share/metainfo/org.marvolen.Marvolen.metainfo.xml \
  usr/share/icons/hicolor/{16x16,22x22,24x24,32x32,48x48,64x64,128x128,256x256,512x512}/apps/marvolen.png \
  usr/share/icons/hicolor/scalable/apps/marvolen.svg \
  usr/share/man/man1/{marvolen,marvolen-session,record_file,camera_server}.1.gz \
  usr/share/doc/marvolen{,-camera-server}/{copyright,changelog.gz,changelog.Debian.gz} \
  usr/share/doc/marvolen/{user_guide.md,images/live.jpg}; do
  [[ -s $root/$file ]] || fail "Not installed: $file"
done
# What the guide shows and refers to is there, too.
guide=$root/usr/share/doc/marvolen
while read -r target; do
  [[ -e $guide/$target ]] || fail "The user guide refers to $target, which isn't installed."
done < <(grep -o '](\([a-z_/0-9]*\.[a-z]*\)' "$guide/user_guide.md" | cut -c3-)

# Everything that validates, where its checker is installed.
if command -v desktop-file-validate >/dev/null; then
  desktop-file-validate "$root/usr/share/applications/marvolen.desktop" || fail "desktop entry"
fi
if command -v appstreamcli >/dev/null; then
  appstreamcli validate --no-net "$root/usr/share/metainfo/org.marvolen.Marvolen.metainfo.xml" || fail "metainfo"
fi

# A user with an empty home who owns nothing else.
home=$folder/home
mkdir "$home"
chmod 755 "$folder" "$root"
user=()
if [[ $(id -u) -eq 0 ]]; then
  chown 65534:65534 "$home"
  user=(setpriv --reuid=65534 --regid=65534 --clear-groups)
fi
Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$folder/display" >"$folder/xvfb.log" 2>&1 &
processes+=($!)
until_true "a display" test -s "$folder/display"
DISPLAY=:$(<"$folder/display")
export DISPLAY

# run SETTING...: starts the program with these settings of the environment and ends it as a logout does.
run() {
  (cd / && exec "${user[@]}" env -i PATH=/usr/bin:/bin DISPLAY="$DISPLAY" QT_QPA_PLATFORM=xcb HOME="$home" "$@" \
    "$root/usr/bin/marvolen-session") >"$folder/marvolen.log" 2>&1 &
  local marvolen=$!
  processes+=("$marvolen")
  until_true "the window" has_window
  kill -TERM "$marvolen"
  until_true "the end of the program" has_ended "$marvolen"
  wait "$marvolen" || fail "The program ended with $?"
}

data=$home/.local/share/marvolen
run
[[ $(stat -c %s "$data/recinfo.bin") -eq 25280 ]] || fail "No settings were written."
[[ $(stat -c %a "$data") == 700 ]] || fail "Others may look into the user's folder."
run XDG_DATA_HOME="$home/elsewhere"
[[ -s $home/elsewhere/marvolen/recinfo.bin ]] || fail "XDG_DATA_HOME isn't obeyed."

mkdir -p "$data/drive_c"
echo "what was recorded" >"$data/drive_c/chl01.dbt"
before=$(cd "$home" && find . -type f -exec sha256sum {} + | sort)
package --install "$program" "$cameras"
package --purge marvolen marvolen-camera-server
[[ -z $(installed) ]] || fail "Left behind: $(installed)"
[[ $(cd "$home" && find . -type f -exec sha256sum {} + | sort) == "$before" ]] ||
  fail "The user's files have changed."
