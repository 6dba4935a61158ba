# shellcheck shell=bash
# Somebody means the head office's server ill, from other addresses than the counter's, while the
# counter receives. It must receive as ever, and the server stay within its bounds and end as told.
# shellcheck disable=SC2153,SC2154 # what the frame sets
cases+=(hostile)

HOSTILE_MEMORY=320 # MiB that a server may have used at most
HOSTILE_LATE=15000 # milliseconds more than an undisturbed receive takes
HOSTILE_DRAIN=5    # seconds

# ---- a server of its own -------------------------------------------------------------------------

# guarded_start [HANDLES]: a server that answers for the chain alone, with so many handles at most.
guarded_start() {
    local arguments=(--listen 127.0.0.1:0 --object "$HEAD_OFFICE_OBJECT" --port-file "$TRY/port")
    local server=$torture__programs/quillet-headoffice
    head_office_guards "$server"
    ((${#GUARDS[@]} == 0)) ||
        arguments+=("${GUARDS[@]}" --allow 127.0.0.0/8 --drain "$HOSTILE_DRAIN")
    mkdir -p "$TRY/files"
    chmod 777 "$TRY/files"
    (
        # What it makes by a relative name is found there, too.
        cd "$TRY/files" || exit
        [[ -z ${1:-} ]] || ulimit -n "$1"
        ODBCSYSINI=$CHAIN_ODBCSYSINI exec "$server" "${arguments[@]}"
    ) > "$TRY/server.log" 2>&1 9>&- &
    GUARDED=$!
    torture__track "$GUARDED"
    until_true 10 test -s "$TRY/port" || wrong "no server: $(< "$TRY/server.log")"
    GUARDED_PORT=$(< "$TRY/port")
    counter_asks "$GUARDED_PORT"
}

# guarded_memory: MEMORY is the most it has had, in MiB.
guarded_memory() {
    MEMORY=$(awk '/^VmHWM/ { print int($2 / 1024) }' "/proc/$GUARDED/status" 2> /dev/null) || true
    [[ -n $MEMORY ]] || { MEMORY=0 && wrong 'the server is gone'; }
    ((MEMORY <= HOSTILE_MEMORY)) || wrong "the server has had $MEMORY MiB"
    ((MEMORY <= HOSTILE_MOST)) || HOSTILE_MOST=$MEMORY
}

# It is told to end while it is attacked.
guarded_end() {
    local asked code=0
    now_ms
    asked=$NOW
    kill -TERM "$GUARDED" 2> /dev/null || true
    if until_true $((HOSTILE_DRAIN + 5)) torture__is_gone "$GUARDED"; then
        torture__reap "$GUARDED" || code=$?
        ((code == 0)) || wrong "the server ended with $code"
        now_ms
        ((NOW - asked <= HOSTILE_END)) || HOSTILE_END=$((NOW - asked))
    else
        wrong "the server did not end within $((HOSTILE_DRAIN + 5)) s"
        kill -KILL "$GUARDED" 2> /dev/null || true
        torture__reap "$GUARDED" || true
    fi
    counter_asks "$HEAD_OFFICE_PORT"
}

# ---- and those who attack it ---------------------------------------------------------------------

hostile_run() {
    "$torture__tools/torture_hostile" --kind "$1" --server "$GUARDED_PORT" \
        --object "$HEAD_OFFICE_OBJECT" --connection "$(chain_db_connection_string)" \
        --folder "$TRY/files" --seed "$PICKED" \
        --driver "$(sed -n '/SQLite3/,$s/^Driver=//p' "$CHAIN_ODBCSYSINI/odbcinst.ini")"
}

hostile_start() {
    hostile_run "$1" > "$TRY/hostile.log" 2>&1 9>&- &
    HOSTILE=$!
    torture__track "$HOSTILE"
    until_true 10 grep -q attacking "$TRY/hostile.log" || wrong "no attack: $(< "$TRY/hostile.log")"
}

hostile_end() {
    kill -TERM "$HOSTILE" 2> /dev/null || true
    torture__reap "$HOSTILE" || true
}

queries_of_leavers() {
    chain_db_sql --skip-column-names --execute="SELECT COUNT(*) FROM
        information_schema.PROCESSLIST WHERE INFO LIKE 'SELECT SLEEP%'"
}
no_queries_of_leavers() { [[ $(queries_of_leavers) == 0 ]]; }

must_receive() {
    takes
    window_start
    window_wait 40
    must_succeed
    ((TOOK <= TAKES + HOSTILE_LATE)) || wrong "it took $TOOK ms, and undisturbed $TAKES"
    ((TOOK - TAKES <= HOSTILE_DELAY)) || HOSTILE_DELAY=$((TOOK - TAKES))
}

# attack_try KIND [HANDLES]: as long as the counter receives, and again when the server has to end.
attack_try() {
    try_begin "$1"
    random 100000
    guarded_start "${2:-}"
    hostile_start "$1"
    must_receive
    if [[ $1 == leavers ]]; then
        until_true 5 no_queries_of_leavers ||
            wrong "$(queries_of_leavers) queries still run for nobody"
    fi
    hostile_end
    guarded_memory
    mend
    hostile_start "$1"
    guarded_end
    hostile_end
    # What a server has left behind is not the next one's fault.
    until_true 40 no_queries_of_leavers || wrong 'queries of a server that has ended do not end'
    try_end
}

# ---- what is sent once ---------------------------------------------------------------------------

# Nothing of it may be taken for a call and done, but the honest one at the end, which shows that
# calls are understood at all.
judge_answers() {
    local answered
    answered=$(sed -n '/^ignorable/!s/: answered.*//p' "$TRY/hostile.log" | paste -sd,)
    [[ $answered == honest ]] || wrong "answered: ${answered:-nothing, not even an honest call}"
    ! grep -q 'with the secret' "$TRY/hostile.log" ||
        wrong "told: $(grep 'with the secret' "$TRY/hostile.log" | sed 's/: .*//' | paste -sd,)"
}

garbage_try() {
    try_begin garbage
    random 100000
    guarded_start
    hostile_run garbage > "$TRY/hostile.log" 2>&1 || wrong "no attack: $(< "$TRY/hostile.log")"
    judge_answers
    must_receive
    guarded_memory
    mend
    guarded_end
    try_end
}

# The chain's user may write files here: who may not would prove nothing about the server.
sql_try() {
    local before file user="'$CHAIN_USER'@'$CHAIN_HOST'"
    try_begin 'statements and connection strings'
    random 100000
    mkdir "$TRY/files"
    echo top-secret > "$TRY/files/secret"
    chain_db_sql << SQL
GRANT FILE ON *.* TO $user;
SET GLOBAL local_infile = ON;
INSERT INTO POS (RCT_CODE, POS_ID) VALUES ('9998', '91');
SQL
    before=$(office_data)
    guarded_start
    hostile_run sql > "$TRY/hostile.log" 2>&1 || wrong "no attack: $(< "$TRY/hostile.log")"
    judge_answers
    grep -q '^elsewhere: nobody came$' "$TRY/hostile.log" || wrong 'it went to another server'
    diff <(echo "$before") <(office_data) > "$TRY/changed" ||
        wrong "it changed $(sed -n 's/^> //p' "$TRY/changed" | cut -f 1 | paste -sd,)"
    for file in "$TRY/files"/*; do
        [[ $file == */secret ]] || wrong "it made a file: ${file##*/}"
    done
    chain_db_sql --skip-column-names --execute="SHOW TABLES LIKE 'HOSTILE%'" |
        sed 's/.*/DROP TABLE &;/' | chain_db_sql
    chain_db_sql << SQL
REVOKE FILE ON *.* FROM $user;
DELETE FROM POS WHERE RCT_CODE IN ('9998', '9999');
SQL
    must_receive
    guarded_memory
    mend
    guarded_end
    try_end
}

case_hostile() {
    local kind handles
    HOSTILE_MOST=0 HOSTILE_END=0 HOSTILE_DELAY=0
    [[ -r /proc/self/status ]] || { skip 'no /proc' && return 0; }
    for kind in half-heads drip-body leavers unread large-bodies handles flood; do
        in_quick $kind half-heads leavers || continue
        handles=''
        [[ $kind != handles ]] || handles=64
        attack_try $kind $handles
    done
    ! in_quick garbage || garbage_try
    sql_try
    note "at most $HOSTILE_MOST MiB, $HOSTILE_DELAY ms late, end after $HOSTILE_END ms"
}
