# shellcheck shell=bash
# shellcheck disable=SC2119,SC2120 # arguments are optional; callers may give them
# A private head office database for the demo and the tests: a MariaDB server of our own on
# loopback, loaded with the sample chain, reached through the driver name the counters use.
#
#   . scripts/lib/head-office-db.sh
#   trap chain_db_stop EXIT; trap 'exit 130' INT; trap 'exit 143' TERM
#   chain_db_start "$folder"            # not in $( ) or a pipe: it sets variables
#   ODBCSYSINI=$CHAIN_ODBCSYSINI build/release/headoffice/quillet-headoffice ...
#
# chain_db_start DIR        start the server in DIR; a new DIR also gets the database and its data
# chain_db_load [DATABASE]  (re)load schema and data; default: $CHAIN_DB
# chain_db_change           apply what the head office changes between two receives
# chain_db_sql [ARGS]       the mariadb client as administrator, on $CHAIN_DB
# chain_db_connection_string [DATABASE]
#                           print the ODBC connection string of the chain's user
# chain_db_kill             end the server from one moment to the next; what was written in the last
#                           second may be lost. The next chain_db_start gets the same port
# chain_db_stop [--delete]  stop the server; --delete also removes what it put into DIR
#
# All return 0, or 1 after a message on standard error. Safe under `set -euo pipefail`. Needs
# mariadb-server-core, mariadb-client-core, odbc-mariadb; runs as any user; touches no system
# service and no system-wide ODBC setting.

# Read by those who source this file.
# shellcheck disable=SC2034
CHAIN_DB=quillet_chain
CHAIN_USER=quillet
CHAIN_PASSWORD=mq5307
CHAIN_HOST=127.0.0.1
CHAIN_DRIVER='MySQL ODBC 3.51 Driver'
CHAIN_PORT=''
CHAIN_SOCKET=''
CHAIN_ODBCSYSINI=''

# Nothing waits for the disk: a machine that goes down may take the sample with it, and that is
# cheaper than seconds at every start.
chain_db__storage=(--loose-debug-no-sync --loose-innodb-flush-method=nosync --sync-frm=0
    --innodb-log-file-size=8M --innodb-flush-log-at-trx-commit=0)

chain_db__dir=''
chain_db__pid=''
chain_db__port='' # of the next start, if it must be a certain one
chain_db__watchdog=''
chain_db__socket_dir=''
chain_db__sql_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../headoffice/chain" && pwd)

chain_db__say() { printf 'head office database: %s\n' "$*" >&2; }

# chain_db__show_log FILE: what went wrong, or else its end.
chain_db__show_log() {
    printf '%s:\n' "$1" >&2
    grep -F '[ERROR]' "$1" >&2 || tail -n 30 "$1" >&2
}

# chain_db__program NAME: its path. A plain user's PATH often lacks the sbin folders.
chain_db__program() {
    PATH="$PATH:/usr/sbin:/usr/local/sbin:/usr/libexec:/usr/local/libexec" command -v "$1" || {
        chain_db__say "$1 not found (packages mariadb-server-core, mariadb-client-core)"
        return 1
    }
}

# chain_db__life PID: its start time, or nothing once it is gone. A zombie counts as gone, and
# the start time tells a reused process id from the original.
chain_db__life() {
    local stat fields
    if [[ -d /proc/self ]]; then
        { read -r stat < "/proc/$1/stat"; } 2> /dev/null || return 0
        read -r -a fields <<< "${stat##*) }"
        [[ ${fields[0]} == [ZX] ]] || printf '%s\n' "${fields[19]}"
    elif kill -0 "$1" 2> /dev/null; then
        printf 'alive\n'
    fi
}

chain_db__client() {
    mariadb --no-defaults --socket="$CHAIN_SOCKET" --user=root \
        --default-character-set=utf8mb4 "$@"
}

