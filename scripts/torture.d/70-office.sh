# shellcheck shell=bash
# A head office that misbehaves in mid run: at every one of its calls, gone and back again, and a
# counter whose clock is wrong.
# shellcheck disable=SC2153,SC2154 # what the frame sets
cases+=(office-queries office-restarts clock-jumps)

# ---- a head office between ---------------------------------------------------------------------

# office_start [ARGUMENT ...]: of torture_office (tests/torture/FaultyOffice.h has the faults). The
# counter's settings name it until office_end.
office_start() {
    rm -f -- "$TRY/office.port"
    "$torture__tools/torture_office" --office "$HEAD_OFFICE_PORT" \
        --port-file "$TRY/office.port" "$@" > "$TRY/office.log" 2>&1 9>&- &
    OFFICE=$!
    torture__track "$OFFICE"
    until_true 10 test -s "$TRY/office.port" || wrong 'no head office between'
    counter_asks "$(< "$TRY/office.port")"
}

office_end() {
    kill -TERM "$OFFICE" 2> /dev/null || true
    torture__reap "$OFFICE" || true
    counter_asks "$HEAD_OFFICE_PORT"
}

counter_asks() { sed -i "s/^1차서버=.*/1차서버=127.0.0.1:$1/" "$CONFIG/quillet/settings.ini"; }

office_was_hit() { grep -qs ': hit' "$TRY/office.log"; }

# Counts the calls of an undisturbed run. The last one is behind the commit; the answer to the one
# for categories makes a full run delete the menu.
count_calls() {
    local calls
    try_begin "undisturbed, $2, $1" "$1" "$2"
    office_start
    window_start
    window_wait
    office_end
    calls=$(grep -c ': passed on$' "$TRY/office.log") || true
    CATEGORIES=$(sed -n '/KD_ID,KD_NAME/{s/ .*//p;q}' "$TRY/office.log")
    [[ $calls -gt 10 && -n $CATEGORIES ]] || wrong "a run makes $calls calls"
    [[ ${CALLS:-$calls} == "$calls" ]] || wrong "a run makes $calls calls, another one $CALLS"
    CALLS=$calls
    must_succeed
    mend
    try_end
}

# ---- what must be ------------------------------------------------------------------------------

must_succeed() {
    [[ $OUTCOME == closed ]] || wrong "it did not succeed: $OUTCOME"
    ! has_log || wrong 'it wrote a log'
    judge new
    true_stamps || wrong "its stamps are $(repair 'SELECT * FROM UPD')"
}

