# shellcheck shell=bash
# The program is gone from one moment to the next.
# shellcheck disable=SC2153,SC2154 # what the frame sets
cases+=(kills)

# kill_somewhere AIM
kill_somewhere() {
    local pause
    random 3
    pause=$PICKED
    # It receives thousands of rows.
    [[ $START != full ]] || pause=$((pause / 2))
    case $1 in
        anywhere)
            # A run that pauses takes longer; what comes after its end is no kill.
            takes
            random $((TAKES * (pause + 1) * 11 / 10))
            window_start QUILLET_DEMO_PAUSE="$pause"
            sleep_ms "$PICKED"
            ;;
        batch)
            random 400
            window_start QUILLET_DEMO_PAUSE=2
            wait_for_batch || wrong 'no batch'
            sleep_ms "$PICKED"
            ;;
        commit)
            random 30
            window_start QUILLET_DEMO_PAUSE="$pause"
            wait_for_commit || wrong 'no commit'
            sleep_ms "$PICKED"
            ;;
        settings)
            # The last query is not answered, so that the run stands between its commit and its end.
            random 200
            hold_table RCTBAS
            window_start QUILLET_DEMO_PAUSE="$pause"
            wait_for_commit || wrong 'no commit'
            sleep_ms "$PICKED"
            ;;
    esac
    window_kill
    hold_end
}

case_kills() {
    local i engine start aim
    local aims=(anywhere batch commit settings batch anywhere settings commit)
    local kinds=('embedded incremental' 'odbc incremental' 'embedded full' 'odbc full'
        'embedded incremental' 'odbc incremental')
    for ((i = 0; i < KILLS; ++i)); do
        read -r engine start <<< "${kinds[i % ${#kinds[@]}]}"
        aim=${aims[(i / ${#kinds[@]} + i) % ${#aims[@]}]}
        try_begin "$aim, $start, $engine" "$engine" "$start"
        kill_somewhere "$aim"
        # shellcheck disable=SC2086 # several words
        judge old new $ALL_BETWEEN
        # A run that is to mend what a killed one has left is killed as well. Stamps are whole
        # seconds: within one, nobody would see them move.
        ((i % 3 < 2)) || { sleep 1.1 && kill_somewhere "$aim"; }
        mend
        try_end
    done
}
