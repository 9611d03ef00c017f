# shellcheck shell=bash
# Sourced by ./run, ./test and packaging/package.sh.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root" || exit 1

step() { printf '\n== %s\n' "$*"; }

# Ctrl-C is no failure of a step: says so, and ends.
on_interrupt() {  # on_interrupt REMARK
    trap "printf '\n%s: interrupted; %s\n' '$(basename "$0")' '$1' >&2; exit 130" INT TERM
}

# Build folders and Wine prefix belong to one run at a time; another one waits. Descriptor 5 holds the lock; wine.sh
# closes it, so that what Wine leaves running does not keep it.
lock_checkout() {
    mkdir -p build
    exec 5>build/.lock
    flock -n 5 || { echo 'waiting for another run in this checkout to end ...' >&2; flock 5; }
}

# Configures a preset once and builds it (all of it, or the targets given), a compiler for each processor: more of them take
# a tenth longer. The tool's output is shown only when it fails; progress goes to the terminal.
build_preset() {
    local preset=$1 log; shift
    log=build/$preset.log
    if [ ! -e "build/$preset/build.ninja" ]; then
        cmake --preset "$preset" >"$log" 2>&1 || { cat "$log" >&2; return 1; }
    fi
    if [ -t 1 ]; then
        NINJA_STATUS='   [%f/%t] ' cmake --build --preset "$preset" --parallel "$(nproc)" ${1:+--target "$@"}
    else
        cmake --build --preset "$preset" --parallel "$(nproc)" ${1:+--target "$@"} >"$log" 2>&1 || { tail -n 60 "$log" >&2; return 1; }
        printf '   built (%s)\n' "$log"
    fi
}