# Whether they are the head office's time, give or take a few minutes.
true_stamps() {
    [[ $(repair "SELECT COUNT(*) FROM UPD WHERE
        abs(julianday(UPD_PR) - julianday('now', 'localtime')) < 0.005 AND
        UPD_PR = UPD_CT AND UPD_PR = UPD_USR AND UPD_PR = UPD_BAS AND UPD_PR = UPD_FN") == 1 ]]
}

# must_fail CALL WORDS: a call has failed, and a log says so in these words (a regular expression).
must_fail() {
    local state=old
    [[ $START != full ]] || (($1 <= CATEGORIES)) || state=emptied
    if (($1 < CALLS)); then
        stays_open_with download
        ! has_daily_log || wrong 'a roll-back is logged, of a batch that was never begun'
    else
        state=batch-swept
        [[ $OUTCOME == closed ]] || wrong "it did not close behind its commit: $OUTCOME"
    fi
    log_says "$2"
    [[ ! -e $TRY/office.log ]] || log_names_query "$1"
    judge $state
}

log_says() {
    local log
    log=$(tr -d '\r' < <(cat "$COUNTER"/log/*.txt 2> /dev/null))
    grep -qE -- "$1" <<< "$log" || wrong "no log says '$1': $log"
    grep -qE '^-?[1-9][0-9]*$' <<< "$log" || wrong "no log has an error's number: $log"
    ! grep -q '완료' <<< "$log" || wrong "a log of a failure says that all is well: $log"
}

# log_names_query CALL: what it was for stands in the first line.
log_names_query() {
    local query title
    query=$(sed -n "s/^$1 Getsql *//p" "$TRY/office.log")
    case $query in
        *'NOW()'* | *' BAS_OP1, BAS_OP2'* | *KD_ID,KD_NAME*) title=품목분류 ;;
        *' PR.PR_CODE'* | *' P.PR_CODE'*) title=품목 ;;
        *' PROP_CODE'*) title='품목(옵션설정)' ;;
        *' PRC.PR_CODE'*) title='품목(코스)' ;;
        *' PRO.PR_CODE'*) title='품목(옵션)' ;;
        *' PRS.PR_CODE'*) title='품목(세트)' ;;
        *' CT.CT_CODE'*) title=회원 ;;
        *' ST_CODE'*) title=사용자 ;;
        *' FN_CD1'*) title=계정과목 ;;
        *' RCT_NAME'*) title=사업장정보 ;;
        *' BAS_CODE'*) title=$( (($1 == CALLS)) && echo 가맹점별설정 || echo 설정) ;;
        *) title="a title for: $query" ;;
    esac
    [[ $(head -qn 1 "$COUNTER"/log/*.txt) == "$title 자료수신"* ]] ||
        wrong "call $1: the log does not say $title: $(head -qn 1 "$COUNTER"/log/*.txt)"
}

# WORDS of the log after a fault.
words_of() {
    case $1 in
        closed | reset) WORDS='unavailable: 127[^ ]* connection closed without a reply' ;;
        silent) WORDS='unavailable: 127[^ ]* .*(time|answer|reply)' ;;
        error) WORDS='unavailable: 127[^ ]* HTTP status 500' ;;
        page) WORDS='the server answered with a web page' ;;
        query) WORDS="nowhere' doesn't exist" ;;
        cut) WORDS='reply is cut short' ;;
        columns) WORDS='^3265$|has 0 columns' ;;
        garbage) WORDS='.' ;;
    esac
}

# ---- changed bytes that nobody can notice ------------------------------------------------------

UNDETECTED=0 NOT_MISSED=0

# The protocol has no check sum: other bytes in a text are another text. But what a garbled reply
# was for is all that may be wrong, and a receive from the beginning brings it back.
judge_garbage() {
    local tables
    look
    if [[ $OUTCOME != closed ]] || has_log; then
        garbage_failed "$1"
        return 0
    fi
    if [[ $STATE == new ]] && true_stamps; then
        judge new
        mend
        return 0
    fi
    UNDETECTED=$((UNDETECTED + 1))
    [[ $(head -n 1 "$TRY/dump") == ok ]] || wrong "the store is damaged: $(head -n 1 "$TRY/dump")"
    torture__difference new > /dev/null
    tables=$(sed -n 's/^[<>] \([A-Z]*\),.*/\1/p' "$TRY/difference-from-new" | sort -u | wc -l)
    ((tables <= 1)) || wrong "one garbled reply changed $tables tables"
    repair "$FROM_THE_BEGINNING"
    window_start
    window_wait
    forget_garbled_keys
    must_succeed
    mend
}

garbage_failed() {
    if (($1 == CALLS)); then
        log_says .
        judge batch-swept
    else
        ended_within 3000
        [[ $OUTCOME == open ]] || wrong "the window did not stay open: $OUTCOME"
        # Nothing but a whole reply deletes the menu, but that one may be this one.
        if [[ $START == full ]]; then judge old emptied; else judge old; fi
    fi
    mend
}

# A garbled key is a row of its own, which nothing ever deletes, and may have taken its right row's
# place in the order of categories.
forget_garbled_keys() {
    local table first second
    repair "ATTACH '$torture__dir/references/$START/new.MDB' AS good;
        UPDATE KIND SET KIND_ORDER = coalesce((SELECT KIND_ORDER FROM good.KIND AS g
            WHERE g.KIND_CODE = KIND.KIND_CODE), KIND_ORDER)"
    while read -r table; do
        first=$(repair "SELECT name FROM pragma_table_info('$table') WHERE cid = 0")
        second=$(repair "SELECT name FROM pragma_table_info('$table') WHERE cid = 1")
        repair "ATTACH '$torture__dir/references/$START/new.MDB' AS good;
            DELETE FROM main.$table WHERE (trim($first), trim($second)) NOT IN
                (SELECT trim($first), trim($second) FROM good.$table WHERE
                    $first IS NOT NULL AND $second IS NOT NULL)"
    done < <(printf '%s\n' KIND PR PROP CT USR BAS FN)
}

# ---- every call --------------------------------------------------------------------------------

# office_try FAULT CALL [ENGINE [START]]
office_try() {
    local fault=$1 call=$2
    try_begin "$fault at call $call, ${4:-incremental}, ${3:-embedded}" "${3:-}" "${4:-}"
    random 100000
    office_start --fault "$fault" --call "$call" --seed "$PICKED"
    window_start
    if [[ $fault == silent ]]; then
        until_true 20 office_was_hit || true
        random 300
        sleep_ms "$PICKED"
        window_end
        OUTCOME=ended
    else
        window_wait
    fi
    office_was_hit || wrong 'the fault has not come'
    office_end
    words_of "$fault"
    case $fault in
        garbage) judge_garbage "$call" ;;
        silent)
            ended_within 3000
            ! has_log || wrong 'it was ended, which is no failure, and wrote a log'
            if ((call < CALLS)); then judge old; else judge batch-swept; fi
            mend
            ;;
        columns)
            # A column that no receiver looks at is not missed.
            if [[ $OUTCOME == closed ]] && ! has_log; then
                NOT_MISSED=$((NOT_MISSED + 1))
                must_succeed
            else
                must_fail "$call" "$WORDS"
            fi
            mend
            ;;
        *)
            must_fail "$call" "$WORDS"
            mend
            ;;
    esac
    try_end
}

