#pragma once

#include "data/Recordset.h"
#include "rds/Call.h"
#include "rds/Variant.h"
#include "rds/http/HttpClient.h"

#include <cstdint>
#include <string>
#include <vector>

namespace quillet::rds {

/// A proxy of a server-side object; every call is a request of its own. DataSpace makes it.
///
/// By-reference arguments take the value that the server returns and keep their own where it
/// returns none; a call that fails changes nothing.
/// @throws data::Error from every call: 462 when the server cannot be reached, is too slow, or its
///         answer is cut short or too large, `number::Canceled` when the caller has ended the call,
///         the server's own number and description when the call failed there, 13 for a result of
///         another type.
class RemoteObject {
public:
    RemoteObject(std::string progId, std::string server, HttpClient client);

    /// Runs a query on the server and returns its rows.
    /// @param first, second 0 and 1; their meaning is the server's.
    /// @param information is passed Empty.
    /// @param connection the connection string with which the server opens its database.
    /// @throws data::Error also 91 when the server returns no object.
    data::Recordset Getsql(std::string& sql, std::int16_t first, std::int16_t second,
                           Variant& information, std::string& connection);

    /// Runs statements on the server.
    /// @param statements from element 1 on; element 0 is not used.
    /// @param errorText the server's error text when the result is false.
    /// @return whether they were executed.
    bool PUTSQL(std::vector<std::string>& statements, std::string& errorText,
                std::string& connection);

private:
    Reply invoke(const std::string& method, std::vector<Variant> arguments);

    std::string progId_;
    std::string server_;
    HttpClient client_;
};

} // namespace quillet::rds
