# shellcheck shell=bash
# The frame of scripts/torture: a counter is set up, its run disturbed, and what is left in the
# store compared with what an undisturbed run leaves. Needs setup.sh, head-office-db.sh,
# head-office.sh, torture-window.sh and torture-references.sh.
#
#   torture_start DIR PROGRAMS TOOLS
#                                start the head office and make the references in DIR; TOOLS has
#                                what is built from tests/torture
#   torture_case NAME            run case_NAME (with _ for -) and remember its row of the table
#   torture_table                print the table; false if any case has failed
#   torture_stop                 end everything that still runs
#
# A case is a function of tries, which are written with:
#
#   try_begin LABEL [ENGINE [START]]
#                            a new counter: TRY its folder, COUNTER the program's, STORE its store,
#                            CONFIG the settings' folder, LABEL for people. ENGINE is embedded
#                            (default) or odbc, START incremental (default), full (a first
#                            receive over an old menu) or first (into a new store)
#   window_start [VARIABLE=VALUE ...]
#                            start the program; WINDOW is its process
#   watched_start [VARIABLE=VALUE ...]
#                            start it with its calls counted, or written down, as tests/torture says
#   faulty_start FAULT [VARIABLE=VALUE ...]
#                            start it with one call that goes wrong, as tests/torture/Fault.h says;
#                            was_hit tells whether it came to that
#   wait_for_stop, window_continue
#                            until the fault `stop CALL N` has stopped it; let it go on
#   stop_at PHASE [VARIABLE=VALUE ...]
#                            start it and stop it before its first statement (first), before it reads
#                            its stamps (stamps), while it collects (collecting), before the batch
#                            begins, in its middle and before its commit (batch, middle, commit),
#                            before the transactions that follow begin (sweep, settings), and before
#                            the last commit of all (last)
#   stands PID               until a window waits for nothing but a person
#   as_other_user, as_ourselves
#                            from now on this try's windows are another user's, who may write
#                            everything of the try (false where that cannot be); ours again
#   window_wait [SECONDS]    until it has closed, or stays open and is ended: OUTCOME is closed,
#                            open (a log says why), silent (no log does), died or late; TOOK.
#                            WINDOW_QUIET seconds without processor time count as its end (15)
#   window_kill              SIGKILL, and wait
#   window_end [SECONDS]     SIGTERM, which a stopped one gets as it goes on, and wait; ENDED_AFTER is
#                            in milliseconds, or never
#   wait_for_batch, wait_for_commit
#                            until the store's transaction has begun, its stamps have moved
#   hold_store [KIND], hold_table TABLE, hold_say SQL [SECONDS], hold_end
#                            lock the store (shared, reserved, exclusive, which is the default); let
#                            the head office not answer queries of a table; let the holder do
#                            something, ANSWERED_AFTER milliseconds; let it go
#   mount_small FOLDER [SIZE], unmount_small
#                            a small disk; false where none can be mounted. The end of all of them
#   UNLOGGED=yes             the program can write no log
#   judge STATE ...          compare the store: STATE must be one of these, or `any`
#   stays_open_with LOG, ended_within MILLISECONDS
#                            the end that a run must have; LOG is download or daily
#   repair SQL               what a technician does to the store
#   mend                     one more run, undisturbed, must leave exactly `new` and nothing else
#   mend_kind                the same, right after judge, if no try has left the same before
#   wrong TEXT               the try has failed
#   try_end
#   skip WHY, note TEXT      for the table
#   in_quick VARIANT ONE ... whether a variant is tried; with --quick only those named are
#   random N                 PICKED is the seed's next number below N
#
# States, all from real runs of this invocation: old, new; batch (neither swept nor the store's own
# settings), batch-swept, batch-settings; batch-again (of a run that repeats one); emptied (a full
# reload has deleted the menu), unemptied (it could not, and is owed), unstamped (new, but nobody
# knows whether the menu was deleted, and it is owed); missing; broken (none of these). Stamps count
# as moved, kept or blank.

# Read by the cases.
# shellcheck disable=SC2034
ALL_BETWEEN='batch batch-swept batch-settings batch-again emptied unemptied unstamped'