# What is odd, but whole: every call of a run.
harmless_try() {
    try_begin "$1 at every call, ${3:-incremental}, $2" "$2" "${3:-}"
    office_start --fault "$1" --calls-from 1
    window_start
    window_wait 120
    office_was_hit || wrong 'the fault has not come'
    office_end
    must_succeed
    mend
    try_end
}

# The version's report is no part of a receive: that fails, and the next run makes it.
report_try() {
    local settings reported="SELECT RECEIVE_VER FROM POS WHERE RCT_CODE = '1000' AND POS_ID = '01'"
    try_begin "the version's report, $1"
    settings=$CONFIG/quillet/settings.ini
    sed -i '/^RCVVERSION=/d' "$settings"
    chain_db_sql --execute="UPDATE POS SET RECEIVE_VER = '' WHERE RCT_CODE = '1000'"
    office_start --fault "$1" --call 1
    window_start
    window_wait
    office_was_hit || wrong 'the fault has not come'
    grep -q '^1 PUTSQL: hit' "$TRY/office.log" || wrong "the first call is no report"
    office_end
    must_succeed
    ! grep -q '^RCVVERSION=.' "$settings" || wrong 'a report that failed is noted as made'
    mend
    grep -q '^RCVVERSION=.' "$settings" || wrong 'the report was not made up for'
    [[ -n $(chain_db_sql --skip-column-names --execute="$reported") ]] ||
        wrong 'the head office has no version of it'
    try_end
}

# A try goes on while others are made. Somebody has to wait for its window meanwhile: after a minute
# of other processes its number may be another one's.
declare -A aside=()
window_aside() {
    now_ms
    torture__started=$NOW
    {
        window_start
        echo "$WINDOW" > "$TRY/pid"
        WINDOW_QUIET=150 window_wait 150
        echo "$OUTCOME $ENDED_AFTER" > "$TRY/outcome"
    } &
    torture__track $!
    until_true 10 test -s "$TRY/pid" || wrong 'no window'
    WINDOW=$(< "$TRY/pid")
    torture__track "$WINDOW"
}

