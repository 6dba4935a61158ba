# shellcheck shell=bash
# The point-of-sale program goes on selling during a receive.
# shellcheck disable=SC2153,SC2154 # what the frame sets
cases+=(reader)
HEAD_OFFICE_DATABASES+=(quillet_test_many)

# Reads until the window has gone; sets REFUSED, milliseconds of the longest stretch without an
# answer, and READ, how often it was answered.
read_beside() {
    local refused_since='' refused end=$((SECONDS + 180))
    REFUSED=0 READ=0
    while is_running "$WINDOW" && ((SECONDS < end)); do
        if sqlite3 -cmd '.timeout 0' "$STORE" 'SELECT COUNT(*) FROM KIND' > /dev/null 2>&1; then
            READ=$((READ + 1))
            now_ms
            refused=$((NOW - ${refused_since:-$NOW}))
            refused_since=''
            ((refused <= REFUSED)) || REFUSED=$refused
        elif [[ -z $refused_since ]]; then
            now_ms
            refused_since=$NOW
        fi
        sleep 0.1
    done
    now_ms
    refused=$((NOW - ${refused_since:-$NOW}))
    ((refused <= REFUSED)) || REFUSED=$refused
}

case_reader() {
    local members=30000 many=quillet_test_many found
    [[ -z $QUICK ]] || members=4000
    chain_db_load "$many"
    {
        printf 'SET @members = %d, @products = 1000;\n' "$members"
        cat "$root/bench/chain.sql"
    } | chain_db_sql --database="$many" > "$torture__dir/many.log"

    # As slow as a counter's disk: the transaction lasts half a minute.
    try_begin "$members members"
    sed -i "s/^DBName=.*/DBName=$many/" "$CONFIG/quillet/settings.ini"
    rm -- "$STORE"
    "$torture__programs/quillet-new-store" "$STORE"
    window_start QUILLET_DEMO_PAUSE=1
    read_beside
    window_wait
    [[ $OUTCOME == closed ]] || wrong "the receive did not succeed: $OUTCOME"
    found=$(sqlite3 "$STORE" 'SELECT COUNT(*) FROM CT')
    ((found >= members)) || wrong "$found members received, not $members"
    printf '   %d members: %d reads, the longest stretch without an answer %d ms\n' "$members" \
        "$READ" "$REFUSED"
    note "reader refused for $REFUSED ms"
    ((REFUSED < 2000)) || wrong "a reader was refused for $REFUSED ms"
    try_end
    chain_db_sql --execute="DROP DATABASE $many"
}
