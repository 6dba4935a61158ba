# shellcheck shell=bash
# The window of a try of torture.sh, which describes these functions: started, watched, ended, and
# made to wait for a store or a head office that somebody else holds.

# shellcheck disable=SC2034,SC2153,SC2154 # what torture.sh and a try set and read

# shellcheck disable=SC2120 # arguments are optional
window_start() {
    local odbc=$CHAIN_ODBCSYSINI
    [[ $ENGINE == embedded ]] || odbc=$torture__dir/odbc
    now_ms
    torture__started=$NOW
    env ODBCSYSINI="$odbc" XDG_CONFIG_HOME="$CONFIG" QT_QPA_PLATFORM=offscreen "$@" \
        "${WINDOW_AS[@]}" "$COUNTER/quillet" > "$TRY/window.log" 2>&1 < /dev/null 9>&- &
    WINDOW=$!
    torture__track "$WINDOW"
}

watched_start() {
    window_start LD_PRELOAD="$torture__tools/libtorture_calls.so" TORTURE_FOLDER="$TRY" "$@"
}

faulty_start() {
    rm -f -- "$TRY/report"
    watched_start TORTURE_FAULT="$1" TORTURE_REPORT="$TRY/report" "${@:2}"
}

# Whether the fault has come.
was_hit() { grep -qs '^hit' "$TRY/report"; }

is_stopped() {
    local stat
    { read -r stat < "/proc/$WINDOW/stat"; } 2> /dev/null || return 0
    stat=${stat##*) }
    [[ ${stat%% *} == [TZX] ]]
}

# Until `stop CALL N` has stopped it; false if it ended without.
wait_for_stop() { until_true "${1:-20}" is_stopped && was_hit; }
window_continue() { kill -CONT "$WINDOW"; }

stop_at() {
    local number=1 words='' first=1
    [[ $START != full ]] || first=2 # the old menu has been deleted
    case $1 in
        first) ;;
        stamps) words='SELECT UPD_PR' ;;
        collecting)
            words='SELECT USR_CODE'
            [[ $ENGINE != embedded ]] || words='SELECT [USR_CODE]'
            ;;
        batch) words=BEGIN number=$first ;;
        middle) words='UPDATE PROP' number=10 ;;
        commit) words=COMMIT number=$first ;;
        sweep) words=BEGIN number=$((first + 1)) ;;
        settings) words=BEGIN number=$((first + 2)) ;;
        last) words=COMMIT number=$((first + 2)) ;;
    esac
    faulty_start "stop statement $number" TORTURE_WORDS="$words" "${@:2}"
    wait_for_stop || wrong "it did not come to this: $1"
}

as_ourselves() { WINDOW_AS=(); }

as_other_user() {
    local runtime=$TRY/runtime-other
    [[ $(id -u) == 0 ]] || return 1
    mkdir -p "$runtime"
    chmod 700 "$runtime"
    # All that leads to the try, and all of it but the program, which may be a link.
    chmod a+x "$torture__dir" "$torture__dir/tries"
    find "$TRY" ! \( -type f -name quillet \) -exec chown 65534:65534 {} +
    WINDOW_AS=(setpriv --reuid=65534 --regid=65534 --clear-groups
        env HOME="$TRY" XDG_RUNTIME_DIR="$runtime")
    "${WINDOW_AS[@]}" test -x "$COUNTER/quillet" -a -r "$torture__tools/libtorture_calls.so"
}

has_download_log() { compgen -G "$COUNTER/log/*.txt" > /dev/null; }
has_daily_log() { compgen -G "$COUNTER/ZELMARO_LOG/*.TXT" > /dev/null; }
has_log() { has_download_log || has_daily_log; }

# USED is a process's processor time, in ticks.
torture__used() {
    local stat fields
    USED=gone
    { read -r stat < "/proc/$1/stat"; } 2> /dev/null || return 0
    read -r -a fields <<< "${stat##*) }"
    USED=$((fields[11] + fields[12]))
}

# Whether the window waits for nothing but a person: poll() without a limit, or with the half minute
# after which Qt looks through its kept pictures (by its numbers on x86-64 and, as ppoll(), on
# AArch64). A run never waits so long in one call.
torture__is_idle() {
    local call
    read -r -a call 2> /dev/null < "/proc/$1/syscall" || return 1
    case ${call[0]} in
        7) ((call[3] > 10000)) ;;
        73) [[ ${call[3]} == 0x0 ]] ;;
        *) return 1 ;;
    esac
}

# Not everywhere, and not into everybody's processes. Then a window that uses no time has to do.
torture__may_look() { read -r _ 2> /dev/null < "/proc/$1/syscall"; }

stands() {
    local idle before=''
    if ! torture__may_look "$1"; then
        until torture__used "$1" && [[ $USED == "$before" ]]; do
            before=$USED
            sleep 1.5
        done
        is_running "$1"
        return
    fi
    for ((idle = 0; idle < 5; ++idle)); do
        until_true 15 torture__is_idle "$1" || return 1
        sleep 0.02
    done
}