window_taken_back() {
    until_true 200 test -s "$TRY/outcome" || wrong 'the window stays'
    read -r OUTCOME ENDED_AFTER < "$TRY/outcome"
    unset "torture__running[$WINDOW]"
}

set_aside() {
    local name
    for name in LABEL ENGINE START TRY COUNTER STORE CONFIG WINDOW OFFICE torture__started \
        torture__wrong; do
        aside[$1.$name]=${!name}
    done
}

take_back() {
    local name
    for name in LABEL ENGINE START TRY COUNTER STORE CONFIG WINDOW OFFICE torture__started \
        torture__wrong; do
        printf -v "$name" '%s' "${aside[$1.$name]}"
    done
}

# Nobody ends a window that waits: it gives up by itself.
silence_begin() {
    try_begin "silent until the counter gives up, call $((CALLS / 2))"
    office_start --fault silent --call $((CALLS / 2))
    window_aside
    set_aside collecting
    try_begin 'silent until the counter gives up, behind the commit' odbc
    office_start --fault silent --call "$CALLS"
    window_aside
    set_aside committed
    try_begin "silent until the counter gives up, the version's report"
    sed -i '/^RCVVERSION=/d' "$CONFIG/quillet/settings.ini"
    office_start --fault silent --call 1
    window_aside
    set_aside report
}

