#include "receivers/ReceiveUsers.h"

#include "receivers/Titles.h"
#include "sync/Receiver.h"

namespace quillet::receivers {

namespace {

std::string serverSql(const std::string& storeCode) {
    return " SELECT ST_CODE,ST_NAME,' ',IF(ISNULL(ST_CARD),'',ST_CARD),IF(ISNULL(ST_NO),'',ST_NO),"
           "IF(ISNULL(ST_BIRTH),'',IF(ST_BIRTH = '0000-00-00','',ST_BIRTH)),ST_SECT,"
           " IF(ISNULL(ST_PHONE),'',ST_PHONE),IF(ISNULL(ST_HPHONE),'',ST_HPHONE),' ',"
           " IF(ISNULL(ST_ZIP),'',ST_ZIP),IF(ISNULL(ST_ADDR1),'',ST_ADDR1),"
           "IF(ISNULL(ST_ADDR2),'',ST_ADDR2),"
           " IF(ISNULL(ST_INDATE),'',IF(ST_INDATE = '0000-00-00','',ST_INDATE)),"
           "IF(ISNULL(ST_OTDATE),'',IF(ST_OTDATE = '0000-00-00','',ST_OTDATE)),' ',"
           " IF(ISNULL(ST_DUTY),'',ST_DUTY), IF(ISNULL(ST_POSID),'',ST_POSID),"
           "IF(ISNULL(ST_POSPWD),'',ST_POSPWD),' ',IF(ISNULL(ST_POSLVL),'',ST_POSLVL), "
           " IF(ISNULL(ST_ATDTIME),'',ST_ATDTIME), IF(ISNULL(ST_ATDPAY),'',ST_ATDPAY),"
           " IF(ISNULL(ST_ASPLVL),'',ST_ASPLVL) FROM ST "
           " WHERE RCT_CODE = '" +
           storeCode + "' AND ST_ASPLVL <> '0' ";
}

constexpr const char* StoreSql =
    " SELECT USR_CODE,USR_NAME,USR_SEX,USR_CARD,USR_NO,USR_BIRTH,USR_BIRCHK,USR_PHONE,USR_CPHONE,"
    "USR_EMAIL,"
    " USR_ZIP,USR_ADDR1,USR_ADDR2,USR_FDATE,USR_EDATE,USR_GU,USR_DUTY,USR_DISP,USR_PASS,USR_LVL,"
    "USR_ULVL,USR_ASPLVL "
    " FROM USR ";

// The id deliberately goes through the number rule before it is quoted: "0012" becomes '12'.
const sync::SqlTemplate Insert(
    " INSERT INTO USR (USR_CODE,USR_NAME,USR_SEX,USR_CARD,USR_NO,USR_BIRTH,USR_BIRCHK,USR_PHONE,"
    "USR_CPHONE,"
    " USR_EMAIL,USR_ZIP,USR_ADDR1,USR_ADDR2,USR_FDATE,USR_EDATE,USR_GU,USR_DUTY,USR_DISP,USR_ID,"
    "USR_PASS,"
    " USR_LVL,USR_ULVL,USR_ATTENDTIME,USR_TIMEPAY,USR_ASPLVL) VALUES ("
    "'{0}','{1}',{#2},'{3}','{4}','{5}',{#6},'{7}',"
    "'{8}',"
    "'{9}','{10}','{11}','{12}','{13}','{14}','{15}','{16}',1,'{#17}',"
    "'{18}',"
    "'{19}','{20}','{21}','{22}','{23}' )");

const sync::SqlTemplate Update(" UPDATE USR SET USR_NAME = '{1}',USR_SEX = {#2},"
                               " USR_CARD = '{3}',USR_NO = '{4}',USR_BIRTH = '{5}',"
                               " USR_BIRCHK = {#6},USR_PHONE = '{7}',USR_CPHONE = '{8}',"
                               " USR_EMAIL = '{9}',USR_ZIP = '{10}',USR_ADDR1 = '{11}',"
                               " USR_ADDR2 = '{12}',USR_FDATE = '{13}',USR_EDATE = '{14}',"
                               " USR_GU = '{15}',USR_DUTY = '{16}', "
                               " USR_ATTENDTIME = '{21}', USR_TIMEPAY = '{22}',"
                               " USR_ASPLVL = '{23}'"
                               " WHERE USR_CODE = '{0}' ");

} // namespace

bool ReceiveUsers(sync::Run& run) {
    return sync::receive(run, {.title = UsersTitle,
                               .ServerSql = serverSql(run.storeCodeSetting()),
                               .StoreSql = StoreSql,
                               .rowTotal = sync::RowTotalRule::Set,
                               .criteria = sync::SqlTemplate("USR_CODE = '{0}' "),
                               .insert = Insert,
                               .update = Update});
}

} // namespace quillet::receivers
