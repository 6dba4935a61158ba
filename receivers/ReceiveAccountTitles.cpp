#include "receivers/ReceiveAccountTitles.h"

#include "receivers/Titles.h"
#include "sync/Receiver.h"

namespace quillet::receivers {

namespace {

// IF(!x,'',x) sends '' for whatever reads as 0; Null stays Null, and is written as ''.
std::string serverSql(const std::string& stamp) {
    return " SELECT FN_CD1,FN_CD2,FN_NAME,IF(!FN_SA,'',FN_SA),IF(!FN_SB,'',FN_SB),"
           "IF(!FN_SC,'',FN_SC),IF(!FN_SD,'',FN_SD),IF(!FN_SE,'',FN_SE),IF(!FN_CUST,'',FN_CUST),"
           "FN_SNAME,"
           " IF(!FN_FIND,'',FN_FIND),IF(FN_DATE = '0000-00-00 00:00:00','',FN_DATE) FROM FN "
           " WHERE IF(!FN_DATE,'',FN_DATE) > '" +
           stamp + "' ";
}

const sync::SqlTemplate Insert(
    " INSERT INTO FN (FN_CD1,FN_CD2,FN_NAME,FN_SA,FN_SB,FN_SC,FN_SD,FN_SE,FN_CUST,FN_SNAME,FN_FIND,"
    "FN_DATE,FN_KEY) "
    " VALUES ('{0}','{1}','{2}','{3}','{4}','{5}','{6}','{7}','{8}','{9}','{10}',"
    "'{11}','{0}{1}' )");

const sync::SqlTemplate Update(" UPDATE FN SET FN_NAME = '{2}',"
                               " FN_SA = '{3}',FN_SB = '{4}',FN_SC = '{5}',"
                               " FN_SD = '{6}',FN_SE = '{7}',FN_CUST = '{8}',"
                               " FN_SNAME = '{9}',FN_FIND = '{10}',FN_DATE = '{11}' "
                               " WHERE FN_KEY = '{0}{1}' ");

} // namespace

bool ReceiveAccountTitles(sync::Run& run) {
    return sync::receive(
        run, {.title = AccountTitlesTitle,
              .ServerSql = serverSql(run.stamp(sync::Group::AccountTitles)),
              .StoreSql = " SELECT FN_CD1,FN_CD2,FN_NAME,FN_SA,FN_SB,FN_SC,FN_SD,FN_SE,FN_CUST,"
                          "FN_SNAME,FN_FIND,FN_DATE,FN_KEY FROM FN ",
              .rowTotal = sync::RowTotalRule::Set,
              .criteria = sync::SqlTemplate(" FN_KEY = '{0}{1}' "),
              .insert = Insert,
              .update = Update});
}

} // namespace quillet::receivers
