#include "app/VersionReport.h"

namespace quillet::app {

bool ReportReceiveVersion(sync::Run& run, const std::string& version) noexcept {
    try {
        const std::string counter = sync::headOfficeSetting(run.settings(), "카운터");
        return run.executeOnServer({"", " UPDATE POS SET RECEIVE_VER = '" + version +
                                            "' , RECEIVE_VER_SDATE = Now() WHERE POS_ID = '" +
                                            counter + "' AND  RCT_CODE = '" +
                                            run.storeCodeSetting() + "'"});
    } catch (const std::exception&) {
        return false; // tried again at the next start
    }
}

} // namespace quillet::app
