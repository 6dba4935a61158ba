#include "receivers/ReceiveProductsPriceOption.h"

#include "receivers/ProductTable.h"
#include "sync/LeadingNumber.h"

namespace quillet::receivers {

namespace {

std::string serverSql(bool listPriceMode, const std::string& stamp, const std::string& storeCode) {
    return " SELECT PR.PR_CODE,PR_NAME,CONCAT('0',LEFT(PR.KD_ID,3)), "
           "        if(BAS.BAS_OP1='Y',if(isNull(CTP.CTP_UP)||(CTP.CTP_UP=0),PR_DATE,CTP_DATE),"
           "PR_DATE) CTP_DATE,  "
           "        if(BAS.BAS_OP1='Y',if(isNull(CTP.CTP_UP)||(CTP.CTP_UP=0),if(BAS.BAS_OP2='1',"
           "PR.PR_OP1,0),CTP.CTP_UP),PR.PR_OP1) UP, "
           "        PR_OP2,PR_OP3,PR_OP0,PR_END, PR_TAX,PR_VM, "
           "        IF(ISNULL(PR_DCGU),0,PR_DCGU),IF(ISNULL(PR_SETGU),0,PR_SETGU),"
           "        IF(ISNULL(PR_COSGU),0,PR_COSGU),IF(ISNULL(PR_OPTGU),0,PR_OPTGU),"
           "IF(ISNULL(PR_CPRGU),0,PR_CPRGU),PR_BCODE, PR_POINTGU "
           " FROM "
           " PR LEFT JOIN PRGU ON PR.PR_CODE = PRGU.PR_CODE " +
           std::string(listPriceMode ? " LEFT JOIN " : " INNER JOIN ") +
           "         CTP ON (PR.PR_CODE=CTP.PR_CODE and CTP.RCT_CODE='" + storeCode +
           "' AND CTP.CT_CODE='1000000000000000')"
           "         LEFT JOIN KIND ON KIND.KD_ID = PR.KD_ID"
           "        ,BAS"
           " WHERE "
           "        BAS_CODE='ZO01'"
           "        AND KD_CKSD='Y'"
           "        AND KD_CKGU IN ('A402','A420') AND PR.KD_ID <> '000000000000000'"
           " AND KD_LVL = 1 AND  LEFT(KIND.KD_ID,3) <> '999' "
           "        AND if(BAS.BAS_OP1='Y',if(isNull(CTP.CTP_UP)||(CTP.CTP_UP=0),PR_DATE,CTP_DATE),"
           "PR_DATE)>='" +
           stamp + "'";
}

const ProductUpdate Update = updateProductWithPoint(" PR_POINT =  '");

} // namespace

bool ReceiveProductsPriceOption(sync::Run& run) {
    const bool listPriceMode = sync::leadingNumber(run.priceOptionMode) == 1;
    return receiveProducts(
        run, serverSql(listPriceMode, run.stamp(sync::Group::Menu), run.storeCodeSetting()),
        InsertProductWithPoint, Update);
}

} // namespace quillet::receivers
