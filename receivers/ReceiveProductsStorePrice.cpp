#include "receivers/ReceiveProductsStorePrice.h"

#include "receivers/ProductTable.h"

namespace quillet::receivers {

namespace {

constexpr const char* Select =
    " SELECT PR.PR_CODE,PR_NAME,CONCAT('0',LEFT(PR.KD_ID,3)),PR_DATE,CTP.CTP_UP,PR_OP2,PR_OP3,"
    "PR_OP0,PR_END,"
    "        PR_TAX,PR_VM,IF(ISNULL(PR_DCGU),0,PR_DCGU),IF(ISNULL(PR_SETGU),0,PR_SETGU),"
    "        IF(ISNULL(PR_COSGU),0,PR_COSGU),IF(ISNULL(PR_OPTGU),0,PR_OPTGU),"
    "IF(ISNULL(PR_CPRGU),0,PR_CPRGU),PR_BCODE "
    " FROM   ((PR INNER JOIN PRGU ON PR.PR_CODE = PRGU.PR_CODE ) INNER JOIN CTP ON PR.PR_CODE = "
    "CTP.PR_CODE) INNER JOIN KIND ON KIND.KD_ID = PR.KD_ID ";

/// Both halves: rows changed since the stamp, in categories that the stores show.
std::string changedSince(const std::string& stamp) {
    return " WHERE  CTP_DATE > '" + stamp +
           "' AND IF(ISNULL(KD_CKSD),'Y',KD_CKSD) = 'Y' AND PR.KD_ID <> '000000000000000' ";
}

std::string serverSql(const std::string& stamp, const std::string& storeCode) {
    return Select + changedSince(stamp) +
           " AND    IF(ISNULL(KD_CKGU),'A402',KD_CKGU) = 'A402' AND CTP.RCT_CODE = '" + storeCode +
           "' "
           " AND    CTP.CT_CODE = '1000000000000000' "
           " UNION ALL " +
           Select + changedSince(stamp) +
           " AND    IF(ISNULL(KD_CKGU),'A420',KD_CKGU) = 'A420' AND KD_LVL = 1 AND CTP.RCT_CODE = '" +
           storeCode +
           "' "
           " AND    CTP.CT_CODE = '1000000000000000' AND LEFT(KIND.KD_ID,3) <> '999'  ";
}

const sync::SqlTemplate Insert = productStatement(
    " INSERT INTO PR (PR_CODE,PR_NAME,KIND_CODE,PR_DATE,PR_PRICE1,PR_PRICE2,PR_PRICE3,PR_COST,"
    " PR_CK,PR_TAX,PR_IVCK,PR_DCGU,PR_SETGU,PR_COSGU,PR_OPTGU,PR_CPRGU,PR_VISIBLE,PR_BARCODE)"
    " VALUES ("
    "'{0}','{1}','{2}','{3}',{#4},{#5},{#6},{#7},"
    "{CkText},{#9},{VmFlag},{#11},{#12},{#13},{#14},{#15},{VisibleText},'{16}') ");

const ProductUpdate Update(" UPDATE PR SET "
                           " PR_NAME = '{1}' {KindClause},PR_DATE = '{3}',"
                           " PR_PRICE1 = {#4},   PR_PRICE2 = {#5},"
                           " PR_PRICE3 = {#6},   PR_COST = {#7},"
                           " PR_CK     = {CkText},      PR_VISIBLE = {VisibleText},"
                           " PR_TAX    = {#9},   PR_IVCK = {VmFlag},"
                           " PR_DCGU   = {#11},  PR_SETGU = {#12},"
                           " PR_COSGU  = {#13},  PR_OPTGU = {#14},"
                           " PR_CPRGU  = {#15},  PR_BARCODE = '{16}' "
                           " WHERE PR_CODE = '{0}' ");

} // namespace

bool ReceiveProductsStorePrice(sync::Run& run) {
    return receiveProducts(run, serverSql(run.stamp(sync::Group::Menu), run.storeCodeSetting()),
                           Insert, Update);
}

} // namespace quillet::receivers
