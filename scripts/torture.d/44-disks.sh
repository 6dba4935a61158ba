# shellcheck shell=bash
# Disks without room, disks and folders that cannot be written.
# shellcheck disable=SC2153,SC2154 # what the frame sets
cases+=(full-disk disk-fills not-writable logs-unwritable)

# counter_on_disk SIZE: the counter's folder becomes a small disk's. The program is there by a mount
# of its own and takes no room.
counter_on_disk() {
    cp "$STORE" "$TRY/start.MDB"
    rm -r -- "$COUNTER"
    mkdir "$COUNTER"
    mount_small "$COUNTER" "$1" || return 1
    mkdir "$COUNTER/log"
    cp "$TRY/start.MDB" "$STORE"
    : > "$COUNTER/quillet"
    torture__mount --bind "$torture__programs/quillet" "$COUNTER/quillet"
}

without_disk() {
    skip 'no small disk can be mounted here'
    unmount_small
    try_cancel
}

# There is room again, and everything can be written.
remount() { mount -o "remount,$1" "$COUNTER"; }

disk_end() {
    [[ -z $torture__wrong ]] || cp -r -- "$COUNTER" "$TRY/left"
    unmount_small
    try_end
}

# says_so STATE ...: a run that did not commit stays on the screen. What is owed after the commit is
# said in a log alone, and for that there may be no room: UNSAID counts.
says_so() {
    judge "$@"
    case $OUTCOME in
        closed)
            [[ $STATE == new || $STATE == batch* ]] || wrong "the window closed, the store is $STATE"
            [[ $STATE == new ]] || grep -qs . "$COUNTER"/log/*.txt || UNSAID=$((UNSAID + 1))
            ;;
        open | silent) ended_within 3000 ;;
        *) wrong "the window has $OUTCOME" ;;
    esac
}

note_unsaid() { ((UNSAID == 0)) || note "$UNSAID closed owing something, without a log that says so"; }

# with_pages_free PAGES
with_pages_free() {
    local size
    try_begin "$1 pages free, $START, $ENGINE" "$ENGINE" "$START"
    size=$(stat -c %s "$STORE")
    counter_on_disk $(((size + 4095) / 4096 * 4096 + $1 * 4096)) || { without_disk && return 1; }
    window_start
    window_wait
    # shellcheck disable=SC2086 # several words
    says_so old new $ALL_BETWEEN
    [[ $STATE != new || $OUTCOME == closed ]] || wrong "a window with the store new is $OUTCOME"
    FOUND=$STATE
    remount size=64m
    mend
    disk_end
}

with_read_only_disk() {
    try_begin "a read-only disk, $START, $ENGINE" "$ENGINE" "$START"
    counter_on_disk 64m || { without_disk && return 1; }
    remount ro
    window_start
    window_wait
    says_so old
    [[ $OUTCOME == silent ]] || wrong "the window of a store that cannot be written is $OUTCOME"
    remount rw
    mend
    disk_end
}

# From no room at all to enough, and some sizes between.
case_full_disk() {
    local kind pages i
    UNSAID=0
    for kind in 'embedded incremental' 'odbc incremental' 'embedded full' 'odbc full'; do
        in_quick "$kind" 'odbc incremental' 'embedded full' || continue
        read -r ENGINE START <<< "$kind"
        if [[ -n $QUICK ]]; then
            with_pages_free 32 || return 0
            with_read_only_disk
            continue
        fi
        FOUND='' pages=0
        while [[ $FOUND != new ]] && ((pages < 8192)); do
            with_pages_free $pages || return 0
            pages=$((pages > 0 ? pages * 2 : 1))
        done
        note "$kind fits into $((pages * 2)) KiB"
        for ((i = 0; i < 3; ++i)); do
            random $pages
            with_pages_free "$PICKED"
        done
        with_read_only_disk
    done
    note_unsaid
}

case_disk_fills() {
    local engine phase start states
    UNSAID=0
    for engine in embedded odbc; do
        for phase in first collecting batch middle commit sweep settings last; do
            for start in incremental full; do
                in_quick "$phase $start $engine" 'commit incremental odbc' \
                    'sweep incremental embedded' || continue
                try_begin "$phase, $start, $engine" "$engine" "$start"
                counter_on_disk 64m || { without_disk && return 0; }
                stop_at "$phase"
                dd if=/dev/zero of="$COUNTER/full" bs=4096 2> "$TRY/dd.log" || true
                window_continue
                window_wait
                states='old new'
                [[ $start == incremental || $phase == first ]] || states='emptied new'
                case $phase in
                    first) [[ $start == incremental ]] || states='old emptied new' ;;
                    sweep | settings | last) states="new batch batch-swept batch-settings" ;;
                esac
                # shellcheck disable=SC2086 # several words
                says_so $states
                rm -- "$COUNTER/full"
                mend
                disk_end
            done
        done
    done
    note_unsaid
}

# What another user may not do, root may not be kept from.
not_writable_beside() {
    case $1 in
        'store and folder') chmod a-w "$STORE" "$COUNTER" ;;
        folder | 'folder, '*) chmod a-w "$COUNTER" ;;
        store) chmod a-w "$STORE" ;;
        'program folder')
            mkdir "$TRY/elsewhere"
            mv "$STORE" "$TRY/elsewhere/"
            STORE=$TRY/elsewhere/food.MDB
            printf '\n[외식업/LOCATION]\nID=%s\n' "$TRY/elsewhere" \
                >> "$CONFIG/quillet/settings.ini"
            chown -R 65534:65534 "$TRY/elsewhere"
            chmod a-w "$COUNTER" "$COUNTER/log"
            ;;
        settings)
            # Everything that a run saves is still to be saved.
            sed '1,/^$/!d; s/^1차서버=/2차서버=/' "$torture__dir/settings.ini" \
                > "$CONFIG/quillet/settings.ini"
            chmod a-w "$CONFIG/quillet" "$CONFIG/quillet/settings.ini"
            ;;
    esac
}

# A first receive has deleted the old menu before it collects.
old_or_emptied() { if [[ $1 == full ]]; then echo emptied; else echo old; fi; }

case_not_writable() {
    local what engine start
    UNSAID=0
    for what in 'store and folder' store folder 'folder, from batch' 'folder, from commit' \
        'folder, from sweep' 'folder, from settings' 'program folder' settings; do
        for engine in embedded odbc; do
            for start in incremental full; do
                in_quick "$what $start $engine" 'folder incremental odbc' \
                    'program folder incremental embedded' || continue
                try_begin "$what, $start, $engine" "$engine" "$start"
                if ! as_other_user; then
                    skip 'no window of another user can be started here'
                    try_cancel
                    return 0
                fi
                if [[ $what == *from* ]]; then
                    stop_at "${what#*from }"
                    not_writable_beside "$what"
                    window_continue
                else
                    not_writable_beside "$what"
                    window_start
                fi
                window_wait
                case $what in
                    # What was collected is written, and the journal cannot go: no commit.
                    *batch | *commit) says_so "$(old_or_emptied "$start")" ;;
                    *sweep | *from\ settings) says_so new batch batch-swept batch-settings ;;
                    settings | 'program folder')
                        says_so new
                        [[ $OUTCOME == closed ]] || wrong "the receive did not succeed: $OUTCOME"
                        ;;
                    *) says_so old ;;
                esac
                chmod -R a+w "$COUNTER/log" "$CONFIG"
                chmod a+w "$COUNTER" "$STORE"
                [[ $what != settings ]] ||
                    cp "$torture__dir/settings.ini" "$CONFIG/quillet/settings.ini"
                mend
                try_end
            done
        done
    done
    note_unsaid
}

# break_logs HOW: false if that cannot be done here.
break_logs() {
    case $1 in
        missing) rmdir "$COUNTER/log" ;;
        file) rmdir "$COUNTER/log" && : > "$COUNTER/log" && : > "$COUNTER/ZELMARO_LOG" ;;
        *)
            mkdir "$COUNTER/ZELMARO_LOG"
            mount_small "$COUNTER/log" 4k && mount_small "$COUNTER/ZELMARO_LOG" 4k || return 1
            if [[ $1 == full ]]; then
                dd if=/dev/zero of="$COUNTER/log/full" bs=4096 2> "$TRY/dd.log" || true
                dd if=/dev/zero of="$COUNTER/ZELMARO_LOG/full" bs=4096 2> "$TRY/dd.log" || true
            else
                mount -o remount,ro "$COUNTER/log"
                mount -o remount,ro "$COUNTER/ZELMARO_LOG"
            fi
            ;;
    esac
}

# A log that cannot be written hinders nothing, and hides nothing.
case_logs_unwritable() {
    local how engine what
    for how in missing file full read-only; do
        for engine in embedded odbc; do
            for what in receive statement query; do
                in_quick "$how $what $engine" 'file receive odbc' 'full statement embedded' ||
                    continue
                try_begin "$how, $what, $engine" "$engine"
                break_logs "$how" || { without_disk && return 0; }
                [[ $what != statement ]] || repair "CREATE TRIGGER refuse BEFORE UPDATE ON FN
                    BEGIN SELECT RAISE(ABORT, 'refused'); END"
                [[ $what != query ]] || chain_db_sql --execute='RENAME TABLE FN TO FN_AWAY'
                window_start
                window_wait
                [[ $what != query ]] || chain_db_sql --execute='RENAME TABLE FN_AWAY TO FN'
                if [[ $what == receive ]]; then
                    judge new
                    [[ $OUTCOME == closed ]] || wrong "the receive did not succeed: $OUTCOME"
                else
                    judge old
                    [[ $OUTCOME == open || $OUTCOME == silent ]] ||
                        wrong "the window did not stay open: $OUTCOME"
                    ended_within 3000
                    [[ $what != statement ]] || repair 'DROP TRIGGER refuse'
                fi
                unmount_small
                rm -rf -- "$COUNTER/log" "$COUNTER/ZELMARO_LOG"
                mend
                try_end
            done
        done
    done
}
