#pragma once

#include "rds/RemoteObject.h"
#include "rds/http/HttpClient.h"

#include <string>
#include <utility>

namespace quillet::rds {

/// The portable stand-in for the `RDS.DataSpace` object: makes proxies of server-side objects.
class DataSpace {
public:
    /// @param whileWaiting see HttpClient; for the calls of every proxy.
    explicit DataSpace(HttpClient::Timeouts timeouts = {},
                       HttpClient::WhileWaiting whileWaiting = nullptr)
        : timeouts_(timeouts), whileWaiting_(std::move(whileWaiting)) {}

    /// Makes a proxy; the server is not asked before the first call.
    /// @param progId of the server-side object.
    /// @param connection "http://" and the server's name or address, optionally with a port.
    /// @throws db::Error 429 for a blank or impossible ProgID, a blank server, or anything but
    ///         an http address.
    RemoteObject CreateObject(const std::string& progId, const std::string& connection) const;

private:
    HttpClient::Timeouts timeouts_;
    HttpClient::WhileWaiting whileWaiting_;
};

} // namespace quillet::rds
