# shellcheck shell=bash
# A run that cannot finish what it has begun.
# shellcheck disable=SC2153,SC2154 # what the frame sets
cases+=(settings-query-fails store-replaced sweep-fails)

receive_without_settings() {
    chain_db_sql --execute='RENAME TABLE RCTBAS TO RCTBAS_AWAY'
    window_start
    window_wait
    chain_db_sql --execute='RENAME TABLE RCTBAS_AWAY TO RCTBAS'
}

case_settings_query_fails() {
    local engine start times
    for engine in embedded odbc; do
        for start in incremental full; do
            for times in once twice; do
                in_quick "$times $start $engine" 'once incremental embedded' \
                    'twice incremental odbc' 'once full embedded' || continue
                try_begin "$times, $start, $engine" "$engine" "$start"
                [[ $times == once ]] || receive_without_settings
                receive_without_settings
                has_download_log || wrong 'no download log'
                # shellcheck disable=SC2086 # several words
                judge old $ALL_BETWEEN
                mend
                try_end
            done
        done
    done
}

# What the transaction is written into is no longer the store.
case_store_replaced() {
    local engine how
    for engine in embedded odbc; do
        for how in deleted replaced; do
            in_quick "$how $engine" 'replaced embedded' 'deleted odbc' || continue
            try_begin "$how, $engine" "$engine"
            cp "$STORE" "$TRY/other.MDB"
            window_start QUILLET_DEMO_PAUSE=10
            wait_for_batch || wrong 'no batch'
            random 300
            sleep_ms "$PICKED"
            if [[ $how == deleted ]]; then
                rm -- "$STORE"
            else
                mv -- "$TRY/other.MDB" "$STORE"
            fi
            window_wait
            stays_open_with daily
            [[ -e $STORE ]] || mv -- "$TRY/other.MDB" "$STORE"
            judge old
            mend
            try_end
        done
    done
}

case_sweep_fails() {
    local engine start
    for engine in embedded odbc; do
        for start in incremental full; do
            in_quick "$start $engine" 'incremental embedded' 'full odbc' || continue
            try_begin "$start, $engine" "$engine" "$start"
            repair "$NO_SWEEP"
            [[ $start == full ]] || repair "CREATE TRIGGER no_delete BEFORE DELETE ON PRC
                BEGIN SELECT RAISE(ABORT, 'not deleted'); END"
            window_start
            window_wait
            has_download_log || wrong 'no download log'
            judge batch batch-settings
            repair 'DROP TRIGGER no_sweep; DROP TRIGGER IF EXISTS no_delete'
            mend
            try_end
        done
    done
}
