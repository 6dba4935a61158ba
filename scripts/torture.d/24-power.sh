# shellcheck shell=bash
# The power goes during a run: what it did to its files is written down, and files are made again of
# which the last changes are lost, torn or in another order.
# shellcheck disable=SC2034,SC2153,SC2154 # what the frame sets
cases+=(power-cuts)

power_cut() { "$torture__tools/torture_power_cut" "$@"; }

# record SCENARIO ENGINE START: a run in $RECORDED: the folder before it and the list of its calls.
record() {
    local scenario=$1 folder
    RECORDED=$torture__dir/recorded-$1-$2-$3
    try_begin "recorded, $scenario, $2, $3" "$2" "$3"
    case $scenario in
        receive) forget_what_was_saved ;;
        refused) repair "$REFUSE_BATCH" ;;
        mending)
            hold_table RCTBAS
            window_start
            wait_for_commit || wrong 'no commit'
            sleep 0.2
            window_kill
            hold_end
            ;;
    esac
    mkdir "$RECORDED"
    cp -r "$COUNTER" "$CONFIG" "$RECORDED"
    rm "$RECORDED/counter/quillet"
    watched_start TORTURE_LOG="$RECORDED/calls"
    window_wait
    cp "$CONFIG/quillet/settings.ini" "$RECORDED/settings.after"
    # The list is the whole of what the run has done, or every cut would be a lie.
    mkdir "$TRY/made"
    cp -r "$RECORDED/counter" "$RECORDED/config" "$TRY/made/"
    power_cut "$RECORDED" "$RECORDED/calls" "$TRY/made" 1 whole > "$TRY/cut" || wrong 'no cut'
    rm "$COUNTER/quillet"
    for folder in counter config; do
        diff -r "$TRY/$folder" "$TRY/made/$folder" >> "$TRY/differs" ||
            wrong "the list of calls does not tell what the run has left in $folder"
    done
    try_end
    [[ -n $torture__wrong ]] || torture__tries=$((torture__tries - 1))
}

case_power_cuts() {
    local i recorded=() scenario engine start seed
    while read -r scenario engine start; do
        record "$scenario" "$engine" "$start"
        recorded+=("$RECORDED")
    done << RUNS
receive embedded incremental
receive odbc incremental
receive embedded full
receive odbc full
mending embedded incremental
mending odbc full
refused embedded incremental
RUNS
    for ((i = 0; i < CUTS; ++i)); do
        RECORDED=${recorded[i % ${#recorded[@]}]}
        IFS=- read -r _ scenario engine start <<< "${RECORDED##*/}"
        random 1000000000
        seed=$PICKED
        try_begin "seed $seed, $scenario, $engine, $start" "$engine" "$start"
        cut_power "$seed"
        try_end
    done
}

# Every tenth is after the end: what a window has closed upon is in the store for good.
cut_power() {
    local states="old new $ALL_BETWEEN" when='' before=$RECORDED/counter/food.before-receive.MDB
    ((i % 10 != 0)) || when=end
    rm -r "$CONFIG" "$STORE"
    cp -r "$RECORDED/counter" "$RECORDED/config" "$TRY/"
    # shellcheck disable=SC2086 # perhaps nothing
    power_cut "$RECORDED" "$RECORDED/calls" "$TRY" "$1" $when > "$TRY/cut" || wrong 'no cut'
    OUTCOME=killed
    LABEL+=", $(< "$TRY/cut")"
    [[ -z $when || $scenario == refused ]] || states=new
    [[ $scenario != refused ]] || repair 'DROP TRIGGER refuse'
    # shellcheck disable=SC2086 # several words
    judge $states
    # Lines come one by one; none is lost or half there.
    if grep -qvxFf "$CONFIG/quillet/settings.ini" "$RECORDED/config/quillet/settings.ini" ||
        grep -qvxFf "$RECORDED/settings.after" "$CONFIG/quillet/settings.ini"; then
        wrong 'settings.ini is none of those that the run has written'
    fi
    if [[ -e $COUNTER/food.before-receive.MDB ]]; then
        [[ -e $before ]] || before=$RECORDED/counter/food.MDB
        cmp -s "$COUNTER/food.before-receive.MDB" "$before" ||
            wrong 'the copy of the store is not the store of before'
    fi
    mend_kind
}
