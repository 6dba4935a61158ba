#include "receivers/ReceiveAvailability.h"

#include "receivers/ProductTable.h"
#include "receivers/Titles.h"

namespace quillet::receivers {

namespace {

// Server row: 0 product, 1 availability, which is the visibility.
std::string serverSql(const std::string& stamp, const std::string& storeCode) {
    return " SELECT P.PR_CODE, IF(ISNULL(R.PRR_END),'0',R.PRR_END) \n"
           " FROM   (PR P INNER JOIN KIND K ON P.KD_ID = K.KD_ID) INNER JOIN PRR R ON P.PR_CODE = "
           "R.PR_CODE \n"
           " WHERE  R.PRR_DATE >= '" +
           stamp +
           "' AND IF(ISNULL(KD_CKSD),'Y',KD_CKSD) = 'Y' AND P.KD_ID <> '000000000000000' \n"
           " AND IF(ISNULL(KD_CKGU),'A402',KD_CKGU) IN ('A402','A420') \n"
           " AND R.RCT_CODE = '" +
           storeCode + "'";
}

const sync::SqlTemplate Update(" UPDATE PR SET PR_VISIBLE = {#1?} WHERE PR_CODE = '{0}'");

} // namespace

bool ReceiveAvailability(sync::Run& run) {
    return sync::guardReceiver(run, ProductsTitle, [&](std::size_t& /*handledRows*/) {
        data::Recordset ServerRs =
            run.queryServer(serverSql(run.stamp(sync::Group::Menu), run.storeCodeSetting()));
        run.RowTotal += ServerRs.RecordCount();
        const sync::ServerRow row(ServerRs);
        for (; !ServerRs.Eof(); ServerRs.MoveNext())
            run.append(Update.render(row));
    });
}

} // namespace quillet::receivers
