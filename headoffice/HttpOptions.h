#pragma once

#include "headoffice/Options.h"
#include "rds/http/HttpServer.h"

namespace quillet::headoffice {

/// What the server for counters is told.
rds::HttpServer::Options counterOptions(const Options& options);

/// What the server for the person who runs it is told: it is for a browser and a monitoring system,
/// not for a chain.
rds::HttpServer::Options adminOptions(const Options& options);

} // namespace quillet::headoffice
