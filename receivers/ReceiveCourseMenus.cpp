#include "receivers/ReceiveCourseMenus.h"

#include "receivers/Titles.h"
#include "sync/Receiver.h"

namespace quillet::receivers {

namespace {

// Server row: 0 product, 1 dish, 2 name, 3 quantity, 4 interval, 5 number, 6 both codes.
constexpr const char* ServerSql =
    " SELECT PRC.PR_CODE,PRC_CODE,PRC_NAME,PRC_QTY,PRC_INTERVAL,PRC_NO,"
    "CONCAT(PRC.PR_CODE,PRC_CODE) AS COL0 "
    " FROM   ((PRC LEFT JOIN PR ON PR.PR_CODE =PRC.PR_CODE) LEFT JOIN KIND ON KIND.KD_ID = "
    "PR.KD_ID) "
    " WHERE  PR.PR_END <> '2' AND  IF(ISNULL(KD_CKSD),'Y',KD_CKSD) = 'Y' ";

const sync::SqlTemplate
    Insert(" INSERT INTO PRC (PR_CODE,PRC_CODE,PRC_NAME,PRC_QTY,PRC_INTERVAL,PRC_NO, PRC_RCV)"
           " VALUES ("
           "'{0}','{1}','{2}',{#3},{#4},{#5}, '1') ");

const sync::SqlTemplate Update(" UPDATE PRC SET "
                               " PRC_NAME = '{2}',PRC_QTY = {#3},"
                               " PRC_INTERVAL = {#4},PRC_NO = {#5}, "
                               " PRC_RCV      = '1' "
                               " WHERE PR_CODE = '{0}' AND PRC_CODE = '{1}' ");

} // namespace

bool ReceiveCourseMenus(sync::Run& run) {
    return sync::receive(
        run, {.title = CourseMenusTitle,
              .ServerSql = ServerSql,
              .StoreSql = " SELECT PR_CODE,PRC_CODE,PRC_NAME,PRC_QTY,PRC_INTERVAL,PRC_NO,PR_CODE + "
                          "PRC_CODE AS COL0 FROM PRC ",
              .rowTotal = sync::RowTotalRule::Add,
              .criteria = sync::SqlTemplate(" COL0 = '{6}' "),
              .insert = Insert,
              .update = Update});
}

} // namespace quillet::receivers
