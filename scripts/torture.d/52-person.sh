# shellcheck shell=bash
# Somebody closes the window, or starts another: one window for one store, never two, and never none
# because of what a file says.
# shellcheck disable=SC2153,SC2154 # what the frame sets
cases+=(one-window end end-while-waiting)

phases=(first stamps collecting batch middle commit sweep settings last)

# ---- a second start ------------------------------------------------------------------------------

# A head office of its own, which sees whether a second window asks for anything.
second_office_start() {
    mkdir -p "$torture__dir/second-office"
    rm -f -- "$torture__dir/second-office/port"
    head_office_guards "$torture__programs/quillet-headoffice"
    ODBCSYSINI=$CHAIN_ODBCSYSINI "$torture__programs/quillet-headoffice" "${GUARDS[@]}" \
        --listen 127.0.0.1:0 --object "$HEAD_OFFICE_OBJECT" --port-file "$torture__dir/second-office/port" \
        > "$torture__dir/second-office/log" 2>&1 &
    SECOND_OFFICE=$!
    torture__track "$SECOND_OFFICE"
    until_true 10 test -s "$torture__dir/second-office/port"
    SECOND_ADDRESS=127.0.0.1:$(tr -d '\r\n' < "$torture__dir/second-office/port")
}

second_office_end() {
    kill -TERM "$SECOND_OFFICE"
    torture__reap "$SECOND_OFFICE" || true
}

asked() { grep -cE 'Getsql|PUTSQL' "$torture__dir/second-office/log" || true; }

# second_counter HOW: with settings of its own, whose store is the first's.
second_counter() {
    local store=$COUNTER config=$CONFIG
    if [[ $1 == symbolic || $1 == hard ]]; then
        store=$TRY/linked
        mkdir "$store"
        if [[ $1 == hard ]]; then
            ln "$STORE" "$store/food.MDB"
        else
            ln -s "$STORE" "$store/food.MDB"
        fi
    fi
    CONFIG=$TRY/second-config
    if [[ $1 == same ]]; then
        mkdir -p "$CONFIG/quillet"
    else
        COUNTER=$TRY/second
        torture__new_counter
    fi
    {
        sed "s/^1차서버=.*/1차서버=$SECOND_ADDRESS/" "$config/quillet/settings.ini"
        printf '\n[외식업/LOCATION]\nID=%s\n' "$store"
    } > "$CONFIG/quillet/settings.ini"
}

# second_start PHASE HOW: while the first stands in a phase.
second_start() {
    local first first_counter=$COUNTER first_config=$CONFIG second before asked
    stop_at "$1"
    first=$WINDOW
    before=$(cksum < "$STORE")
    asked=$(asked)
    second_counter "$2"
    if [[ $2 == other || $2 == reading ]]; then
        as_other_user || { window_kill && return 1; }
        # Who may not write it may not take its lock either, and cannot do any harm.
        [[ $2 == other ]] || chown root: "$STORE" "$first_counter"
    fi
    window_start
    second=$WINDOW
    stands "$second" || wrong 'the second window does not stand'
    [[ $(cksum < "$STORE") == "$before" ]] || wrong 'the second window has changed the store'
    COUNTER=$first_counter CONFIG=$first_config WINDOW=$first
    as_ourselves
    window_continue
    window_wait 30
    [[ $OUTCOME == closed ]] || wrong "the first window did not succeed: $OUTCOME"
    is_running "$second" || wrong 'the second window did not stay'
    WINDOW=$second
    window_end
    ended_within 3000
    ! has_log || wrong 'there is a log'
    asked=$(($(asked) - asked))
    if [[ $2 == reading ]]; then
        ((asked > 0)) || wrong 'the second head office does not see what it is asked'
    else
        ((asked == 0)) || wrong "the second window sent $asked queries"
    fi
    judge new
}

