# Sourced by ./run and ./test.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

step() { printf '\n== %s\n' "$*"; }

# Configures a preset once and builds it (all of it, or the targets given). The tool's output is shown only when it
# fails; progress goes to the terminal.
build_preset() {
    local preset=$1 log; shift
    mkdir -p build
    log=build/$preset.log
    if [ ! -e "build/$preset/build.ninja" ]; then
        cmake --preset "$preset" >"$log" 2>&1 || { cat "$log" >&2; return 1; }
    fi
    if [ -t 1 ]; then
        NINJA_STATUS='   [%f/%t] ' cmake --build --preset "$preset" ${1:+--target "$@"}
    else
        cmake --build --preset "$preset" ${1:+--target "$@"} >"$log" 2>&1 || { tail -n 60 "$log" >&2; return 1; }
        printf '   built (%s)\n' "$log"
    fi
}
