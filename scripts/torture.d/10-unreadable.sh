# shellcheck shell=bash
# What the program goes by, its stamps and its note of them, cannot be read. That is never the same
# as a store that was never received, whose menu is deleted.
# shellcheck disable=SC2153,SC2154 # what the frame sets
cases+=(stamps-unreadable note-damaged)

case_stamps_unreadable() {
    local engine damage repair stamp
    for engine in embedded odbc; do
        in_quick "$engine" embedded || continue
        # Longer than the embedded engine waits.
        try_begin "locked for 7 s, $engine" "$engine"
        hold_store
        window_start
        sleep 7
        hold_end
        window_wait
        judge any
        mend
        try_end

    done
    stamp=$(sqlite3 "$(start_of incremental)" 'SELECT quote(UPD_FN) FROM UPD')
    for engine in embedded odbc; do
        for damage in 'ALTER TABLE UPD DROP COLUMN UPD_FN' 'ALTER TABLE UPD RENAME TO UPD_AWAY'; do
            in_quick "$engine $damage" 'embedded ALTER TABLE UPD RENAME TO UPD_AWAY' \
                'odbc ALTER TABLE UPD DROP COLUMN UPD_FN' || continue
            repair='ALTER TABLE UPD_AWAY RENAME TO UPD'
            [[ $damage != *COLUMN* ]] ||
                repair="ALTER TABLE UPD ADD COLUMN UPD_FN TEXT; UPDATE UPD SET UPD_FN = $stamp"
            try_begin "$damage, $engine" "$engine"
            repair "$damage"
            window_start
            window_wait
            stays_open_with download
            repair "$repair"
            judge old
            mend
            try_end
        done
    done
}

# A note that a power cut has left, of a run that was killed before its commit.
case_note_damaged() {
    local damage note lines
    for damage in emptied 'of zeros' cut; do
        try_begin "$damage" odbc
        window_start QUILLET_DEMO_PAUSE=20
        wait_for_batch
        sleep 0.2
        window_kill
        note=$COUNTER/food.before-receive.txt
        if [[ ! -s $note ]]; then
            wrong 'a killed run left no note'
        elif [[ $damage == emptied ]]; then
            : > "$note"
        elif [[ $damage == 'of zeros' ]]; then
            head -c "$(stat -c %s "$note")" /dev/zero > "$TRY/zeros"
            cp "$TRY/zeros" "$note"
        else
            # Anywhere but between two lines.
            lines=$(stat -c %s "$note")
            random $((lines - 4))
            truncate -s $((PICKED + 1)) "$note"
            [[ $(tail -c 1 "$note" | tr -d '\n' | wc -c) == 1 ]] || truncate -s -3 "$note"
        fi
        window_start
        window_wait
        judge old new
        mend
        try_end
    done
}
