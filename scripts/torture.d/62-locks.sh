# shellcheck shell=bash
# The point of sale next door holds a lock on the store, for a moment or for long, or works on it
# without a pause.
# shellcheck disable=SC2153,SC2154 # what the frame sets
cases+=(locks busy-neighbour)

# Milliseconds that a lock is waited for.
patience_for() {
    PATIENCE=30000
    # SQLite's ODBC driver waits by itself, for longer than anybody here holds a lock.
    if [[ $ENGINE == odbc ]]; then PATIENCE=600000; elif [[ $1 == shared ]]; then PATIENCE=5000; fi
}

has_given_up() { ! is_running "$WINDOW" || { has_log && torture__is_idle "$WINDOW"; }; }

# How long somebody who wants to read has to wait now, in milliseconds.
read_once() {
    now_ms
    local began=$NOW
    sqlite3 -cmd '.timeout 60000' "$STORE" 'SELECT COUNT(*) FROM KIND' > "$TRY/read" 2>&1
    now_ms
    echo $((NOW - began)) > "$TRY/read-after"
}

# lock_beside MILLISECONDS PHASE KIND: held while the program stands there, and so much longer.
lock_beside() {
    local milliseconds=$1 phase=$2 kind=$3 continued released reader=''
    patience_for "$kind"
    stop_at "$phase"
    hold_store "$kind"
    window_continue
    now_ms
    continued=$NOW
    if [[ $kind != exclusive ]]; then
        { sleep 0.2 && read_once; } 9>&- &
        reader=$!
        torture__track "$reader"
    fi
    until_true $((milliseconds / 1000)) has_given_up || true
    now_ms
    released=$NOW
    # Whoever has the lock can go on with it.
    case $kind in
        shared) hold_say 'SELECT COUNT(*) FROM PR; COMMIT' 30 ;;
        *) hold_say 'UPDATE KIND SET KIND_NAME = KIND_NAME; COMMIT' 30 ;;
    esac
    ((ANSWERED_AFTER <= HOLDER_WAITED)) || HOLDER_WAITED=$ANSWERED_AFTER
    hold_end
    window_wait
    if [[ -n $reader ]]; then
        torture__reap "$reader" || true
        [[ $(< "$TRY/read") =~ ^[0-9]+$ ]] || wrong "a reader was refused: $(< "$TRY/read")"
        (($(< "$TRY/read-after") <= READER_WAITED)) || READER_WAITED=$(< "$TRY/read-after")
        # One commit after the other may wait for its time.
        [[ $ENGINE == odbc || $phase == sweep ]] || (($(< "$TRY/read-after") < 6500)) ||
            wrong "a reader had to wait for $(< "$TRY/read-after") ms"
    fi
    if ((milliseconds < PATIENCE)); then
        [[ $OUTCOME == closed ]] || wrong "the receive did not succeed: $OUTCOME"
        ! has_log || wrong 'the receive wrote a log'
        judge new
        now_ms
        ((NOW - released <= LATE)) || LATE=$((NOW - released))
        return 0
    fi
    has_log || wrong 'no log of a run that has failed'
    case $phase in
        sweep | settings) judge batch batch-settings batch-swept ;;
        *)
            judge old
            [[ $OUTCOME == open ]] || wrong "the window did not stay open: $OUTCOME"
            ended_within 3000
            ((released - continued >= PATIENCE - 500)) ||
                wrong "it gave up after $((released - continued)) ms"
            ((released - continued <= GAVE_UP)) || GAVE_UP=$((released - continued))
            ;;
    esac
}