torture__dir=''
torture__programs=''
torture__tools=''
torture__rows=()
torture__failures=()
torture__mounted=()
torture__holder=''
declare -A torture__running=() # process ids
declare -A torture__mended_kinds=()

# ---- small things --------------------------------------------------------------------------------

# NOW, in milliseconds.
now_ms() { NOW=${EPOCHREALTIME/[.,]/} NOW=$((NOW / 1000)); }

# random N: PICKED is one of 0 .. N-1. Not in $( ), which would repeat the number.
random() { PICKED=$(((RANDOM * 32768 + RANDOM) % ($1 > 0 ? $1 : 1))); }

sleep_ms() { sleep "$(($1 / 1000)).$(printf '%03d' $(($1 % 1000)))"; }

torture__say() { printf '== %s\n' "$*"; }

is_running() { kill -0 "$1" 2> /dev/null; }

# until_true SECONDS COMMAND ...: false if it never becomes true.
until_true() {
    local deadline
    now_ms
    deadline=$((NOW + $1 * 1000))
    shift
    until "$@"; do
        now_ms
        ((NOW < deadline)) || return 1
        sleep 0.003
    done 2> /dev/null # the shell tells of every process that is killed
}

# Whatever runs in the background is known, so that nothing stays behind.
torture__track() { torture__running[$1]=yes; }

# reap PID: wait for an ended process of ours; its exit code.
torture__reap() {
    local code=0
    wait "$1" 2> /dev/null || code=$?
    unset "torture__running[$1]"
    return "$code"
}

# ---- a counter -----------------------------------------------------------------------------------

try_begin() {
    LABEL=$1 ENGINE=${2:-embedded} START=${3:-incremental}
    TRY=$torture__dir/tries/$CASE-$((++torture__tries))
    COUNTER=$TRY/counter STORE=$TRY/counter/food.MDB CONFIG=$TRY/config
    torture__wrong='' UNLOGGED=''
    as_ourselves
    torture__new_counter
    cp "$torture__dir/references/$START/start.MDB" "$STORE"
    cp "$torture__dir/settings.ini" "$CONFIG/quillet/"
}

torture__new_counter() {
    mkdir -p "$COUNTER/log" "$CONFIG/quillet"
    # The program's folder is that of its file; a link has one of its own and costs nothing.
    ln "$torture__programs/quillet" "$COUNTER/" 2> /dev/null ||
        cp "$torture__programs/quillet" "$COUNTER/"
}

wrong() {
    local text="$CASE ($LABEL): $*"
    torture__wrong=yes
    torture__failures+=("$text")
    printf '   %s\n' "$text"
}

try_end() {
    if [[ -n $torture__wrong ]]; then
        torture__failed=$((torture__failed + 1))
        printf '   see %s\n' "$TRY"
    else
        rm -rf -- "$TRY"
    fi
}

# A try that cannot be made here does not count.
try_cancel() {
    torture__tries=$((torture__tries - 1))
    rm -rf -- "$TRY"
}

# in_quick VARIANT ONE ...: whether a variant is tried; with --quick only these are.
in_quick() {
    local variant=$1 one
    [[ -n $QUICK ]] || return 0
    shift
    for one in "$@"; do
        [[ $one != "$variant" ]] || return 0
    done
    return 1
}

# TAKES, milliseconds of an undisturbed run from this try's start.
takes() { TAKES=$(< "$torture__dir/references/$START/takes"); }

# count_of CALL: COUNT is how many such calls an undisturbed run from this try's start makes.
count_of() {
    local counted=$torture__dir/references/$START/$ENGINE.calls
    if [[ ! -e $counted ]]; then
        cp "$STORE" "$TRY/uncounted.MDB"
        watched_start TORTURE_REPORT="$counted"
        window_wait
        mv "$TRY/uncounted.MDB" "$STORE"
    fi
    COUNT=$(sed -n "s/^$1 //p" "$counted")
}

start_of() { printf '%s\n' "$torture__dir/references/$1/start.MDB"; }

torture__mount() {
    [[ $(id -u) == 0 ]] && mount "$@" 2> "$TRY/mount.log" || return 1
    torture__mounted=("${*: -1}" "${torture__mounted[@]}")
}

mount_small() { torture__mount -t tmpfs -o "size=${2:-32k},mode=755" tmpfs "$1"; }

