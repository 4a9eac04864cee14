# Sourced by the scripts that run a program of the project: run_built builds it if necessary.
# shellcheck shell=bash
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

# run_built PROGRAM PRESET SETUP SOURCES... -- ARGUMENTS...: execs the program, built with the
# preset. When it is not built or one of the sources is newer than the last build, run_built first
# runs `script/setup SETUP` and builds it. Their output goes to a log in build/, so that standard
# output is the program's only.
run_built() {
    local name=$1 preset=$2 setup=$3 sources=()
    shift 3
    while [ "$1" != -- ]; do
        sources+=("$1")
        shift
    done
    shift
    local program=$root/build/$preset/bin/$name
    local log=$root/build/${me#*/}.log stamp=$root/build/${me#*/}.stamp
    if ! is_built; then
        mkdir -p "$root/build" || die "the build folder in $root could not be created"
        build_if_needed 9>"${stamp%.stamp}.lock"
    fi
    exec "$program" "$@"
}

# Whether the program exists and no source is newer than the start of its build.
is_built() (
    [ -x "$program" ] && [ -e "$stamp" ] && cd "$root" &&
        [ -z "$(find CMakeLists.txt CMakePresets.json cmake "${sources[@]}" -newer "$stamp")" ]
)

build() {
    touch "$stamp.begun"
    "$root/script/setup" "$setup"
    (cd "$root" && cmake --preset "$preset")
    cmake --build "$root/build/$preset"
    mv "$stamp.begun" "$stamp"
}

# Concurrent calls build once. (Not without flock, as on a Mac: do not run two at the same time.)
build_if_needed() (
    if command -v flock >/dev/null; then
        flock 9
    fi
    if is_built; then
        exit 0
    fi
    say "building $name, which takes a minute or two (log: $log)"
    # The shell may run the trap with the output of `build` still in the log.
    exec 8>&2
    trap '[ $? -eq 0 ] || { tail -n 20 "$log" >&2; say "the build failed; the whole log: $log"; } 2>&8' EXIT
    build >"$log" 2>&1
)
