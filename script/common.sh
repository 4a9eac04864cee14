# Sourced by the scripts in this folder: the project's path, and functions that print messages.
# Nothing here writes to standard output.
# shellcheck shell=bash disable=SC2034 # the scripts use the variables
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
