#pragma once

#include "headoffice/CommandObject.h"
#include "headoffice/Options.h"
#include "headoffice/QueryObject.h"
#include "headoffice/RequestLog.h"
#include "rds/CallServer.h"
#include "rds/http/HttpServer.h"

#include <cstdint>
#include <iosfwd>

namespace quillet::headoffice {

/// The head office's web server with its two objects.
class HeadOffice {
public:
    /// Listens from now on.
    /// @param log gets a line per call.
    /// @throws db::Error when the address cannot be used or the port file cannot be written.
    HeadOffice(const Options& options, std::ostream& log);

    std::uint16_t port() const { return http_.port(); }

    /// Serves until stop(), SIGINT or SIGTERM.
    void run() { http_.run(); }

    void stop() { http_.stop(); }

private:
    RequestLog log_;
    QueryObject query_;
    CommandObject command_;
    rds::CallServer calls_;
    rds::HttpServer http_;
};

} // namespace quillet::headoffice