case_one_window() {
    local how phase engine
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

    second_office_start
    for how in same folder symbolic hard other reading; do
        for phase in "${phases[@]}"; do
            for engine in embedded odbc; do
                # How it meets the lock does not depend on the phase.
                [[ $how == same || $how == other || $phase == middle ]] || continue
                in_quick "$how $phase $engine" 'same commit odbc' 'symbolic middle embedded' \
                    'other settings embedded' || continue
                try_begin "a second start, $how, $phase, $engine" "$engine"
                if ! second_start "$phase" "$how"; then
                    skip 'no window of another user can be started here'
                    try_cancel
                    break 2
                fi
                mend
                try_end
            done
        done
    done
    second_office_end
}

# ---- the end -------------------------------------------------------------------------------------

# end_at PHASE STATE ...: asked for while the window stands in a phase.
end_at() {
    stop_at "$1"
    window_end 30
    OUTCOME=ended
    judge "${@:2}"
    # A run that has written goes to its end first.
    ended_within "$(if [[ $STATE == old ]]; then echo 1000; else echo 12000; fi)"
    ! has_log || wrong 'an end that was asked for is in a log'
}

end_while_silent() {
    local when states
    for when in first members settings; do
        in_quick "$when" first settings || continue
        try_begin "the office is silent: $when"
        states=old
        case $when in
            first) kill -STOP "$head_office__pid" ;;
            members) hold_table CT ;;
            settings) hold_table RCTBAS && states='batch batch-swept' ;;
        esac
        window_start
        [[ $when != settings ]] || wait_for_commit || wrong 'no commit'
        sleep 0.5
        window_end
        OUTCOME=ended
        kill -CONT "$head_office__pid"
        hold_end
        ended_within 3000
        # shellcheck disable=SC2086 # several words
        judge $states
        mend
        try_end
    done
}

# end_while_held yes|no STATE ...: whether the window ends while it waits for what somebody holds; if
# not, it ends when it has that.
end_while_held() {
    local ends=no
    kill -TERM "$WINDOW"
    window_continue
    sleep 1
    is_running "$WINDOW" || ends=yes
    [[ $ends == "$1" ]] || wrong "does it end while it waits? $ends"
    hold_end
    window_end 30
    OUTCOME=ended
    ended_within 12000
    judge "${@:2}"
}

case_end_while_waiting() {
    local line phase kind ends
    local held=('stamps exclusive yes' 'batch exclusive no' 'commit shared no' 'sweep exclusive no'
        'settings exclusive yes')
    for line in "${held[@]}"; do
        in_quick "$line" 'commit shared no' || continue
        read -r phase kind ends <<< "$line"
        try_begin "beside a lock, $line"
        stop_at "$phase"
        hold_store "$kind"
        case $phase in
            stamps) end_while_held "$ends" old ;;
            settings) end_while_held "$ends" batch-swept ;;
            *) end_while_held "$ends" new batch-swept ;;
        esac
        mend
        try_end
    done

    # There is no menu until the office goes on.
    try_begin 'without a menu' embedded full
    hold_table CT
    window_start
    until_true 10 is_emptied || wrong 'the old menu was not deleted'
    sleep 0.5
    end_while_held no new batch-swept
    mend
    try_end
    end_while_silent
}

is_emptied() { [[ $(sqlite3 "$STORE" 'SELECT COUNT(*) FROM PR' 2> /dev/null) == 0 ]]; }

case_end() {
    local engine start phase states
    for start in incremental full; do
        for engine in embedded odbc; do
            for phase in "${phases[@]}"; do
                in_quick "$phase $start $engine" 'collecting incremental odbc' \
                    'middle incremental embedded' 'collecting full embedded' || continue
                try_begin "$phase, $start, $engine" "$engine" "$start"
                case $phase in
                    first | stamps) states='old' ;;
                    # A first receive has deleted the old menu by then.
                    collecting) states=$([[ $start == full ]] && echo new batch-swept || echo old) ;;
                    settings | last) states='new' ;;
                    *) states='new batch-swept' ;;
                esac
                # shellcheck disable=SC2086 # several words
                end_at "$phase" $states
                mend
                try_end
            done
        done
    done
}
