#include "receivers/ReceiveMembers.h"

#include "receivers/CustomerTable.h"

namespace quillet::receivers {

namespace {

std::string serverSql(const std::string& stamp) {
    return " SELECT CT.CT_CODE,if(ISNULL(CT_LVL),' ',CT_LVL),CT_NAME,IF(ISNULL(CT_SEX),0,CT_SEX),"
           "CT_JUMIN,IF(ISNULL(CT_BIRTH),'',CT_BIRTH),IF(ISNULL(CT_SECT),'0',CT_SECT),CT_PHONE,"
           "CT_MPHONE ,"
           " CT_MAIL,IF(ISNULL(CT_MAILCK),0,CT_MAILCK),CT_ZIP,CT_ADDR1,CT_ADDR2,CT_END,"
           "CT_POINT + CT_UPOINT,CT_POINT,CT_UPOINT,CT_VISITN,0,0,IF(ISNULL(CT_VDATE),'',CT_VDATE),"
           "IF(ISNULL(CT_MSG),'',CT_MSG),"
           " LEFT(CT_DATE,10),GP_CODE,' ' AS COL2,' ' AS COL3,' ' AS COL4,"
           "IF(ISNULL(CT_DMZIP),'',CT_DMZIP),IF(ISNULL(CT_DMADDR1),'',CT_DMADDR1),"
           " IF(ISNULL(CT_DMADDR2),'',CT_DMADDR2),IF(ISNULL(CT_JOB),'',CT_JOB),"
           "IF(ISNULL(CT_DAY),'',CT_DAY),IF(ISNULL(CT_ABO),'',CT_ABO),"
           " IF(ISNULL(CT_HOBBY),'',CT_HOBBY),IF(ISNULL(CT_INCODE),'',CT_INCODE),"
           "IF(ISNULL(CT_INNAME),'',CT_INNAME),0 AS COL6,' ' AS COL7,' ' AS COL8 "
           " FROM CT LEFT JOIN CTMEM ON CT.CT_CODE = CTMEM.CT_CODE WHERE CT_GUBUN = '1' AND "
           "CT_DATE > '" +
           stamp + "' ";
}

const std::string Columns(InsertCustomer);

// Ten to a line, as in the table of columns.
const sync::SqlTemplate Insert = customerStatement(
    Columns + "'{0}','{1}','{2}',{#3},'{4}','{5}',{#6},'{7}','{8}','{9}',"
              "{#10},'{11}','{12}','{13}',{CK},{#15?},{#16?},{#17?},{#18?},{#19},"
              "{#20},'{VD}','{22}','{23}','{24}',{#25},'{26}','{27}','{28}','{29}',"
              "'{30}','{31}','{32}','{33}','{34}','{35}','{36}',{#37},'{38}','{39}') ");

const sync::SqlTemplate FirstFill = customerStatement(
    Columns + " '{0}','{1}','{2}',{#3},'{4} ','{5}',{#6},'{7} ','{8} ','{9} ',"
              "{#10} ,'{11} ','{12} ','{13} ',{CK},{#15?},{#16?},{#17?} ,{#18?},{#19},"
              "{#20},'{VD}','{22} ','{23} ','{24} ',{#25?},'{26} ','{27} ','{28} ','{29} ',"
              "'{30} ','{31} ','{32} ','{33} ','{34} ','{35} ','{36} ',{#37?},'{38} ','{39} ') ");

const sync::SqlTemplate Update =
    customerStatement(" UPDATE CT SET CT_LVL = '{1} ',CT_NAME = '{2} ',"
                      " CT_SEX = {#3} ,CT_NO = '{4} ',CT_BIRTH = '{5} ',"
                      " CT_BIRCHK = {#6} ,CT_PHONE = '{7}',CT_CPHONE = '{8}',"
                      " CT_EMAIL = '{9}',CT_EMCHK = {#10},CT_ZIP = '{11}',"
                      " CT_ADDR1 = '{12}',CT_ADDR2 = '{13}',CT_CK = {CK},"
                      " CT_TPOINT = {#15?},CT_RPOINT = {#16?},"
                      " CT_UPOINT = {#17?},CT_VISITN = {#18?}" +
                      std::string(UpdateCustomerTail));

} // namespace

bool ReceiveMembers(sync::Run& run) {
    return receiveCustomers(run, serverSql(run.stamp(sync::Group::Members)),
                            {Insert, FirstFill, Update}, false);
}

} // namespace quillet::receivers
