#include "sync/SettingsFlags.h"

#include "sync/Receiver.h"

namespace quillet::sync {

bool ReadSettingsFlags(Run& run, std::string_view title) {
    return guardReceiver(run, title, [&](std::size_t& /*handledRows*/) {
        run.priceOptionFlag.clear();
        const data::Recordset ServerRs =
            run.queryServer(" SELECT BAS_OP1, BAS_OP2 FROM BAS WHERE BAS_CODE = 'ZO01' ");
        if (ServerRs.Eof())
            return;
        const ServerRow row(ServerRs);
        run.priceOptionFlag = row.text(0);
        run.priceOptionMode = row.text(1);
    });
}

std::string ReadSetMenuSetting(Run& run) {
    db::TextTable FD;
    std::int32_t FDROW = 0;
    std::int32_t FDCOL = 0;
    run.store().GET_DATA(" SELECT CF_CONTENTS FROM CF WHERE CF_PART = '영업3' AND CF_IDX = 1 ", FD,
                         FDROW, FDCOL);
    if (run.store().Status() != 1)
        throw data::Error(data::number::Unspecified,
                          "The set-menu setting cannot be read. " + run.store().errorText());
    return FDROW < 1 ? std::string() : FD[1][0];
}

} // namespace quillet::sync
