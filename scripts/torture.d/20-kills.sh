# shellcheck shell=bash
# The program is gone from one moment to the next: at a time, and before a certain call.
# shellcheck disable=SC2153,SC2154 # what the frame sets
cases+=(kills)

# kill_somewhere WHERE: `anywhere` in an undisturbed run's time, in the `settings`' last query, which
# is not answered, or before any one of a run's calls of a kind.
kill_somewhere() {
    case $1 in
        anywhere)
            takes
            random $((TAKES * 11 / 10))
            window_start
            sleep_ms "$PICKED"
            window_kill
            ;;
        settings)
            hold_table RCTBAS
            window_start
            wait_for_commit || wrong 'no commit'
            random 100
            sleep_ms "$PICKED"
            window_kill
            hold_end
            ;;
        *)
            count_of "$1"
            random "$COUNT"
            LABEL+=" $((PICKED + 1))"
            faulty_start "kill $1 $((PICKED + 1))"
            window_wait
            [[ $OUTCOME != died ]] || OUTCOME=killed
            ;;
    esac
}

case_kills() {
    local i engine start where
    local places=(write statement sync write anywhere statement unlink write statement settings)
    local kinds=('embedded incremental' 'odbc incremental' 'embedded full' 'odbc full'
        'embedded first' 'odbc first')
    for ((i = 0; i < KILLS; ++i)); do
        where=${places[i % ${#places[@]}]}
        read -r engine start <<< "${kinds[(i / ${#places[@]} + i) % ${#kinds[@]}]}"
        try_begin "$where, $start, $engine" "$engine" "$start"
        kill_somewhere "$where"
        # shellcheck disable=SC2086 # several words
        judge old new $ALL_BETWEEN
        # A run that is to mend what a killed one has left is killed as well. Stamps are whole
        # seconds: within one, nobody would see them move.
        ((i % 3 < 2)) || { sleep 1.1 && kill_somewhere "$where"; }
        mend
        try_end
    done
}
