# Sourced by the scripts that run a program of the project: run_built makes sure that it is built.
# shellcheck shell=bash
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

# run_built PROGRAM PRESET SETUP SOURCES... -- ARGUMENTS...: becomes the program, built with the preset.
# Before that, on a new machine or when one of the sources is newer than the last build, it installs
# what is missing (a list of script/setup) and builds. What that prints goes to a log below build/,
# so that standard output is the program's alone.
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
        mkdir -p "$root/build" || die "no build folder can be made in $root"
        build_if_needed 9>"${stamp%.stamp}.lock"
    fi
    exec "$program" "$@"
}

# Whether the program is there and no source is newer than the moment its build began.
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

# Two calls at once build once. (Without flock, on a Mac, they had better not be at once.)
build_if_needed() (
    if command -v flock >/dev/null; then
        flock 9
    fi
    if is_built; then
        exit 0
    fi
    say "building $name, which takes a minute or two (log: $log)"
    trap '[ $? -eq 0 ] || { tail -n 20 "$log" >&2; say "could not be built; the whole log: $log"; }' EXIT
    build >"$log" 2>&1
)
