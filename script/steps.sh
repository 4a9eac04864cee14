# Runs the steps of a script that sources this file. A step is a function step_NAME without
# arguments. It fails at its first failing command; it is skipped when it ends with status 77, and
# its last line of output is the reason. Its output is in $logs/NAME.log.
#
# Some tests and steps are skipped where the machine cannot run them. With CI set, only those in
# $allowed_skips may be: one shell pattern per line, `step NAME` for a step; # begins a comment.
# shellcheck shell=bash disable=SC2154 # $logs and $allowed_skips are set by the script

is_step() {
    declare -F "step_$1" >/dev/null
}

# The end of the log of a failed step, without passed tests and compiler progress.
tail_of_log() {
    sed -E '/^ +Start +[0-9]+: |(Passed|\*Skipped) +[0-9.]+ sec$|^\[[0-9]+\/[0-9]+\] /d' "$1" |
        tail -n 100
}

# The names of the skipped tests, from the list at the end of CTest's output.
skipped_tests() {
    sed -nE 's/^[[:space:]]+[0-9]+ - (.*) \(Skipped\)$/\1/p' "$1"
}

# row NAME OUTCOME SECONDS PROCESSOR-SECONDS: prints a row of the table.
row() {
    printf '   %-10s %-8s %8.1f s %10.1f s of processor\n' "$@"
}

# run_step STEP: prints its start and its duration. Appends to `table`, `failed`, `skipped`, `took`.
# Must not be called in a condition, where the shell would not stop at a step's first failing
# command.
run_step() {
    local log=$logs/$1.log TIMEFORMAT='%R %U %S' status outcome=held seconds processor name
    echo "== $1"
    set +e
    {
        time {
            (
                set -e
                "step_$1"
            ) >"$log" 2>&1 </dev/null
        }
    } 2>"$log.time"
    status=$?
    set -e
    read -r seconds processor <<<"$(awk 'END { print $1, $2 + $3 }' "$log.time")"
    rm -f "$log.time"
    if [ "$status" -eq 77 ]; then
        outcome=skipped
        echo "== $1 was skipped: $(tail -n 1 "$log" | sed 's/^.*skipped: //')"
        skipped+=("step $1")
    elif [ "$status" -ne 0 ]; then
        outcome=FAILED
        tail_of_log "$log"
        echo "== $1 FAILED after $seconds s; the whole log: ${log#"$PWD/"}"
        failed+=("$1")
    else
        echo "== $1 held, $seconds s"
    fi
    while IFS= read -r name; do
        [ -z "$name" ] || skipped+=("$name")
    done <<<"$(skipped_tests "$log")"
    table+=("$(row "$1" "$outcome" "$seconds" "$processor")")
    took+=("$seconds $processor")
}

# may_be_skipped NAME: whether a line of the list allows it.
may_be_skipped() {
    local pattern
    while IFS= read -r pattern; do
        pattern=${pattern%%#*}
        pattern=${pattern%"${pattern##*[![:space:]]}"}
        # shellcheck disable=SC2053 # a pattern
        if [ -n "$pattern" ] && [[ $1 == $pattern ]]; then
            return
        fi
    done <"$allowed_skips"
    return 1
}

# Prints the skipped steps and tests. With CI set, adds those that the list does not allow to
# `failed`.
report_skips() {
    local name
    [ ${#skipped[@]} -gt 0 ] || return 0
    echo "== skipped: ${#skipped[@]}"
    while IFS= read -r name; do
        if [ -z "${CI:-}" ] || may_be_skipped "$name"; then
            echo "   $name"
        else
            echo "   $name (not in ${allowed_skips#"$PWD/"})"
            failed+=("$name (skipped)")
        fi
    done <<<"$(printf '%s\n' "${skipped[@]}" | sort -u)"
}

# run_steps STEP...: runs all steps even when one fails. At the end prints a table of times and the
# skipped steps and tests; returns 1 when a step failed.
run_steps() {
    local step table=() failed=() skipped=() took=()
    for step in "$@"; do
        run_step "$step"
    done
    for step in "$@"; do
        if grep -q 'tests passed' "$logs/$step.log"; then
            echo "== $step: $(grep 'tests passed' "$logs/$step.log")"
        fi
    done
    report_skips
    echo "== times"
    printf '%s\n' "${table[@]}"
    # shellcheck disable=SC2046 # two words
    row all "" $(printf '%s\n' "${took[@]}" | awk '{ t += $1; p += $2 } END { print t, p }')
    if [ ${#failed[@]} -gt 0 ]; then
        echo "== FAILED:"
        printf '   %s\n' "${failed[@]}"
        return 1
    fi
    echo "== everything held"
}