unmount_small() {
    local mounted
    for mounted in "${torture__mounted[@]}"; do
        umount "$mounted"
    done
    torture__mounted=()
}

# ended_within MILLISECONDS
ended_within() {
    if [[ $ENDED_AFTER == never ]] || ((ENDED_AFTER > $1)); then
        wrong "SIGTERM ended it after $ENDED_AFTER ms, not within $1"
    fi
}

# stays_open_with download|daily: the end that a failed run must have.
stays_open_with() {
    ended_within 3000
    [[ $OUTCOME == open || $OUTCOME == silent ]] || wrong "the window did not stay open: $OUTCOME"
    "has_$1_log" || wrong "no $1 log"
}

# ---- verdicts ----------------------------------------------------------------------------------

judge() {
    look
    case $STATE in
        old) torture__old=$((torture__old + 1)) ;;
        new) torture__new=$((torture__new + 1)) ;;
        missing | broken) torture__broken=$((torture__broken + 1)) ;;
        *) torture__between=$((torture__between + 1)) ;;
    esac
    torture__judged=$((torture__judged + 1))
    if [[ $STATE == broken ]]; then
        wrong "the store is broken: $(torture__difference old); $(torture__difference new)"
    elif [[ " $* " != *" $STATE "* && ! ($* == any && $STATE != missing) ]]; then
        wrong "the store is $STATE, not one of: $*"
    elif [[ $OUTCOME == closed && $STATE != new && -z $UNLOGGED ]] && ! has_log; then
        wrong "the window closed like after a success, with the store $STATE"
    elif [[ $OUTCOME == open && $STATE == new ]]; then
        wrong 'the window says that the run has failed, and all of it is in the store'
    fi
}

# What stores and settings are made to do, or forget, in several cases.
REFUSE_BATCH="CREATE TRIGGER refuse BEFORE UPDATE ON UPD BEGIN SELECT RAISE(ABORT, 'refused'); END"
NO_SWEEP="CREATE TRIGGER no_sweep BEFORE UPDATE OF PRC_RCV ON PRC
    WHEN NEW.PRC_RCV = '9' BEGIN SELECT RAISE(ABORT, 'not swept'); END"
FROM_THE_BEGINNING="UPDATE UPD SET UPD_PR = '2000', UPD_CT = '2000', UPD_USR = '2000',
    UPD_BAS = '2000', UPD_FN = '2000'"

# A counter that has never reported its version and has everything of a run still to save.
forget_what_was_saved() { sed -i '/RCVVERSION\|TABLEUPDATE/d' "$CONFIG/quillet/settings.ini"; }

repair() { sqlite3 -cmd '.timeout 5000' "$STORE" "$1"; }

mend() {
    local good=yes logs left
    torture__mends=$((torture__mends + 1))
    for logs in log ZELMARO_LOG; do
        [[ ! -e $COUNTER/$logs ]] || mv "$COUNTER/$logs" "$TRY/$logs-$torture__mends"
    done
    mkdir "$COUNTER/log"
    window_start
    window_wait
    look
    [[ $OUTCOME == closed ]] || { good='' && wrong "the next run did not succeed: $OUTCOME"; }
    ! has_log || { good='' && wrong 'the next run wrote a log'; }
    left=$(find "$COUNTER" -mindepth 1 -maxdepth 1 -printf '%f\n' |
        grep -vxE 'quillet|quillet.lock|food.MDB|log' | paste -sd' ') || true
    [[ -z $left ]] || { good='' && wrong "the next run left $left"; }
    [[ $STATE == new ]] ||
        { good='' && wrong "the next run left the store $STATE: $(torture__difference new)"; }
    [[ -z $good ]] || torture__mended=$((torture__mended + 1))
}

# What the next run finds: the store's rows, the files beside it, the settings.
torture__found() {
    (
        printf '%s %s\n' "$ENGINE" "$START"
        cat "$TRY/dump"
        cd "$TRY" || exit
        find counter config -type f ! -name '*.TXT' ! -path '*/log/*' ! -name quillet \
            ! -name food.MDB ! -name 'food.MDB-*' -print0 | sort -z | xargs -0r md5sum
    ) | md5sum
}

