#!/usr/bin/env bash
# Installs what is needed on a Debian 12 machine. Does nothing, and asks apt nothing, when all of it is there. Run by
# ./run, ./test, ./bench and packaging/package.sh; works as root or through sudo.
#
#   scripts/setup.sh NEED...     suites of ./test, "run", "run-x64", "bench" or "packaging"
set -euo pipefail
exec 5>&-  # the lock of the run that has started this: no service that apt starts may keep it

lock_timeout=300  # seconds to wait for another installation on this machine

native_build=(cmake ninja-build g++ googletest nlohmann-json3-dev)
windows_build=(cmake ninja-build g++-mingw-w64-i686-posix googletest nlohmann-json3-dev)
x64_build=(g++-mingw-w64-x86-64-posix)
display=(xvfb fonts-wine)
wine_packages=(wine wine32:i386)  # of one source: libraries for two architectures must have one version

packages_for() {  # packages_for NEED
    case $1 in
        lint) echo "${native_build[@]}" clang-format clang-tidy ;;
        linux) echo "${native_build[@]}" ;;
        bench) echo "${native_build[@]}" pkg-config libspdlog-dev libinih-dev libhyperscan-dev ;;  # what it compares with
        linux-asan | linux-tsan) echo "${native_build[@]}" ;;
        linux-fuzz) echo "${native_build[@]}" clang libclang-rt-14-dev ;;
        windows-x86 | run) echo "${windows_build[@]}" "${display[@]}" "${wine_packages[@]}" ;;
        windows-x64 | run-x64) echo "${windows_build[@]}" "${x64_build[@]}" "${display[@]}" "${wine_packages[@]}" wine64 ;;
        packaging) echo "${windows_build[@]}" "${x64_build[@]}" nsis zip ;;
        package) echo "$(packages_for windows-x64) $(packages_for packaging)" ;;
        *) die "nothing is known of the need '$1'" ;;
    esac
}

say() { printf '[setup] %s\n' "$*"; }
die() { printf '[setup] error: %s\n' "$*" >&2; exit 1; }

as_root() { if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi; }

is_installed() { [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]; }

apt_install() {  # apt_install LOG OPTION... -- PACKAGE...
    local log=$1 options=(); shift
    while [ "$1" != -- ]; do options+=("$1"); shift; done
    shift
    as_root env DEBIAN_FRONTEND=noninteractive apt-get "${options[@]}" -o Dpkg::Use-Pty=0 \
        -o DPkg::Lock::Timeout="$lock_timeout" install -y --no-install-recommends "$@" >"$log" 2>&1
}

# The i386 index of the security suite sometimes lags behind its signature. The main suite alone, read through a
# source file and list folder of our own, then still has a consistent set of packages.
install_from_main_suite() {
    local log=$1 folder uri; shift
    # shellcheck disable=SC2016  # apt's variable, not the shell's
    uri=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Codename: bookworm' 'Component: main' |
          head -n 1)
    [ -n "$uri" ] || die "no Debian 12 main suite is configured on this machine; see $log"
    folder=$(mktemp -d)
    chmod 755 "$folder"
    mkdir -p "$folder/sources" "$folder/lists/partial"
    printf '%s\n' 'Types: deb' "URIs: $uri" 'Suites: bookworm' 'Components: main' 'Architectures: amd64 i386' \
        'Signed-By: /usr/share/keyrings/debian-archive-keyring.gpg' >"$folder/sources/main.sources"
    local main_only=(-o Dir::Etc::sourcelist=/dev/null -o "Dir::Etc::sourceparts=$folder/sources"
                     -o "Dir::State::lists=$folder/lists")
    local ok=0
    as_root apt-get "${main_only[@]}" update >>"$log" 2>&1 &&
        apt_install "$log.main" "${main_only[@]}" -- "$@" || ok=1
    as_root rm -rf "$folder"
    return $ok
}

# For who is neither root nor may become it by sudo.
tell_commands() {
    say 'installing packages needs root, and there is no sudo; somebody who is root can paste:' >&2
    if printf '%s\n' "${missing[@]}" | grep -q ':i386$'; then printf '    dpkg --add-architecture i386\n' >&2; fi
    printf '    apt-get update\n    apt-get install -y --no-install-recommends %s\n' "${missing[*]}" >&2
    exit 1
}

install_missing() {
    [ "$(id -u)" = 0 ] || command -v sudo >/dev/null || tell_commands
    local log; log=$(mktemp)
    say "installing ${missing[*]} (some minutes the first time; apt's output: $log)"
    if printf '%s\n' "${missing[@]}" | grep -q ':i386$'; then  # one foreign package: the architecture is needed
        dpkg --print-foreign-architectures | grep -qx i386 || as_root dpkg --add-architecture i386
    fi
    as_root apt-get update >"$log" 2>&1 || say "apt-get update reported errors; going on with the lists there are"
    local native=() foreign=() package
    for package in "${missing[@]}"; do
        # "wine" comes with wine32: alone it would bring the 64-bit Wine.
        case $package in wine | wine64 | *:i386) foreign+=("$package") ;; *) native+=("$package") ;; esac
    done
    if [ ${#native[@]} -gt 0 ]; then
        apt_install "$log.native" -- "${native[@]}" ||
            { say "the usual way failed; trying again from the main suite alone"
              install_from_main_suite "$log.native" "${native[@]}"; } ||
            { tail -n 15 "$log.native" "$log.native.main" >&2 2>/dev/null; die "could not install ${native[*]}"; }
    fi
    if [ ${#foreign[@]} -gt 0 ]; then
        local wine=("${wine_packages[@]}")
        [[ " ${foreign[*]} " != *' wine64 '* ]] || wine+=(wine64)
        apt_install "$log.i386" -- "${wine[@]}" ||
            { say "the 32-bit packages do not install the usual way (their security index lags);" \
                  "falling back to the main suite alone"
              install_from_main_suite "$log.i386" "${wine[@]}"; } ||
            { tail -n 15 "$log.i386" "$log.i386.main" >&2 2>/dev/null
              die "the 32-bit Wine packages (${foreign[*]}) cannot be had on this machine;" \
                  "nothing of the plug-in can be run or tested without them"; }
    fi
    for package in "${missing[@]}"; do
        is_installed "$package" || die "$package is still missing after the installation"
    done
    say "packages installed"
}

[ $# -gt 0 ] || die 'say what is needed'
wanted=()
for need in "$@"; do
    packages=$(packages_for "$need")
    for package in $packages; do
        [[ " ${wanted[*]} " == *" $package "* ]] || wanted+=("$package")
    done
done
missing=()
for package in "${wanted[@]}"; do is_installed "$package" || missing+=("$package"); done
if [ ${#missing[@]} -gt 0 ]; then
    command -v apt-get >/dev/null || die "this is no Debian machine; please install: ${missing[*]}"
    install_missing
fi