# shellcheck disable=SC2119,SC2120 # arguments are optional
window_wait() {
    local give_up used='' quiet_since=0 quiet=0 idle=0
    now_ms
    quiet_since=$NOW
    give_up=$((NOW + ${1:-60} * 1000))
    while is_running "$WINDOW"; do
        sleep 0.01
        torture__used "$WINDOW"
        if torture__is_idle "$WINDOW"; then idle=$((idle + 1)); else idle=0; fi
        if [[ $USED != "$used" ]]; then
            used=$USED idle=0
            now_ms
            quiet_since=$NOW
            continue
        fi
        now_ms
        quiet=$((NOW - quiet_since))
        # A store that is locked, or an office that does not answer, makes a run as quiet as its end
        # does, but never idle.
        ! { ((quiet > 1200)) && has_log && ! torture__may_look "$WINDOW"; } || idle=4
        if ((idle > 3 || quiet > ${WINDOW_QUIET:-15} * 1000)); then
            OUTCOME=silent
            ! has_log || OUTCOME=open
        elif ((NOW > give_up)); then
            OUTCOME=late
        else
            continue
        fi
        window_end
        return 0
    done 2> /dev/null # the shell tells of every process that is killed
    OUTCOME=closed ENDED_AFTER=0
    torture__reap "$WINDOW" || OUTCOME=died
    now_ms
    TOOK=$((NOW - torture__started))
}

window_kill() {
    OUTCOME=killed
    kill -KILL "$WINDOW" 2> /dev/null || OUTCOME=closed # it was faster
    torture__reap "$WINDOW" || true
}

# shellcheck disable=SC2120 # arguments are optional
window_end() {
    local asked
    now_ms
    asked=$NOW
    kill -TERM "$WINDOW" 2> /dev/null || true
    kill -CONT "$WINDOW" 2> /dev/null || true
    if until_true "${1:-5}" torture__is_gone "$WINDOW"; then
        now_ms
        ENDED_AFTER=$((NOW - asked))
    else
        ENDED_AFTER=never
        kill -KILL "$WINDOW" 2> /dev/null || true
    fi
    torture__reap "$WINDOW" || true
}

torture__is_gone() { ! is_running "$1"; }

torture__stamps_of() { sqlite3 -cmd '.timeout 0' "$STORE" 'SELECT * FROM UPD' 2> /dev/null; }

torture__batch_runs() { [[ -e $STORE-journal || -e $STORE-wal ]] || ! is_running "$WINDOW"; }

torture__has_committed() {
    local stamps
    is_running "$WINDOW" || return 0
    stamps=$(torture__stamps_of) && [[ $stamps != "$torture__stamps" ]]
}

wait_for_batch() { until_true "${1:-20}" torture__batch_runs; }

# Its stamps are those of the start until then, or what was last looked at: never those of the store
# itself, because reading it would roll back what a killed run has left.
wait_for_commit() {
    local before=$TRY/probe/food.MDB
    [[ -e $before ]] || before=$(start_of "$START")
    torture__stamps=$(sqlite3 "$before" 'SELECT * FROM UPD')
    until_true "${1:-20}" torture__has_committed
}

# Descriptor 9 keeps the holder's input open; nothing else may inherit it.
hold_start() {
    rm -f -- "$TRY/hold"
    mkfifo "$TRY/hold"
    "$@" < "$TRY/hold" > "$TRY/held" 2>&1 &
    torture__holder=$!
    torture__track "$torture__holder"
    exec 9> "$TRY/hold"
}

# Ends with an answer, so that it is known to be done.
hold_say() {
    now_ms
    ANSWERED_AFTER=$NOW
    printf "%s;\nSELECT 'answered';\n" "$1" >&9
    until_true "${2:-10}" grep -qs answered "$TRY/held" || wrong "no answer to: $1"
    now_ms
    ANSWERED_AFTER=$((NOW - ANSWERED_AFTER))
    ! grep -qi error "$TRY/held" || wrong "$1: $(< "$TRY/held")"
    : > "$TRY/held"
}

hold_end() {
    [[ -n $torture__holder ]] || return 0
    exec 9>&-
    until_true 5 torture__is_gone "$torture__holder" ||
        kill -KILL "$torture__holder" 2> /dev/null || true
    torture__reap "$torture__holder" || true
    torture__holder=''
}

hold_store() {
    local take='BEGIN EXCLUSIVE'
    case ${1:-} in
        shared) take='BEGIN; SELECT COUNT(*) FROM KIND' ;;
        reserved) take='BEGIN IMMEDIATE' ;;
    esac
    hold_start sqlite3 -cmd '.timeout 30000' "$STORE"
    hold_say "$take"
}

# The head office does not answer queries of a table until hold_end.
hold_table() {
    hold_start chain_db_sql --unbuffered --skip-column-names
    hold_say "LOCK TABLES $1 WRITE"
}
