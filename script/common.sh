# Shared by the scripts beside this one, which source it: where the project lies, and what they
# say to people. Nothing here writes to standard output.
# shellcheck shell=bash disable=SC2034 # what is set here is used there
set -euo pipefail

root=$(CDPATH='' cd -P -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
me=script/${0##*/}

say() {
    printf '%s: %s\n' "$me" "$*" >&2
}

die() {
    say "$@"
    exit 1
}
