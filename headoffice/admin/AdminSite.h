#pragma once

#include "headoffice/admin/Activity.h"
#include "headoffice/admin/HealthKeeper.h"
#include "headoffice/admin/Load.h"
#include "headoffice/admin/LocalTime.h"
#include "headoffice/admin/Metrics.h"

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillet::headoffice::admin {

/// A complete reply, which nobody may keep. For HEAD the body is what GET would get, for its length
/// only.
struct Page {
    unsigned status = 200;
    std::string contentType;
    std::string body;
    std::vector<std::pair<std::string, std::string>> headers; ///< besides type and length
};

/// What the operator of the server sees, apart from how it is transported:
/// - `/`        the page for a person (`/?all`: all of it, without renewing itself);
/// - `/health`  200 when every listed database answers, otherwise 503, as lines of text;
/// - `/metrics` see Metrics.
/// Nothing here changes anything, and there are no accounts: it is for a listener that only the
/// operator reaches. It is told of everything that happens, and may be asked, from any thread.
class AdminSite {
public:
    struct Options {
        std::string version; ///< of this program
        /// Names by which the site may be called besides "localhost" and any IP address. Others
        /// get 403, as a page elsewhere could have its own name lead here and read along.
        std::vector<std::string> hostNames;
        AdminClock clock = std::chrono::system_clock::now;
    };
    using AskLoad = std::function<Load()>;

    /// @param askHealth see HealthKeeper; @param askLoad is quick. Both are called by answer().
    AdminSite(Options options, HealthKeeper::Ask askHealth, AskLoad askLoad);

    void callFinished(const rds::CallRecord& record);

    /// @param reason a label of RefusalReasons; @param peer see Activity::refused().
    void refused(std::string_view reason, std::string_view peer);

    void versionReported(std::string_view peer, std::string_view store, std::string_view counter,
                         std::string_view version);

    /// @param target path and query of the request line.
    /// @param host value of the Host header, "" if there is none.
    Page answer(std::string_view method, std::string_view target, std::string_view host);

private:
    Page found(std::string_view path, std::string_view query);
    Page health();
    bool isOwnHost(std::string_view host) const;

    Options options_;
    AskLoad askLoad_;
    HealthKeeper health_;
    Activity activity_;
    Metrics metrics_;
};

} // namespace quillet::headoffice::admin
