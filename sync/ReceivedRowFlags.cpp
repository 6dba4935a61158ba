#include "sync/ReceivedRowFlags.h"

namespace quillet::sync {

void MigrateFlagColumns(Run& run) {
    const db::StatementArray columns{"", "ALTER TABLE PRC ADD COLUMN PRC_RCV TEXT(1) ",
                                     "ALTER TABLE PRS ADD COLUMN PRS_RCV TEXT(1) ",
                                     "ALTER TABLE PRO ADD COLUMN PRO_RCV TEXT(1) "};
    std::string unread;
    run.store().PUT_DATA_TABLE(columns, 0, unread);
    run.saveSetting(StoreApplication, "RCV", "TABLEUPDATE", logs::dateTimeText(run.now()));
}

void SweepReceivedRows(Run& run) {
    const bool withSetMenus = run.setMenuSkipFlag == 0;
    run.clearStatements();
    run.append(" DELETE FROM PRC WHERE PRC_RCV = '9'");
    if (withSetMenus)
        run.append(" DELETE FROM PRS WHERE PRS_RCV = '9'");
    run.append(" DELETE FROM PRO WHERE PRO_RCV = '9'");
    run.append(" UPDATE PRC SET PRC_RCV = '9'");
    if (withSetMenus)
        run.append(" UPDATE PRS SET PRS_RCV = '9'");
    run.append(" UPDATE PRO SET PRO_RCV = '9'");
    run.store().PUT_DATA_DEL(run.statements);
    if (run.store().Status() != 1)
        run.logBatchFailure("미수신 자료 정리");
}

} // namespace quillet::sync
