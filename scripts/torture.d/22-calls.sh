# shellcheck shell=bash
# Every call fails once.
# shellcheck disable=SC2153,SC2154 # what the frame sets
cases+=(failing-calls)

# fail_from CALL ERROR ONCE: the n-th such call fails, for every n, until a run goes through without.
fail_every() {
    local call=$1 error=$2 duration=$3 n=1
    while :; do
        try_begin "$call $n, $error $duration, $ENGINE, $START" "$ENGINE" "$START"
        faulty_start "fail $call $n $error $duration"
        window_wait
        if ! was_hit; then
            [[ $OUTCOME == closed ]] || wrong "without a fault: $OUTCOME"
            try_cancel
            break
        fi
        [[ $OUTCOME != late && $OUTCOME != died ]] || wrong "$OUTCOME"
        # shellcheck disable=SC2086 # several words
        judge old new $ALL_BETWEEN
        printf '%s %s %s\n' "$LABEL" "$OUTCOME" "$STATE" >> /tmp/calls.out
        mend
        try_end
        n=$((n + 1))
    done
    printf '%s %s\n' "$call" $((n - 1))
}

case_failing_calls() {
    local ENGINE START call
    for call in open write sync truncate rename unlink mkdir; do
        ENGINE=embedded START=incremental
        fail_every "$call" EIO ''
    done
}
