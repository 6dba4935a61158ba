# shellcheck shell=bash
# A head office's server before the database of head-office-db.sh, and the settings of a counter that
# asks it. Needs setup.sh and head-office-db.sh.
#
#   head_office_start DIR COMMAND ...  start a server, which leaves its port in DIR/port; sets
#                                      HEAD_OFFICE_PORT. What it prints is in DIR/head-office.log
#   head_office_guards COMMAND ...     GUARDS are the options with which that is done
#   head_office_kill                   end it from one moment to the next; the next start gets the
#                                      same port
#   head_office_settings               print a counter's settings file
#   head_office_stop                   end it, if it runs

# Read by those who source this file.
# shellcheck disable=SC2034
HEAD_OFFICE_OBJECT=quorin.data
HEAD_OFFICE_DATABASES=("$CHAIN_DB") # that counters may name
HEAD_OFFICE_PORT=''

head_office__pid=''
head_office__port='' # of the next start, if it must be a certain one

# head_office_guards COMMAND ...: GUARDS are the options that let counters into these databases and
# nothing else; none for a program from before there were any.
head_office_guards() {
    local database
    GUARDS=()
    [[ $("$@" --help 2> /dev/null) == *--database* ]] || return 0
    for database in "${HEAD_OFFICE_DATABASES[@]}"; do
        GUARDS+=(--database "$CHAIN_HOST:$CHAIN_PORT/$database")
    done
}

head_office_start() {
    local port_file=$1/port log=$1/head-office.log
    shift
    rm -f -- "$port_file"
    head_office_guards "$@"
    "$@" "${GUARDS[@]}" --listen "127.0.0.1:${head_office__port:-0}" \
        --object "$HEAD_OFFICE_OBJECT" > "$log" 2>&1 &
    head_office__pid=$!
    for _ in {1..300}; do
        [[ ! -s $port_file ]] && kill -0 "$head_office__pid" 2> /dev/null || break
        sleep 0.1
    done
    [[ -s $port_file ]] || { cat "$log" >&2; return 1; }
    HEAD_OFFICE_PORT=$(tr -d '\r\n' < "$port_file")
}

head_office_settings() {
    cat << SETTINGS
[HALDREN/Settings]
1차서버=127.0.0.1:$HEAD_OFFICE_PORT
개체명=$HEAD_OFFICE_OBJECT
가맹점=1000
카운터=01
DB서버=$CHAIN_HOST;PORT=$CHAIN_PORT
DBName=$CHAIN_DB
DBUser=$CHAIN_USER
SETTINGS
}

head_office_kill() {
    kill -KILL "$head_office__pid"
    wait "$head_office__pid" 2> /dev/null || true
    head_office__pid='' head_office__port=$HEAD_OFFICE_PORT
}

head_office_stop() {
    setup_stop_process "$head_office__pid"
    head_office__pid=''
}
