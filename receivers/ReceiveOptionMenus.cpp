#include "receivers/ReceiveOptionMenus.h"

#include "receivers/Titles.h"
#include "sync/Receiver.h"

namespace quillet::receivers {

namespace {

// Server row: 0 product, 1 option, 2 the option's name (Null when it has none), 3 both codes.
constexpr const char* ServerSql =
    " SELECT PRO.PR_CODE,PRO.PROP_CODE,PROP.PROP_NAME,CONCAT(PRO.PR_CODE,PRO.PROP_CODE) AS COL0 "
    "FROM ((PRO LEFT JOIN PR ON PR.PR_CODE =PRO.PR_CODE) LEFT JOIN KIND ON KIND.KD_ID = PR.KD_ID) "
    "LEFT JOIN PROP ON PRO.PROP_CODE = PROP.PROP_CODE "
    " WHERE IF(ISNULL(KD_CKSD),'Y',KD_CKSD) = 'Y' AND PR.PR_END <> 2";

// The two INSERTs deliberately differ in a blank before the last parenthesis.
const sync::SqlTemplate Insert(" INSERT INTO PRO (PR_CODE,PROP_CODE,PROP_NAME, PRO_RCV) VALUES ("
                               "'{0}','{1}','{2}', '1' ) ");

const sync::SqlTemplate FirstFill(" INSERT INTO PRO (PR_CODE,PROP_CODE,PROP_NAME, PRO_RCV) VALUES ("
                                  "'{0}','{1}','{2}', '1') ");

const sync::SqlTemplate Update(" UPDATE PRO SET PROP_NAME = '{2}', PRO_RCV = '1' "
                               " WHERE PR_CODE = '{0}' AND PROP_CODE = '{1}' ");

} // namespace

bool ReceiveOptionMenus(sync::Run& run) {
    return sync::receive(
        run, {.title = OptionMenusTitle,
              .ServerSql = ServerSql,
              .StoreSql = " SELECT PR_CODE,PROP_CODE,PROP_NAME, PR_CODE + PROP_CODE AS COL0  "
                          " FROM   PRO ",
              .rowTotal = sync::RowTotalRule::Add,
              .criteria = sync::SqlTemplate(" COL0 = '{3}' "),
              .insert = Insert,
              .firstFill = FirstFill,
              .update = Update});
}

} // namespace quillet::receivers
