#!/usr/bin/env bash
# Collects what a seat with Creo needs into out/package: the plug-in without debug information, its message files,
# the doctor, the command-line generator of menu files, a registration file to adapt, the documentation and the licence.
set -euo pipefail
. "$(dirname "$0")/../scripts/common.sh"

lock_checkout
scripts/setup.sh run
build_preset windows-x86 orbikon_creo mnu_make orbikon_doctor
package=out/package
rm -rf "$package"
mkdir -p "$package"
binaries=(orbikon_creo.dll mnu_make.exe orbikon_doctor.exe)
for binary in "${binaries[@]}"; do i686-w64-mingw32-strip -o "$package/$binary" "build/windows-x86/$binary"; done
cp -r packaging/protk.dat docs LICENSE "$package/"
mkdir "$package/text"
cp -r text/*/ "$package/text/"
echo "$package:"
ls "$package"
