# shellcheck shell=bash
# One call after the other fails, and the same with all that come after it, until a run goes through
# without.
# shellcheck disable=SC2034,SC2153,SC2154 # what the frame sets
cases+=(failing-calls failing-calls-odbc failing-memory)

# Settings are saved, and a log's folder is made, by a run that has to.
prepare_for() {
    case $1 in
        rename | mkdir) forget_what_was_saved ;;&
        mkdir)
            rmdir "$COUNTER/log"
            repair "$REFUSE_BATCH"
            ;;
    esac
}

# fail_every CALL ERROR [lasting]
fail_every() {
    local n step=1
    # A tenth of them, from 1 on.
    [[ -z $QUICK ]] || step=$([[ $1 == write ]] && echo 17 || echo 2)
    for ((n = 1; ; n += step)); do
        try_begin "$1 $n, $2 ${3:-once}, $engine, $start" "$engine" "$start"
        prepare_for "$1"
        faulty_start "fail $1 $n $2 ${3:-}"
        window_wait
        was_hit || break
        [[ $OUTCOME != died && $OUTCOME != late ]] || wrong "the program: $OUTCOME"
        [[ $OUTCOME != silent || $1 == mkdir || -n ${3:-} ]] || wrong 'no log says why it failed'
        [[ $1 != mkdir ]] || repair 'DROP TRIGGER refuse'
        # What is written to a log is lost then as well.
        [[ -z ${3:-} ]] || UNLOGGED=yes
        # shellcheck disable=SC2086 # several words
        judge old new $ALL_BETWEEN
        mend_kind
        try_end
    done
    [[ $OUTCOME == closed || $1 == mkdir ]] || wrong "without a fault: $OUTCOME"
    ((n > 1)) || [[ $1 == truncate ]] || wrong "there is no such call"
    if [[ -n $torture__wrong ]]; then try_end; else try_cancel; fi
}

# Reading fails once; writing also as on a full disk, which goes on to be full.
fail_all() {
    local engine=$1 start=incremental call
    for call in write sync unlink rename mkdir open truncate read; do
        in_quick "$call" write sync unlink || continue
        fail_every "$call" EIO
        [[ -n $QUICK || $call == read ]] || fail_every "$call" ENOSPC lasting
    done
    [[ -z $QUICK ]] || return 0
    fail_every write ENOSPC
    start=full
    fail_every write ENOSPC lasting
    for call in sync unlink rename read; do
        fail_every "$call" EIO
    done
    start=first
    fail_every write EIO
}

case_failing_calls() { fail_all embedded; }
case_failing_calls_odbc() { fail_all odbc; }

# The window system and the toolkit end a program that has no memory left, wherever they need some.
case_failing_memory() {
    local i tries=120 died=0 engine
    [[ -z $QUICK ]] || tries=2
    for ((i = 0; i < tries; ++i)); do
        engine=embedded
        ((i % 3 < 2)) || engine=odbc
        try_begin "$engine" "$engine"
        count_of memory
        random "$COUNT"
        LABEL+=", allocation $((PICKED + 1)) of $COUNT"
        faulty_start "fail memory $((PICKED + 1)) ENOMEM"
        window_wait
        if [[ $OUTCOME == died ]]; then
            OUTCOME=killed died=$((died + 1))
        fi
        [[ $OUTCOME != late ]] || wrong 'the program hangs'
        # shellcheck disable=SC2086 # several words
        judge old new $ALL_BETWEEN
        mend_kind
        try_end
    done
    note "$died of $tries ended the program"
}
