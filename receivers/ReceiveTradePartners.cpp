#include "receivers/ReceiveTradePartners.h"

#include "receivers/CustomerTable.h"

namespace quillet::receivers {

namespace {

std::string serverSql(const std::string& stamp) {
    return " SELECT CT.CT_CODE,CT_DANLV,CT_NAME,' ',CT_JUMIN, ' ',' ',CT_PHONE,CT_CEOPHONE,CT_MAIL,"
           "' ',"
           " CT_ZIP,CT_ADDR1,CT_ADDR2,CT_END,CT_POINT + CT_UPOINT,CT_POINT,CT_UPOINT,CT_VISITN,0,0,"
           "CT_VDATE,CT_MSG,LEFT(CT_DATE,10),GP_CODE,' ',' ',' ',"
           " ' ',' ',' ',' ',' ',' ',' ',' ',' ',1,IF(ISNULL(CT_ST),'',CT_ST),"
           "IF(ISNULL(CT_KD),'',CT_KD) "
           " FROM CT LEFT JOIN CTCOM ON CT.CT_CODE = CTCOM.CT_CODE WHERE CT_GUBUN = '0' AND "
           "CT_DATE > '" +
           stamp + "' ";
}

const std::string Columns(InsertCustomer);

// Ten to a line, as in the table of columns.
constexpr const char* Values =
    "'{0}','{1}','{2}',{#3},'{4}','{5}',{#6},'{7}','{8}','{9}',"
    "{#10},'{11}','{12}','{13}',{#14},{#15},{#16},{#17},{#18},{#19},"
    "{#20},'{VD}','{22}','{23}','{24}',{#25},'{26}','{27}','{28}','{29}',"
    "'{30}','{31}','{32}','{33}','{34}','{35}','{36}',{#37},'{38}','{39}') ";

const sync::SqlTemplate Insert = customerStatement(Columns + Values);

// Deliberately differs in a blank before the first value.
const sync::SqlTemplate FirstFill = customerStatement(Columns + " " + Values);

const sync::SqlTemplate Update =
    customerStatement(" UPDATE CT SET CT_LVL = '{1}',CT_NAME = '{2}',"
                      " CT_SEX = {#3},CT_NO = '{4}',CT_BIRTH = '{5}',"
                      " CT_BIRCHK = {#6},CT_PHONE = '{7}',CT_CPHONE = '{8}',"
                      " CT_EMAIL = '{9}',CT_EMCHK = {#10},CT_ZIP = '{11}',"
                      " CT_ADDR1 = '{12}',CT_ADDR2 = '{13}',CT_CK = {#14},"
                      " CT_TPOINT = {#15},CT_RPOINT = {#16},"
                      " CT_UPOINT = {#17},CT_VISITN = {#18}" +
                      std::string(UpdateCustomerTail));

} // namespace

bool ReceiveTradePartners(sync::Run& run) {
    return receiveCustomers(run, serverSql(run.stamp(sync::Group::Members)),
                            {Insert, FirstFill, Update}, true);
}

} // namespace quillet::receivers
