# shellcheck shell=bash
# Files beside the store: what a person has written must stay, what the program writes is private.
# shellcheck disable=SC2153,SC2154 # what the frame sets
cases+=(settings-file private-logs)

settings_unchanged() {
    cmp -s "$TRY/settings.before" "$CONFIG/quillet/settings.ini" || wrong 'settings.ini has changed'
}

case_settings_file() {
    local form plain
    for form in CP949 UTF-16; do
        try_begin "in $form"
        plain=$CONFIG/quillet/settings.ini
        cp "$plain" "$TRY/settings.plain"
        iconv -f UTF-8 -t "$form" "$TRY/settings.plain" > "$plain"
        cp "$plain" "$TRY/settings.before"
        window_start
        window_wait
        stays_open_with download
        grep -qs 'settings\.ini' "$COUNTER"/log/*.txt || wrong 'no log says that it is settings.ini'
        settings_unchanged
        judge old
        cp "$TRY/settings.plain" "$plain"
        mend
        try_end
    done

    # Everything that a run saves is still to be saved.
    try_begin 'full disk'
    if ! mount_small "$CONFIG/quillet"; then
        skip 'no small disk can be mounted here'
        try_cancel
        return 0
    fi
    sed '1,/^$/!d; s/^1차서버=/2차서버=/' "$torture__dir/settings.ini" \
        > "$CONFIG/quillet/settings.ini"
    cp "$CONFIG/quillet/settings.ini" "$TRY/settings.before"
    dd if=/dev/zero of="$CONFIG/quillet/full" bs=4096 2> "$TRY/dd.log" || true
    window_start
    window_wait
    settings_unchanged
    judge any
    unmount_small
    cp "$torture__dir/settings.ini" "$CONFIG/quillet/"
    mend
    try_end
}

case_private_logs() {
    local file
    try_begin 'a statement is refused, and a query'
    repair "$REFUSE_BATCH"
    window_start
    window_wait
    has_daily_log || wrong 'no daily log'
    judge old
    repair 'DROP TRIGGER refuse'
    chain_db_sql --execute='RENAME TABLE FN TO FN_AWAY'
    window_start
    window_wait
    chain_db_sql --execute='RENAME TABLE FN_AWAY TO FN'
    has_download_log || wrong 'no download log'
    for file in "$COUNTER"/log/*.txt "$COUNTER"/ZELMARO_LOG/*.TXT; do
        [[ ! -e $file || $(stat -c %a "$file") == 600 ]] ||
            wrong "${file#"$COUNTER/"} has mode $(stat -c %a "$file"), not 600"
    done
    judge old
    mend
    try_end
}
