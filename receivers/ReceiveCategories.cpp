#include "receivers/ReceiveCategories.h"

#include "receivers/Titles.h"
#include "sync/Receiver.h"
#include "sync/SqlTemplate.h"

namespace quillet::receivers {

namespace {

// Server row: 0 code, 1 name, 2 hidden marker ('0' show, '1' hide), 3 order (not used).
constexpr const char* ServerSql =
    " SELECT CONCAT('0',LEFT(KD_ID,3)) AS KD_ID,KD_NAME,"
    " IF(IF(ISNULL(KD_CKSD),'N',KD_CKSD) = 'Y', '0','1'), KD_ORDER from KIND "
    " WHERE IF(ISNULL(KD_CKGU),'A402',KD_CKGU) = 'A402' "
    " UNION ALL "
    " SELECT DISTINCT CONCAT('0',LEFT(KD_ID,3)) AS KD_ID,KD_NAME, '0', KD_ORDER FROM KIND "
    " WHERE IF(ISNULL(KD_CKSD),'Y',KD_CKSD) = 'Y' "
    " AND IF(ISNULL(KD_CKGU),'A420',KD_CKGU) = 'A420' AND KD_LVL = 1 AND LEFT(KD_ID,3) <> '999' ";

// The store numbers new categories itself, in the order in which they arrive; the head office's
// order is deliberately not taken over.
const sync::SqlTemplate Insert(" INSERT INTO KIND (KIND_CODE,KIND_NAME,KIND_ORDER,KIND_VISIBLE) "
                               " SELECT '{0}','{1}',IIF(COUNT(*) = 0,1,MAX(KIND_ORDER) + 1),0 "
                               " FROM KIND ");

// Whatever the hidden marker says: order and visibility of a known category are the store's own.
const sync::SqlTemplate Update(" UPDATE KIND SET KIND_NAME = '{1}' WHERE KIND_CODE = '{0}' ");

/// A new category that is hidden is not created at all.
std::optional<std::string> insertIfShown(const sync::ServerRow& row) {
    if (row.number(2) != 0)
        return std::nullopt;
    return Insert.render(row);
}

void emptyMenuTables(sync::Run& run) {
    run.DelList.insert(run.DelList.end(),
                       {" DELETE FROM PRO  ", " DELETE FROM PRS  ", " DELETE FROM PRC  ",
                        " DELETE FROM PR   ", " DELETE FROM KIND "});
    // A store without a menu must not be left like that because somebody closes the window.
    run.mustFinish = true;
    run.store().PUT_DATA_DEL(run.DelList);
    // Deliberately no reason to stop: what could not be emptied is looked up like any row.
    run.oldMenuRemains = run.store().Status() != 1;
    if (run.oldMenuRemains)
        run.logBatchFailure(CategoriesTitle);
}

} // namespace

bool ReceiveCategories(sync::Run& run) {
    return sync::receive(run, {.title = CategoriesTitle,
                               .ServerSql = ServerSql,
                               .StoreSql = " SELECT KIND_CODE,KIND_NAME FROM KIND ",
                               .rowTotal = sync::RowTotalRule::Set,
                               .criteria = sync::SqlTemplate("KIND_CODE = '{0}' "),
                               .insert = insertIfShown,
                               .update = Update,
                               .beforeLookup = [&run] {
                                   if (run.menuNeverReceived)
                                       emptyMenuTables(run);
                               }});
}

} // namespace quillet::receivers
