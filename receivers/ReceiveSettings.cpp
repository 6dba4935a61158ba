#include "receivers/ReceiveSettings.h"

#include "receivers/Titles.h"
#include "sync/Receiver.h"

namespace quillet::receivers {

namespace {

// Server row: 0 code, 1 and 2 names, 3 to 6 options.
std::string serverSql(const std::string& tableAndFilter) {
    return " SELECT BAS_CODE,BAS_NAME1,BAS_NAME2,"
           " IF(ISNULL(BAS_OP1),' ',BAS_OP1) AS BASOP1,IF(ISNULL(BAS_OP2),' ',BAS_OP2) AS BASOP2,"
           " IF(ISNULL(BAS_OP3),' ',BAS_OP3) AS BASOP3,IF(ISNULL(BAS_OP4),' ',BAS_OP4) AS BASOP4"
           " FROM " +
           tableAndFilter;
}

// The blank behind every value is deliberate; other programs read the store with it.
const sync::SqlTemplate
    Insert(" INSERT INTO BAS (BAS_CODE,BS_NAME1,BS_NAME2,BS_M1,BS_M2,BS_M3,BS_M4) VALUES ("
           "'{0} ','{1} ','{2} ','{3} ','{4} ','{5} ','{6} ' )");

const sync::SqlTemplate Update(" UPDATE BAS SET BS_NAME1 = '{1} ',BS_NAME2 = '{2} ',"
                               " BS_M1 = '{3} ',BS_M2 = '{4} ',BS_M3 = '{5} ',"
                               " BS_M4 = '{6} ' WHERE BAS_CODE = '{0}' ");

bool receiveSettings(sync::Run& run, std::string_view title, const std::string& tableAndFilter) {
    return sync::receive(
        run, {.title = title,
              .ServerSql = serverSql(tableAndFilter),
              .StoreSql = " SELECT BAS_CODE,BS_NAME1,BS_NAME2,BS_M1,BS_M2,BS_M3,BS_M4 FROM BAS ",
              .rowTotal = sync::RowTotalRule::Set,
              .criteria = sync::SqlTemplate("BAS_CODE = '{0}' "),
              .insert = Insert,
              .update = Update});
}

} // namespace

bool ReceiveGlobalSettings(sync::Run& run) {
    return receiveSettings(run, GlobalSettingsTitle,
                           "BAS "
                           " WHERE IF(ISNULL(BAS_DATE),' ',BAS_DATE) > '" +
                               run.stamp(sync::Group::Settings) + "' ");
}

bool ReceiveStoreSettings(sync::Run& run) {
    run.clearStatements();
    return receiveSettings(run, StoreSettingsTitle,
                           "RCTBAS "
                           " WHERE IF(ISNULL(BAS_DATE),' ',BAS_DATE) > '" +
                               run.storeSettingsSince + "' AND RCT_CODE = '" +
                               run.storeCodeSetting() + "'");
}

} // namespace quillet::receivers
