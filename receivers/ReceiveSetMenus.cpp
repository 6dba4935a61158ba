#include "receivers/ReceiveSetMenus.h"

#include "receivers/Titles.h"
#include "sync/Receiver.h"

namespace quillet::receivers {

namespace {

// Server row: 0 product, 1 item, 2 name, 3 quantity, 4 number, 5 both codes.
constexpr const char* Select = " SELECT PRS.PR_CODE,PRS_CODE,PRS_NAME,PRS_QTY,PRS_NO,"
                               "CONCAT(PRS.PR_CODE,PRS_CODE) AS COL0 ";

std::string serverSql(const sync::Run& run) {
    if (run.priceOptionFlag != "Y")
        return std::string(Select) + " FROM   PRS, PR "
                                     " WHERE  PRS.PR_CODE = PR.PR_CODE AND PR.PR_END = '0' ";
    return std::string(Select) +
           " FROM   PRS, CTP, PR "
           " WHERE  PRS.PR_CODE = CTP.PR_CODE "
           " AND    CTP.PR_CODE= PR.PR_CODE "
           " AND    PR.PR_END <> '2' "
           " AND    CTP.RCT_CODE='" +
           run.storeCodeSetting() + "' ";
}

// The two INSERTs deliberately differ in a blank after the last column.
const sync::SqlTemplate
    Insert(" INSERT INTO PRS (PR_CODE,PRS_CODE,PRS_NAME,PRS_QTY,PRS_NO, PRS_RCV) VALUES ("
           "'{0}','{1}','{2}',{#3},{#4}, '1') ");

const sync::SqlTemplate
    FirstFill(" INSERT INTO PRS (PR_CODE,PRS_CODE,PRS_NAME,PRS_QTY,PRS_NO, PRS_RCV ) VALUES ("
              "'{0}','{1}','{2}',{#3},{#4}, '1') ");

const sync::SqlTemplate Update(" UPDATE PRS SET "
                               " PRS_NAME = '{2}',PRS_QTY = {#3},PRS_NO = {#4}, "
                               " PRS_RCV  = '1' "
                               " WHERE PR_CODE = '{0}' AND PRS_CODE = '{1}' ");

} // namespace

bool ReceiveSetMenus(sync::Run& run) {
    return sync::receive(
        run, {.title = SetMenusTitle,
              .ServerSql = serverSql(run),
              .StoreSql = " SELECT PR_CODE,PRS_CODE,PRS_NAME,PRS_QTY,PRS_NO, PR_CODE + PRS_CODE AS "
                          "COL0 "
                          " FROM   PRS ",
              .rowTotal = sync::RowTotalRule::Add,
              .criteria = sync::SqlTemplate(" COL0 = '{5}' "),
              .insert = Insert,
              .firstFill = FirstFill,
              .update = Update});
}

} // namespace quillet::receivers
