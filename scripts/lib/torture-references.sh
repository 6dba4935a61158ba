# shellcheck shell=bash
# What torture.sh compares stores with: dumps of what undisturbed runs leave, made anew for every
# invocation, because the stamps are the time of day.

# shellcheck disable=SC2153,SC2154 # what torture.sh and a try set

# ---- comparing -----------------------------------------------------------------------------------

# All rows of all tables, in an order of their own. Trailing blanks do not count, here as in the
# store: what a receiver inserts and what it updates deliberately differ in them, and a repeated
# receive updates what the first one inserted.
torture__write_dump_sql() {
    local store=$1 table columns column stamp
    echo 'PRAGMA integrity_check;'
    while read -r table; do
        columns=''
        while read -r column; do
            if [[ $table == UPD ]]; then
                stamp=$(sqlite3 "$store" "SELECT quote($column) FROM UPD")
                columns+="||','||CASE WHEN trim(coalesce($column, '')) = '' THEN 'blank'"
                columns+=" WHEN $column IS ${stamp:-NULL} THEN 'kept' ELSE 'moved' END"
            else
                columns+="||','||quote(CASE typeof($column) WHEN 'text' THEN trim($column)"
                columns+=" ELSE $column END)"
            fi
        done < <(sqlite3 "$store" "SELECT name FROM pragma_table_info('$table') ORDER BY cid")
        echo "SELECT '$table'$columns FROM $table ORDER BY 1;"
    done < <(sqlite3 "$store" \
        "SELECT name FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE 'sqlite%'
            ORDER BY 1")
}

# Of a copy, because looking at a store that a killed run has left rolls it back.
torture__dump() {
    local copy=$TRY/probe
    rm -rf -- "$copy"
    mkdir "$copy"
    cp -L "$STORE"* "$copy/"
    sqlite3 -batch -bail "$copy/food.MDB" < "$torture__dir/references/$START/dump.sql" \
        > "$TRY/dump" 2> "$TRY/dump.error" || cat "$TRY/dump.error" >> "$TRY/dump"
}

look() {
    local reference
    STATE=missing
    [[ -e $STORE ]] || return 0
    STATE=broken
    torture__dump
    for reference in new old batch-swept batch-settings batch batch-again emptied \
        unemptied unstamped; do
        if cmp -s "$TRY/dump" "$torture__dir/references/$START/$reference.dump"; then
            STATE=$reference
            return 0
        fi
    done
}

# How the store differs from a reference, for people.
torture__difference() {
    diff "$torture__dir/references/$START/$1.dump" "$TRY/dump" > "$TRY/difference-from-$1" || true
    printf '%s rows less, %s more than %s' "$(grep -c '^<' "$TRY/difference-from-$1")" \
        "$(grep -c '^>' "$TRY/difference-from-$1")" "$1"
}

# ---- head office and references ------------------------------------------------------------------

# Between old and new: what the sample chain changes, and settings of the store itself. ZO06 is a
# setting of the chain and of the store at once; the store's own must win.
torture__change_head_office() {
    chain_db_change
    chain_db_sql << 'SQL'
SET NAMES utf8mb4;
SET @changed = NOW() + INTERVAL 1 SECOND;
UPDATE BAS SET BAS_OP1 = '0330', BAS_DATE = @changed WHERE BAS_CODE = 'ZO06';
UPDATE RCTBAS SET BAS_OP1 = '0430', BAS_DATE = @changed
  WHERE RCT_CODE = '1000' AND BAS_CODE = 'ZO06';
UPDATE RCTBAS SET BAS_OP1 = 'N', BAS_DATE = @changed
  WHERE RCT_CODE = '1000' AND BAS_CODE = 'ZS03';
REPLACE INTO RCTBAS (RCT_CODE, BAS_CODE, BAS_NAME1, BAS_NAME2, BAS_OP1, BAS_DATE)
  VALUES ('1000', 'ZS05', '홀 배치', '마당', '3', @changed);
SQL
    sleep 2.1 # a run's stamp must be later than the changes, or it would ask for them once more
}

# What only the store knows, and a receive must not touch: the order and visibility of categories,
# hidden products, a product of its own.
torture__use_store() {
    local codes query="SELECT PR_CODE FROM PRR WHERE RCT_CODE = '1000'"
    codes=$(chain_db_sql --skip-column-names --execute="$query" |
        sed "s/.*/'&'/" | paste -sd,)
    sqlite3 "$1" "UPDATE KIND SET KIND_ORDER = 200 - KIND_ORDER, KIND_VISIBLE = rowid % 3 = 0;
        UPDATE PR SET PR_VISIBLE = 1 WHERE rowid % 7 = 0 AND PR_CODE NOT IN ($codes);
        INSERT INTO PR (PR_CODE, PR_NAME, KIND_CODE, PR_PRICE1, PR_VISIBLE)
            VALUES ('999001', '오늘의 반찬', '0101', 5000, 0)"
}

torture__refuse() {
    tail -n 5 "$torture__dir/head-office.log" >&2
    cat "$TRY/window.log" "$COUNTER/log"/* >&2 2> /dev/null || true
    torture__say "$*; see $TRY" >&2
    return 1
}

torture__undisturbed() {
    window_start
    window_wait
    if [[ $OUTCOME != closed ]] || has_log; then
        torture__refuse "an undisturbed run failed: $OUTCOME"
    fi
}

# torture__reference NAME [SQL]: what a run leaves in a store that refuses something.
torture__reference() {
    try_begin "$1 ($START)" embedded "$START"
    [[ $1 != batch-again ]] || cp "$torture__dir/references/$START/batch-swept.MDB" "$STORE"
    [[ -z ${2:-} ]] || repair "$2"
    if [[ $1 == *-settings || $1 == new || $1 == unemptied ]]; then
        window_start
    else
        chain_db_sql --execute="UPDATE RCTBAS SET RCT_CODE = '9999' WHERE RCT_CODE = '1000'"
        window_start
    fi
    window_wait
    chain_db_sql --execute="UPDATE RCTBAS SET RCT_CODE = '1000' WHERE RCT_CODE = '9999'"
    torture__dump
    mv "$TRY/dump" "$torture__dir/references/$START/$1.dump"
    cp "$STORE" "$torture__dir/references/$START/$1.MDB"
    try_end
}

# The old menu could not be deleted, or nobody knows: that is still owed, and with it the menu's stamp.
torture__references_of_failed_emptying() {
    [[ $START != full ]] || torture__reference unemptied "CREATE TRIGGER no_delete BEFORE DELETE ON PR
        BEGIN SELECT RAISE(ABORT, 'not emptied'); END"
    try_begin unstamped embedded "$START"
    cp "$torture__dir/references/$START/new.MDB" "$STORE"
    repair "UPDATE UPD SET UPD_PR = ''"
    torture__dump
    mv "$TRY/dump" "$torture__dir/references/$START/unstamped.dump"
    try_end
}

torture__references_of() {
    local folder=$torture__dir/references/$1 name
    START=$1
    torture__write_dump_sql "$folder/start.MDB" > "$folder/dump.sql"
    try_begin old embedded "$START"
    torture__dump
    mv "$TRY/dump" "$folder/old.dump"
    if [[ $START != incremental ]]; then
        repair 'DELETE FROM PRO; DELETE FROM PRS; DELETE FROM PRC; DELETE FROM PR; DELETE FROM KIND'
        torture__dump
        mv "$TRY/dump" "$folder/emptied.dump"
    fi
    try_end
    torture__reference batch "$NO_SWEEP"
    torture__reference batch-settings "$NO_SWEEP"
    torture__reference batch-swept
    torture__reference batch-again "$NO_SWEEP"
    torture__reference new
    [[ $START == incremental ]] || torture__references_of_failed_emptying
    # The frame itself: references that do not differ would pass anything.
    for name in old batch batch-swept; do
        ! cmp -s "$folder/$name.dump" "$folder/new.dump" ||
            torture__refuse "the references $name and new do not differ ($START)"
    done
    ! cmp -s "$folder/batch.dump" "$folder/batch-swept.dump" ||
        torture__refuse "the references batch and batch-swept do not differ ($START)"
    # Both engines leave the same.
    try_begin 'behind ODBC' odbc "$START"
    torture__undisturbed
    look
    [[ $STATE == new ]] || torture__refuse "a store behind ODBC differs ($START): \
$(torture__difference new)"
    printf '%s\n' "$TOOK" > "$folder/takes"
    try_end
    # A run with nothing new to receive, and a receive repeated from the beginning, change nothing.
    try_begin again embedded "$START"
    for name in 'SELECT 1' "$FROM_THE_BEGINNING"; do
        cp "$folder/new.MDB" "$STORE"
        repair "$name" > "$TRY/repaired"
        torture__undisturbed
        look
        [[ $STATE == new ]] || torture__refuse "a repeated receive changes the store ($START): \
$(torture__difference new)"
    done
    try_end
}

torture__write_driver() {
    mkdir -p "$torture__dir/odbc"
    printf '[Microsoft Access Driver (*.mdb)]\nDriver=%s\n' "$torture__tools/libtorture_driver.so" \
        > "$torture__dir/odbc/odbcinst.ini"
    : > "$torture__dir/odbc/odbc.ini"
}