# chain_db__library NAME PACKAGE: full path of an ODBC driver.
chain_db__library() {
    local folder name registered
    for folder in /usr/lib/*-linux-*/odbc /usr/lib/odbc /usr/lib64/odbc /usr/local/lib/odbc \
        /usr/lib/*-linux-* /usr/lib64 /usr/lib /usr/local/lib /opt/homebrew/lib; do
        for name in "$1.so" "$1.dylib"; do
            if [[ -e $folder/$name ]]; then
                printf '%s\n' "$folder/$name"
                return 0
            fi
        done
    done
    # Not in a usual place: whatever the system's own driver list says.
    registered=$(odbcinst -q -d 2> /dev/null | tr -d '[]' | while read -r name; do
        odbcinst -q -d -n "$name" 2> /dev/null | sed -n "s/^Driver *= *\(.*$1.*\)/\1/p"
    done | head -n 1) || true
    if [[ -n $registered ]]; then
        printf '%s\n' "$registered"
        return 0
    fi
    chain_db__say "ODBC driver $1 not found (package $2)"
    return 1
}

# The driver name of the counters' connection string, mapped to what is installed here, for
# processes that run with ODBCSYSINI set to this folder.
chain_db__write_odbc() {
    local mariadb_library sqlite_library
    mariadb_library=$(chain_db__library libmaodbc odbc-mariadb) || return 1
    mkdir -p "$CHAIN_ODBCSYSINI" || return 1
    {
        printf '[%s]\nDescription=MariaDB Connector/ODBC\nDriver=%s\n' \
            "$CHAIN_DRIVER" "$mariadb_library"
        if sqlite_library=$(chain_db__library libsqlite3odbc libsqliteodbc 2> /dev/null); then
            printf '\n[SQLite3]\nDescription=SQLite3 ODBC Driver\nDriver=%s\n' "$sqlite_library"
        fi
    } > "$CHAIN_ODBCSYSINI/odbcinst.ini"
    : > "$CHAIN_ODBCSYSINI/odbc.ini"
}

# chain_db__in_use DIR: is a server running on it already? A second one would wait for its
# files for minutes.
chain_db__in_use() {
    local pid
    { read -r pid < "$1/run/server.pid"; } 2> /dev/null || return 1
    [[ -n $(chain_db__life "$pid") ]] || return 1
    # The number may have gone to some other program since.
    [[ ! -r /proc/$pid/cmdline ]] ||
        tr '\0' '\n' < "/proc/$pid/cmdline" | grep -qxF -e "--datadir=$1/data"
}

# A loopback port nobody answers on, below the range the kernel hands out by itself.
chain_db__free_port() {
    local port
    while :; do
        port=$((20000 + (RANDOM * 32768 + RANDOM) % 12000))
        if ! (exec 3<> "/dev/tcp/$CHAIN_HOST/$port") 2> /dev/null; then
            printf '%s\n' "$port"
            return 0
        fi
    done
}

# Shuts the server down when the process that started it is gone and could not do so itself.
# It holds none of the caller's files open, or a caller's pipe would never see its end.
chain_db__watch() {
    local owner=$1 server=$2 socket_dir=$3 owner_life server_life
    owner_life=$(chain_db__life "$owner")
    server_life=$(chain_db__life "$server")
    (
        trap - EXIT TERM
        trap '' INT HUP
        while [[ $(chain_db__life "$server") == "$server_life" ]]; do
            if [[ $(chain_db__life "$owner") != "$owner_life" ]]; then
                kill -TERM "$server"
                for _ in {1..20}; do
                    [[ $(chain_db__life "$server") == "$server_life" ]] || break
                    sleep 1
                done
                [[ $(chain_db__life "$server") != "$server_life" ]] || kill -KILL "$server"
                [[ -z $socket_dir ]] || rm -rf -- "$socket_dir"
                break
            fi
            sleep 1
        done
    ) < /dev/null > /dev/null 2>&1 3>&- 4>&- 5>&- 6>&- 7>&- 8>&- 9>&- &
    chain_db__watchdog=$!
}

# chain_db__launch SERVER [OPTIONS]: run the server on a free port until it answers.
# Another process may take the port between the test and the bind: then try the next one.
chain_db__launch() {
    local server=$1 log=$chain_db__dir/server.log attempt deadline
    shift
    for attempt in {1..10}; do
        CHAIN_PORT=${chain_db__port:-$(chain_db__free_port)}
        printf 'attempt %s: port %s\n' "$attempt" "$CHAIN_PORT" > "$log"
        "$server" --no-defaults "$@" --datadir="$chain_db__dir/data" \
            --tmpdir="$chain_db__dir/tmp" --socket="$CHAIN_SOCKET" \
            --pid-file="$chain_db__dir/run/server.pid" --bind-address="$CHAIN_HOST" \
            --port="$CHAIN_PORT" --skip-name-resolve --skip-log-bin --skip-slave-start \
            --sql-mode=NO_ENGINE_SUBSTITUTION --character-set-server=utf8mb4 \
            --collation-server=utf8mb4_general_ci --performance-schema=OFF \
            --max-connections=64 --max-allowed-packet=64M --key-buffer-size=1M \
            --aria-pagecache-buffer-size=8M --query-cache-size=0 \
            --innodb-buffer-pool-size=32M "${chain_db__storage[@]}" \
            < /dev/null >> "$log" 2>&1 3>&- 4>&- 5>&- 6>&- 7>&- 8>&- 9>&- &
        chain_db__pid=$!
        chain_db__watch "$BASHPID" "$chain_db__pid" "$chain_db__socket_dir"

        deadline=$((SECONDS + 60))
        while [[ -n $(chain_db__life "$chain_db__pid") ]]; do
            if chain_db__client --execute='SELECT 1' > /dev/null 2>&1; then
                return 0
            fi
            if ((SECONDS >= deadline)); then
                chain_db__say 'no answer within 60 seconds'
                chain_db__show_log "$log"
                return 1
            fi
            sleep 0.1
        done
        chain_db__reap
        grep -q 'Bind on TCP/IP port' "$log" || break
    done
    chain_db__say 'the server ended at once'
    chain_db__show_log "$log"
    return 1
}

# Waits for a server that has ended, and for its watchdog.
chain_db__reap() {
    wait "$chain_db__pid" 2> /dev/null || true
    if [[ -n $chain_db__watchdog ]]; then
        kill -TERM "$chain_db__watchdog" 2> /dev/null || true
        wait "$chain_db__watchdog" 2> /dev/null || true
    fi
    chain_db__pid='' chain_db__watchdog=''
}

chain_db_start() {
    local dir server install as_root=() fresh=''
    if [[ -n $chain_db__pid ]]; then
        chain_db__say "already running in $chain_db__dir"
        return 1
    fi
    server=$(chain_db__program mariadbd) || return 1
    install=$(chain_db__program mariadb-install-db) || return 1
    chain_db__program mariadb > /dev/null || return 1
    # The server refuses to run as root unless told so in as many words.
    [[ $(id -u) != 0 ]] || as_root=(--user=root)

    mkdir -p "$1" && dir=$(cd "$1" && pwd) || return 1
    # What is there and not ours must survive, here and in chain_db_stop --delete.
    if [[ -e $dir/data && ! -e $dir/run ]]; then
        chain_db__say "$dir holds a data folder that is not ours"
        return 1
    fi
    if chain_db__in_use "$dir"; then
        chain_db__say "$dir is in use by another server"
        return 1
    fi
    chain_db__dir=$dir

    # Only this user may enter: the administrator has no password on the socket.
    mkdir -p "$dir/run" "$dir/tmp" && chmod 700 "$dir/run" "$dir/tmp" || return 1
    chain_db__socket_dir=''
    CHAIN_SOCKET=$dir/run/server.sock
    # A socket's path is limited to 107 bytes.
    if ((${#CHAIN_SOCKET} > 90)) || [[ $CHAIN_SOCKET == *[![:ascii:]]* ]]; then
        chain_db__socket_dir=$(mktemp -d "${TMPDIR:-/tmp}/quillet-db.XXXXXX") || return 1
        CHAIN_SOCKET=$chain_db__socket_dir/server.sock
    fi
    CHAIN_ODBCSYSINI=$dir/odbc
    chain_db__write_odbc || return 1

    # The mark is written last: a folder whose first start was cut short starts afresh.
    if [[ ! -e $dir/run/loaded ]]; then
        fresh=yes
        rm -rf -- "$dir/data"
        # By a relative path, because the installer stumbles over a blank in an absolute one. By
        # force, because it insists on a host name that can be looked up, and never uses it.
        if ! (cd "$dir" && "$install" --no-defaults "${as_root[@]}" --datadir=./data \
            --auth-root-authentication-method=normal --skip-test-db --skip-name-resolve --force \
            "${chain_db__storage[@]}" < /dev/null > install.log 2>&1); then
            chain_db__say "cannot set up $dir/data"
            chain_db__show_log "$dir/install.log"
            return 1
        fi
    fi

    if ! chain_db__launch "$server" "${as_root[@]}"; then
        chain_db_stop
        return 1
    fi
    if [[ -n $fresh ]]; then
        if ! chain_db__create_users || ! chain_db_load; then
            chain_db__say 'cannot load the sample chain'
            chain_db_stop
            return 1
        fi
        : > "$dir/run/loaded"
    fi
    export CHAIN_PORT CHAIN_SOCKET CHAIN_ODBCSYSINI CHAIN_DB CHAIN_USER CHAIN_HOST
}

# The administrator stays on the socket only; the chain's user also gets databases of its own
# for tests that want to start from other rows.
chain_db__create_users() {
    local host
    {
        printf "DELETE FROM mysql.global_priv WHERE User = '' OR Host <> 'localhost';\n"
        printf 'FLUSH PRIVILEGES;\n'
        for host in "$CHAIN_HOST" localhost; do
            printf "CREATE USER '%s'@'%s' IDENTIFIED BY '%s';\n" \
                "$CHAIN_USER" "$host" "$CHAIN_PASSWORD"
            # An underscore would stand for any character here.
            printf "GRANT ALL ON \`%s\`.* TO '%s'@'%s';\n" \
                "${CHAIN_DB//_/\\_}" "$CHAIN_USER" "$host" \
                'quillet\_test\_%' "$CHAIN_USER" "$host"
        done
    } | chain_db__client
}

chain_db_load() {
    local database=${1:-$CHAIN_DB} file
    {
        printf "CREATE DATABASE IF NOT EXISTS \`%s\` DEFAULT CHARACTER SET utf8mb4;\n" "$database"
        printf "USE \`%s\`;\n" "$database"
        cat "$chain_db__sql_dir/schema.sql"
        # One transaction: some ten thousand rows load in a fraction of a second.
        printf 'START TRANSACTION;\n'
        for file in data generate; do
            cat "$chain_db__sql_dir/$file.sql"
        done
        printf 'COMMIT;\n'
    } | chain_db__client
}

chain_db_change() { chain_db__client "$CHAIN_DB" < "$chain_db__sql_dir/changes.sql"; }

chain_db_sql() { chain_db__client --database="$CHAIN_DB" "$@"; }

chain_db_connection_string() {
    printf 'DRIVER={%s};SERVER=%s;PORT=%s;DATABASE=%s;UID=%s;PWD=%s;OPTION=16386\n' \
        "$CHAIN_DRIVER" "$CHAIN_HOST" "$CHAIN_PORT" "${1:-$CHAIN_DB}" "$CHAIN_USER" \
        "$CHAIN_PASSWORD"
}

chain_db_kill() {
    kill -KILL "$chain_db__pid"
    chain_db__reap
    [[ -z $chain_db__socket_dir ]] || rm -rf -- "$chain_db__socket_dir"
    chain_db__socket_dir='' chain_db__port=$CHAIN_PORT
}

# May be called at any time, any number of times, from traps too.
chain_db_stop() {
    local pid=$chain_db__pid
    if [[ -n $pid ]]; then
        kill -TERM "$pid" 2> /dev/null || true
        for _ in {1..200}; do
            [[ -n $(chain_db__life "$pid") ]] || break
            sleep 0.1
        done
        if [[ -n $(chain_db__life "$pid") ]]; then
            chain_db__say 'no orderly end within 20 seconds: killed'
            kill -KILL "$pid" 2> /dev/null || true
        fi
        chain_db__reap
    fi
    if [[ -n $chain_db__socket_dir ]]; then
        rm -rf -- "$chain_db__socket_dir"
        chain_db__socket_dir=''
    fi
    if [[ ${1:-} == --delete && -n $chain_db__dir ]]; then
        (
            cd "$chain_db__dir" 2> /dev/null || exit 0
            rm -rf -- data run tmp odbc server.log install.log
        )
        rmdir -- "$chain_db__dir" 2> /dev/null || true
        chain_db__dir=''
    fi
    return 0
}