silence_end() {
    local which call after
    words_of silent
    for which in report collecting committed; do
        take_back $which
        window_taken_back
        office_was_hit || wrong 'the fault has not come'
        office_end
        if [[ $which == report ]]; then
            must_succeed
        else
            call=$CALLS
            [[ $which == committed ]] || call=$((CALLS / 2))
            must_fail "$call" "$WORDS"
            after=$(stat -c '%Y' "$COUNTER"/log/*.txt | head -n 1)
            after=$((after - torture__started / 1000))
            ((after >= 118 && after <= 130)) || wrong "it gave up after $after s"
        fi
        mend
        try_end
    done
}

case_office_queries() {
    local fault call place
    count_calls odbc full
    count_calls embedded incremental
    if [[ -n $QUICK ]]; then
        for fault in 'cut 8' "query $CALLS" 'columns 4' 'garbage 10' 'silent 5'; do
            # shellcheck disable=SC2086 # two words
            office_try $fault
        done
        office_try reset 6 odbc full
        harmless_try fewer embedded
        return 0
    fi
    silence_begin
    for fault in closed reset cut silent garbage page error query columns; do
        for ((call = 1; call <= CALLS; ++call)); do
            office_try $fault $call
        done
        for place in 'odbc incremental' 'odbc incremental' 'embedded full' 'odbc full'; do
            # A full run's deleted menu makes it wait for the office, whoever wants its end.
            if [[ $fault == silent && $place == *full ]]; then
                random "$CATEGORIES"
            else
                random "$CALLS"
            fi
            # shellcheck disable=SC2086 # two words
            office_try $fault $((PICKED + 1)) $place
        done
    done
    for fault in more fewer; do
        harmless_try $fault embedded
        harmless_try $fault odbc full
    done
    harmless_try slow embedded
    for fault in closed error query; do
        report_try $fault
    done
    silence_end
    note "garbage undetected: $UNDETECTED (no check sum)"
    note "columns not missed: $NOT_MISSED"
}

# ---- gone and back again -----------------------------------------------------------------------

start_office_again() {
    ODBCSYSINI=$CHAIN_ODBCSYSINI head_office_start "$torture__dir" \
        "$torture__programs/quillet-headoffice" --port-file "$torture__dir/port"
}

office_data() {
    chain_db_sql --skip-column-names --execute='SHOW TABLES' | sed 's/^/CHECKSUM TABLE /; s/$/;/' |
        chain_db_sql --skip-column-names
}

kill_part() {
    if [[ $1 == server ]]; then head_office_kill; else chain_db_kill; fi
}

start_part() {
    if [[ $1 == server ]]; then
        start_office_again
    else
        chain_db_start "$torture__dir/db"
        [[ $(office_data) == "$OFFICE_DATA" ]] || wrong 'the head office has other data'
    fi
}

# Whether a query waits for a table that is locked.
query_waits() { chain_db_sql --execute='SHOW PROCESSLIST' | grep -q 'Waiting for table'; }

# between_try server|database CALL ENGINE START: a call is made when it is back.
between_try() {
    try_begin "$1 killed and started before call $2, $4, $3" "$3" "$4"
    office_start --fault wait --call "$2" --file "$TRY/go-on"
    window_start
    until_true 20 office_was_hit || wrong 'the fault has not come'
    kill_part "$1"
    start_part "$1"
    : > "$TRY/go-on"
    window_wait
    office_end
    must_succeed
    mend
    try_end
}

# gone_try server|database CALL ENGINE START: it is gone from a call on.
gone_try() {
    try_begin "$1 killed before call $2, $4, $3" "$3" "$4"
    office_start --fault wait --call "$2" --file "$TRY/go-on"
    window_start
    until_true 20 office_was_hit || wrong 'the fault has not come'
    kill_part "$1"
    : > "$TRY/go-on"
    window_wait
    office_end
    if [[ $1 == server ]]; then
        must_fail "$2" 'unavailable: 127[^ ]* connection closed without a reply'
    else
        must_fail "$2" "(Can't connect|database does not answer)"
    fi
    start_part "$1"
    mend
    try_end
}

# middle_try server|database TABLE CALL ENGINE START: while it answers one.
middle_try() {
    try_begin "$1 killed in its answer about $2, $5, $4" "$4" "$5"
    hold_table "$2"
    window_start
    until_true 20 query_waits || wrong 'no query waits'
    kill_part "$1"
    window_wait
    hold_end
    if [[ $1 == server ]]; then
        must_fail "$3" 'unavailable: 127[^ ]* connection closed without a reply'
    else
        must_fail "$3" '(Lost connection|connection to the database server is lost)'
    fi
    start_part "$1"
    mend
    try_end
}

case_office_restarts() {
    local part
    count_calls embedded incremental
    OFFICE_DATA=$(office_data)
    for part in server database; do
        if [[ -n $QUICK ]]; then
            if [[ $part == server ]]; then
                middle_try $part RCTBAS "$CALLS" embedded incremental
            else
                middle_try $part CT 10 odbc full
            fi
            continue
        fi
        random $((CALLS - 1))
        between_try $part $((PICKED + 1)) embedded incremental
        between_try $part "$CALLS" odbc incremental
        random $((CALLS - 1))
        between_try $part $((PICKED + 1)) odbc full
        random $((CALLS - 1))
        gone_try $part $((PICKED + 1)) odbc incremental
        gone_try $part "$CALLS" embedded incremental
        random $((CALLS - 1))
        gone_try $part $((PICKED + 1)) embedded full
        middle_try $part CT 10 embedded incremental
        middle_try $part CT 10 odbc full
        middle_try $part RCTBAS "$CALLS" embedded full
        middle_try $part RCTBAS "$CALLS" odbc incremental
    done
}

# ---- the counter's clock -----------------------------------------------------------------------

# Stamps are the head office's time, so nobody may notice.
case_clock_jumps() {
    local engine seconds looks i
    for engine in embedded odbc; do
        try_begin "undisturbed, $engine" "$engine"
        faulty_start 'jump clock 1000000000 1'
        window_wait
        looks=$(sed -n 's/^clock //p' "$TRY/report")
        must_succeed
        try_end
        for seconds in 86400 -86400; do
            for i in 1 2 3; do
                in_quick "$engine $seconds $i" 'embedded 86400 1' 'odbc -86400 2' || continue
                # The number differs a little from run to run.
                random $((looks * i / 4))
                try_begin "$seconds s at look $((PICKED + 1)) of $looks, $engine" "$engine"
                faulty_start "jump clock $((PICKED + 1)) $seconds"
                window_wait
                was_hit || wrong 'the fault has not come'
                must_succeed
                mend
                try_end
            done
        done
        note "$looks looks at the clock, $engine"
    done
}
