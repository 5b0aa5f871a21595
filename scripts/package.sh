#!/usr/bin/env bash
# Makes the Debian packages, build/packages/*.deb, and checks them: lintian's errors and warnings, desktop
# entry and AppStream data, and that they install, start, upgrade and go away as they should.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install_dependencies.sh packaging
cmake --preset release
cmake --build --preset release --target marvolen record_file camera_server marvolen_installed_files
rm -rf build/packages
cpack -G DEB --config build/release/CPackConfig.cmake -B build/packages
rm -rf build/packages/_CPack_Packages

lintian=(lintian --fail-on error,warning)
if [[ $(id -u) -eq 0 ]]; then lintian+=(--allow-root); fi
"${lintian[@]}" build/packages/*.deb
packaging/package_test.sh "$PWD/build/release"
ls -l build/packages/*.deb
