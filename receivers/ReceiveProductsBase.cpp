#include "receivers/ReceiveProductsBase.h"

#include "receivers/ProductTable.h"

namespace quillet::receivers {

namespace {

constexpr const char* Select =
    " SELECT PR.PR_CODE,PR_NAME,CONCAT('0',LEFT(PR.KD_ID,3)),PR_DATE,PR_OP1,PR_OP2,PR_OP3,PR_OP0,"
    "PR_END,"
    "        PR_TAX,PR_VM,IF(ISNULL(PR_DCGU),0,PR_DCGU),IF(ISNULL(PR_SETGU),0,PR_SETGU),"
    "        IF(ISNULL(PR_COSGU),0,PR_COSGU),IF(ISNULL(PR_OPTGU),0,PR_OPTGU),"
    "IF(ISNULL(PR_CPRGU),0,PR_CPRGU),PR_BCODE, IF(ISNULL(PR_POINTGU),0,PR_POINTGU) "
    " FROM ( PR LEFT JOIN PRGU ON PR.PR_CODE = PRGU.PR_CODE ) LEFT JOIN KIND ON KIND.KD_ID = "
    "PR.KD_ID ";

/// Both halves: rows changed since the stamp, in categories that the stores show.
std::string changedSince(const std::string& stamp) {
    return " WHERE PR_DATE > '" + stamp +
           "' AND IF(ISNULL(KD_CKSD),'Y',KD_CKSD) = 'Y' AND PR.KD_ID <> '000000000000000' ";
}

std::string serverSql(const std::string& stamp) {
    return Select + changedSince(stamp) +
           " AND IF(ISNULL(KD_CKGU),'A402',KD_CKGU) = 'A402' "
           " UNION ALL " +
           Select + changedSince(stamp) +
           " AND IF(ISNULL(KD_CKGU),'A420',KD_CKGU) = 'A420' AND KD_LVL = 1"
           " AND LEFT(KIND.KD_ID,3) <> '999' ";
}

const ProductUpdate Update = updateProductWithPoint(" PR_POINT = '");

} // namespace

bool ReceiveProductsBase(sync::Run& run) {
    return receiveProducts(run, serverSql(run.stamp(sync::Group::Menu)), InsertProductWithPoint,
                           Update);
}

} // namespace quillet::receivers
