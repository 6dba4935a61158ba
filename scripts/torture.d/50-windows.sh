# shellcheck shell=bash
# One window for one store: never two, and never none because of what a file says.
# shellcheck disable=SC2153,SC2154 # what the frame sets
cases+=(one-window end)

case_one_window() {
    local how
    for how in '' '4711\nquil' '4711\nquillet\nother-machine\n'; do
        in_quick "$how" '4711\nquillet\nother-machine\n' || continue
        try_begin "lock file '$how'"
        # shellcheck disable=SC2059 # it has line ends
        printf "$how" > "$COUNTER/quillet.lock"
        window_start
        window_wait 30
        judge new
        mend
        try_end
    done

    try_begin 'after a killed run'
    window_start QUILLET_DEMO_PAUSE=20
    wait_for_batch || wrong 'no batch'
    window_kill
    judge old
    mend
    try_end

    for how in folder symbolic hard; do
        in_quick "$how" symbolic || continue
        try_begin "a second start, $how"
        second_start "$how"
        mend
        try_end
    done
}

# A counter of its own, whose settings name the store of the first, and a head office of its own,
# which sees whether it asks for anything.
second_start() {
    local first first_counter=$COUNTER first_config=$CONFIG office store=$COUNTER second
    mkdir "$TRY/office" "$TRY/linked"
    ODBCSYSINI=$CHAIN_ODBCSYSINI "$torture__programs/quillet-headoffice" --listen 127.0.0.1:0 \
        --object "$HEAD_OFFICE_OBJECT" --port-file "$TRY/office/port" > "$TRY/office/log" 2>&1 &
    office=$!
    torture__track "$office"
    until_true 10 test -s "$TRY/office/port" || wrong 'no second head office'
    case $1 in
        symbolic) ln -s "$STORE" "$TRY/linked/food.MDB" && store=$TRY/linked ;;
        hard) ln "$STORE" "$TRY/linked/food.MDB" && store=$TRY/linked ;;
    esac

    window_start QUILLET_DEMO_PAUSE=20
    first=$WINDOW
    wait_for_batch || wrong 'no batch'
    COUNTER=$TRY/second CONFIG=$TRY/second-config
    torture__new_counter
    {
        sed "s/^1차서버=.*/1차서버=127.0.0.1:$(tr -d '\r\n' < "$TRY/office/port")/" \
            "$first_config/quillet/settings.ini"
        printf '\n[외식업/LOCATION]\nID=%s\n' "$store"
    } > "$CONFIG/quillet/settings.ini"
    window_start
    second=$WINDOW
    COUNTER=$first_counter CONFIG=$first_config WINDOW=$first
    window_wait 30
    [[ $OUTCOME == closed ]] || wrong "the first window did not succeed: $OUTCOME"
    sleep 1
    WINDOW=$second
    window_end
    kill -TERM "$office"
    torture__reap "$office" || true
    ! grep -q Getsql "$TRY/office/log" ||
        wrong "the second window sent $(grep -c Getsql "$TRY/office/log") queries"
    judge new
}

case_end() {
    local engine takes
    OUTCOME=ended
    try_begin 'the office is silent from the first'
    kill -STOP "$head_office__pid"
    window_start
    sleep 1
    window_end
    OUTCOME=ended
    kill -CONT "$head_office__pid"
    ended_within 3000
    judge old
    mend
    try_end

    try_begin 'the office falls silent'
    hold_table CT
    window_start
    sleep 1
    window_end
    OUTCOME=ended
    hold_end
    ended_within 3000
    judge old
    mend
    try_end

    try_begin 'the office is silent after the commit'
    hold_table RCTBAS
    window_start
    wait_for_commit || wrong 'no commit'
    sleep 0.3
    window_end
    OUTCOME=ended
    hold_end
    ended_within 3000
    judge batch batch-swept
    mend
    try_end

    for engine in embedded odbc; do
        in_quick "$engine" embedded || continue
        try_begin "undisturbed, for its time, $engine" "$engine"
        window_start QUILLET_DEMO_PAUSE=10
        window_wait
        judge new
        takes=$TOOK
        mend
        try_end

        try_begin "in mid batch, $engine" "$engine"
        window_start QUILLET_DEMO_PAUSE=10
        wait_for_batch || wrong 'no batch'
        random 500
        sleep_ms "$PICKED"
        window_end 30
        OUTCOME=ended
        ended_within $((takes + 1000))
        judge new batch batch-swept batch-settings
        mend
        try_end
    done
}
