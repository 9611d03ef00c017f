#!/usr/bin/env bash
# Makes what an administrator takes to seats with Creo, in out/package:
#   orbikon-creo-VERSION-setup.exe   the installer
#   orbikon-creo-VERSION.zip         the same files for those who run no installers
# The same commit and the same commands give the same bytes.
#
#   packaging/package.sh [--unlock COMMAND] [--sign COMMAND]
#
#   --unlock COMMAND   run over each DLL that Creo loads, with its name as last argument, before signing
#   --sign COMMAND     run the same way over each DLL and program, and over installer and uninstaller
set -euo pipefail
. "$(dirname "$0")/../scripts/common.sh"

usage() { sed -n '2,11s/^# \{0,1\}//p' "$root/packaging/package.sh"; }
unlock='' sign=''
while [ $# -gt 0 ]; do
    case $1 in
        --unlock | --sign)
            [ $# -gt 1 ] || { echo "package.sh: $1 needs a command" >&2; exit 2; }
            if [ "$1" = --unlock ]; then unlock=$2; else sign=$2; fi
            shift 2 ;;
        --help) usage; exit 0 ;;
        *) echo "package.sh: unknown argument '$1'" >&2; usage >&2; exit 2 ;;
    esac
done

# Run by ./test, this holds the checkout already.
[ -n "${ORBIKON_IS_LOCKED:-}" ] || lock_checkout
step 'Set-up: packages'
scripts/setup.sh packaging
step 'Build: plug-in, tools and simulator of both bit widths'
build_preset windows-x86 orbikon_creo mnu_make orbikon_doctor orbikon_probe obk_ctrlr obk_daemon obk_panel obk_ctl
build_preset windows-x64 orbikon_creo orbikon_doctor orbikon_probe obk_ctrlr obk_daemon obk_panel obk_ctl

version=$(sed -n 's/^project(.* VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
name=orbikon-creo-$version
package=out/package
work=build/package
x86=build/windows-x86 x64=build/windows-x64
components=(base plugin32 plugin64 tools documents simulator)

# put COMPONENT FOLDER FILE [NAME]: a file as it will lie below the plug-in's folder
put() {
    mkdir -p "$work/$1/$2"
    cp "$3" "$work/$1/$2/${4:-$(basename "$3")}"
}
put_text() {  # the same with the line ends of Windows
    put "$@"
    sed -i 's/\r*$/\r/' "$work/$1/$2/${4:-$(basename "$3")}"
}

collect() {
    local file
    put_text base . LICENSE LICENSE.txt
    put_text base . THIRD-PARTY.txt
    for file in text/*/*.txt; do put_text base "$(dirname "$file")" "$file"; done
    put plugin32 x86 $x86/orbikon_creo.dll
    put plugin64 x64 $x64/orbikon_creo.dll
    put plugin64 tools $x64/orbikon_doctor.exe orbikon_doctor_64.exe  # looks at what only a 64-bit program can load
    put tools tools $x86/orbikon_doctor.exe
    put tools tools $x86/mnu_make.exe
    put tools x86 $x86/orbikon_probe.dll
    put tools x64 $x64/orbikon_probe.dll
    for file in docs/*.md; do put_text documents docs "$file"; done
    for file in docs/pictures/*; do put documents docs/pictures "$file"; done
    put_text documents docs packaging/protk.dat
    put_text simulator simulator docs/without-device.md
    put simulator simulator/x86 $x86/workbench/creo/bin/obk_ctrlr_32.dll
    put simulator simulator/x64 $x64/workbench/creo/bin/obk_ctrlr_64.dll
    for file in obk_daemon obk_panel obk_ctl; do
        put simulator simulator/x86 $x86/workbench/$file.exe
        put simulator simulator/x64 $x64/workbench/$file.exe
    done
}

programs() { find "$work" \( -name '*.dll' -o -name '*.exe' \) | LC_ALL=C sort; }
over_each() {  # over_each COMMAND FILE...: the command with a file behind it
    local command=$1 file; shift
    for file in "$@"; do bash -c "$command \"\$1\"" - "$file" || { echo "package.sh: '$command $file' failed" >&2; exit 1; }; done
}

# A macro for each component, which takes its files.
files_macros() {
    local component file folder
    for component in "${components[@]}"; do
        echo "!macro Files_$component"
        (cd "$work/$component" && find . -type f | LC_ALL=C sort) | while read -r file; do
            file=${file#./}
            folder=$(dirname "$file")
            [ "$folder" != . ] || folder=
            printf '  ${Put} "%s" "%s" "%s"\n' "${folder//\//\\}" "$(basename "$file")" "$root/$work/$component/$file"
        done
        echo '!macroend'
    done
}

step 'Package'
# In place of the time of day wherever a file takes one.
commit_time=$(git log -1 --format=%ct 2>/dev/null || echo 315619200)
export SOURCE_DATE_EPOCH=$commit_time TZ=UTC
rm -rf "$package" "$work"
mkdir -p "$package" "$work"
collect
mapfile -t all < <(programs)
for file in "${all[@]}"; do
    case $file in
        */x64/* | *_64.*) x86_64-w64-mingw32-strip "$file" ;;
        *) i686-w64-mingw32-strip "$file" ;;
    esac
done
[ -z "$unlock" ] || over_each "$unlock" "$work"/plugin*/x*/orbikon_creo.dll "$work"/tools/x*/orbikon_probe.dll
[ -z "$sign" ] || over_each "$sign" "${all[@]}"

find "$work" -type f -exec chmod 644 {} +
find "$work" -exec touch -h -d "@$commit_time" {} +
files_macros >"$work/files.nsh"
signing=()
[ -z "$sign" ] || signing=("-DSIGN=$sign")
makensis -V2 -INPUTCHARSET UTF8 "-DVERSION=$version" "-DFILES=$root/$work/files.nsh" "-DROOT=$root" \
    "-DDOCTOR=$root/$work/tools/tools/orbikon_doctor.exe" "-DLICENCE=$root/$work/base/LICENSE.txt" \
    "-DOUTPUT=$root/$package/$name-setup.exe" "${signing[@]}" packaging/installer.nsi

mkdir "$work/$name"
for component in "${components[@]}"; do cp -rp "$work/$component/." "$work/$name/"; done
find "$work/$name" -exec touch -h -d "@$commit_time" {} +
(cd "$work" && find "$name" -type f | LC_ALL=C sort | zip -X -q -@ "$root/$package/$name.zip")
ls -l "$package"
