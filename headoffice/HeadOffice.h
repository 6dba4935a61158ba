#pragma once

#include "headoffice/CommandObject.h"
#include "headoffice/Options.h"
#include "headoffice/QueryObject.h"
#include "headoffice/RequestLog.h"
#include "headoffice/admin/AdminSite.h"
#include "headoffice/database/DatabaseAccess.h"
#include "headoffice/database/DatabasePool.h"
#include "headoffice/database/DatabaseProbe.h"
#include "rds/CallServer.h"
#include "rds/http/HttpServer.h"

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>

namespace quillet::headoffice {

/// The head office's web server with its two objects, and the pages for the person who runs it.
class HeadOffice {
public:
    /// Listens from now on.
    /// @param log gets a line per call.
    /// @throws data::Error when an address cannot be used, a port file cannot be written or the
    ///         password's file cannot be read.
    HeadOffice(const Options& options, std::ostream& log);

    std::uint16_t port() const { return http_.port(); }
    std::uint16_t adminPort() const { return admin_ ? admin_->port() : std::uint16_t{0}; }

    /// Serves until stop(), SIGINT or SIGTERM.
    void run();

    void stop() { http_.stop(); }

private:
    void finished(const rds::CallRecord& record);
    void refused(rds::HttpServer::Refusal refusal, const std::string& peer);
    void written(const UpdateStatement& update, const std::string& peer);
    std::vector<admin::DatabaseHealth> health() const;
    admin::Load load();
    void answerAdmin(const rds::HttpRequest& request, rds::HttpReply& reply);

    Options options_;
    RequestLog log_;
    DatabaseProbe probe_;
    DatabaseAccess access_;
    DatabasePool pool_;
    QueryObject query_;
    CommandObject command_;
    admin::AdminSite site_;
    rds::CallServer calls_;
    rds::HttpServer http_;
    std::unique_ptr<rds::HttpServer> admin_;
};

} // namespace quillet::headoffice
