#pragma once

#include "rds/RemoteObject.h"
#include "rds/http/HttpClient.h"

#include <string>
#include <utility>

namespace quillet::rds {

/// The portable stand-in for the `RDS.DataSpace` object: makes proxies of server-side objects.
class DataSpace {
public:
    /// @param limits, whileWaiting see HttpClient; for the calls of every proxy.
    explicit DataSpace(HttpClient::Limits limits = {},
                       HttpClient::WhileWaiting whileWaiting = nullptr)
        : limits_(limits), whileWaiting_(std::move(whileWaiting)) {}

    /// Makes a proxy; the server is not asked before the first call.
    /// @param progId of the server-side object.
    /// @param connection "http://" and the server's name or address, optionally with a port.
    /// @throws data::Error 429 for a blank or impossible ProgID, a blank server, or anything but
    ///         an http address.
    RemoteObject CreateObject(const std::string& progId, const std::string& connection) const;

private:
    HttpClient::Limits limits_;
    HttpClient::WhileWaiting whileWaiting_;
};

} // namespace quillet::rds