case_locks() {
    local line milliseconds engine phase kind lines=()
    HOLDER_WAITED=0 READER_WAITED=0 LATE=0 GAVE_UP=0
    for engine in embedded odbc; do
        for phase in first stamps collecting batch sweep settings; do
            for kind in shared reserved exclusive; do
                lines+=("1000 $engine $phase $kind")
            done
        done
        # The program has the one lock for writing itself.
        lines+=("1000 $engine middle shared" "1000 $engine commit shared")
    done
    lines+=(
        '8000 embedded stamps exclusive' '8000 embedded batch reserved' '8000 odbc batch exclusive'
        '8000 embedded settings exclusive' '8000 odbc commit shared'
        # Nobody can begin to read while the end of reading is waited for.
        '8000 embedded commit shared' '8000 embedded sweep shared'
        '40000 embedded stamps exclusive' '40000 embedded batch reserved'
        '40000 odbc batch exclusive' '120000 embedded sweep exclusive'
    )
    for line in "${lines[@]}"; do
        in_quick "$line" '1000 odbc batch exclusive' '1000 embedded commit shared' || continue
        read -r milliseconds engine phase kind <<< "$line"
        try_begin "$kind for $milliseconds ms, $phase, $engine" "$engine"
        lock_beside "$milliseconds" "$phase" "$kind"
        mend
        try_end
    done
    note "the window was gone $LATE ms after a lock"
    ((GAVE_UP == 0)) || note "gave one up after $GAVE_UP ms"
    note "who held it waited $HOLDER_WAITED ms, a reader $READER_WAITED ms"
}

# neighbour STATEMENT PAUSE: does it again and again until the window has gone.
neighbour() {
    local began longest=0 count=0 line=''
    coproc STORE_SHELL { sqlite3 -cmd '.timeout 30000' "$STORE" 2>&1; }
    while is_running "$WINDOW"; do
        now_ms
        began=$NOW
        printf "%s;\nSELECT 'answered';\n" "$1" >&"${STORE_SHELL[1]}"
        while read -r -t 60 line <&"${STORE_SHELL[0]}" && [[ $line != answered ]]; do
            [[ $line =~ ^[0-9]+$ ]] || echo "$line" >> "$TRY/neighbour-errors"
        done
        now_ms
        began=$((NOW - began))
        ((began <= longest)) || longest=$began
        count=$((count + 1))
        # The transaction of a reader is still open.
        [[ -z ${2:-} ]] || { sleep "$2" && echo 'COMMIT;' >&"${STORE_SHELL[1]}"; }
    done
    echo "$longest $count" > "$TRY/neighbour"
}

# work_beside WHO: during a whole receive; sets WAITED.
work_beside() {
    local count=0 neighbour=''
    window_start QUILLET_DEMO_PAUSE=1
    case $1 in
        reader) neighbour 'BEGIN; SELECT COUNT(*) FROM CT' 0.1 9>&- & ;;
        writer) neighbour 'UPDATE KIND SET KIND_NAME = KIND_NAME' 9>&- & ;;
    esac
    [[ $1 == nobody ]] || { neighbour=$! && torture__track "$neighbour"; }
    window_wait 120
    [[ $OUTCOME == closed ]] || wrong "the receive did not succeed: $OUTCOME"
    ! has_log || wrong 'the receive wrote a log'
    judge new
    WAITED=0
    if [[ -n $neighbour ]]; then
        torture__reap "$neighbour" || true
        read -r WAITED count < "$TRY/neighbour"
        ((count > 1)) || wrong "the $1 did nothing"
        [[ ! -e $TRY/neighbour-errors ]] ||
            wrong "the $1 was refused: $(head -n 1 "$TRY/neighbour-errors")"
    fi
    printf '   %s: %d times, waited for %d ms; the receive took %d ms\n' "$LABEL" "$count" \
        "$WAITED" "$TOOK"
}

case_busy_neighbour() {
    local engine start who
    local -A waited=([nobody]=0 [reader]=0 [writer]=0)
    for start in incremental full; do
        for engine in embedded odbc; do
            for who in nobody reader writer; do
                in_quick "$start $engine $who" 'incremental embedded reader' \
                    'incremental embedded writer' || continue
                try_begin "$who, $start, $engine" "$engine" "$start"
                work_beside "$who"
                ((WAITED <= waited[$who])) || waited[$who]=$WAITED
                mend
                try_end
            done
        done
    done
    note "a reader waited up to ${waited[reader]} ms, a writer ${waited[writer]} ms"
}