# Where thousands of tries leave a few kinds of stores: a run of its own for the first of each kind,
# and for every twentieth of the others.
mend_kind() {
    local found
    found=$(torture__found)
    if [[ -n ${torture__mended_kinds[$found]:-} ]] && ((torture__tries % 20 != 0)); then
        torture__mends=$((torture__mends + 1)) torture__mended=$((torture__mended + 1))
        return 0
    fi
    torture__runs=$((torture__runs + 1))
    mend
    [[ -n $torture__wrong ]] || torture__mended_kinds[$found]=yes
}

# ---- cases ---------------------------------------------------------------------------------------

torture_case() {
    local verdict=passed began=$SECONDS
    CASE=$1
    torture__say "$CASE"
    torture__tries=0 torture__failed=0 torture__old=0 torture__new=0 torture__between=0
    torture__broken=0 torture__judged=0 torture__mends=0 torture__mended=0 torture__notes=''
    # The same moments whatever other cases are run.
    RANDOM=$(printf '%s %s' "$SEED" "$CASE" | cksum | awk '{ print $1 % 32768 }')
    torture__runs=0
    "case_${CASE//-/_}"
    ((torture__runs == 0)) || note "$torture__runs mending runs for $torture__mends mended"
    ((torture__failed == 0)) || verdict="FAILED ($torture__failed)"
    ((torture__tries > 0)) || verdict=skipped
    torture__rows+=("$(printf '%-22s %5d %5d %5d %8d %7d %8s %6d  %s' "$CASE" "$torture__tries" \
        "$torture__old" "$torture__new" "$torture__between" "$torture__broken" \
        "$torture__mended/$torture__mends" $((SECONDS - began)) \
        "$verdict$torture__notes")")
}

# note TEXT: something measured, for the table.
note() { torture__notes+="; $*"; }

# skip WHY: a part of the case cannot be done here.
skip() {
    note "skipped: $*"
    printf '   skipped: %s\n' "$*"
}

torture_table() {
    printf '\n%-22s %5s %5s %5s %8s %7s %8s %6s  %s\n' case tries old new between broken \
        mended s verdict
    printf '%s\n' "${torture__rows[@]}"
    ((${#torture__failures[@]} == 0))
}

# ---- start and end -------------------------------------------------------------------------------

torture_start() {
    local start references
    torture__dir=$1 torture__programs=$2 torture__tools=$3
    references=$torture__dir/references
    mkdir -p "$references"/{incremental,full,first} "$torture__dir/runtime"
    chmod 700 "$torture__dir/runtime"
    export XDG_RUNTIME_DIR=$torture__dir/runtime
    torture__write_driver

    torture__say 'starting the head office'
    chain_db_start "$torture__dir/db"
    ODBCSYSINI=$CHAIN_ODBCSYSINI head_office_start "$torture__dir" \
        "$torture__programs/quillet-headoffice" --port-file "$torture__dir/port"

    torture__say 'making the references'
    CASE=references torture__tries=0 torture__failed=0 torture__mends=0
    head_office_settings > "$torture__dir/settings.ini"
    "$torture__programs/quillet-new-store" "$references/first/start.MDB"
    cp "$references/first/start.MDB" "$references/incremental/"
    try_begin 'first receive'
    torture__undisturbed
    torture__use_store "$STORE"
    cp "$STORE" "$references/incremental/start.MDB"
    cp "$CONFIG/quillet/settings.ini" "$torture__dir/"
    cp "$STORE" "$references/full/start.MDB"
    sqlite3 "$references/full/start.MDB" "UPDATE UPD SET UPD_PR = '', UPD_CT = '', UPD_USR = '',
        UPD_BAS = '', UPD_FN = ''"
    try_end
    torture__change_head_office
    for start in incremental full first; do
        torture__references_of "$start"
    done
}

# After a server that was stopped in mid case, too.
torture_stop() {
    local pid mounted
    for pid in "${!torture__running[@]}"; do
        kill -KILL "$pid" 2> /dev/null || true
    done
    exec 9>&-
    for mounted in "${torture__mounted[@]}"; do
        umount "$mounted" 2> /dev/null || true
    done
    [[ -z $head_office__pid ]] || kill -CONT "$head_office__pid" 2> /dev/null || true
    head_office_stop
    chain_db_stop
}
