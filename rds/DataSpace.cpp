#include "rds/DataSpace.h"

#include "data/AsciiText.h"
#include "data/Error.h"

#include <algorithm>
#include <string_view>

namespace quillet::rds {

namespace {

constexpr std::string_view Scheme = "http://";

bool hasScheme(std::string_view connection) {
    return data::equalIgnoringCase(connection.substr(0, Scheme.size()), Scheme);
}

/// A ProgID stands in the request line as it is.
bool fitsRequestLine(std::string_view progId) {
    return !progId.empty() && std::all_of(progId.begin(), progId.end(), [](char c) {
        return c > ' ' && c <= '~' && c != '/' && c != '?' && c != '#' && c != '%';
    });
}

} // namespace

RemoteObject DataSpace::CreateObject(const std::string& progId,
                                     const std::string& connection) const {
    std::string_view server;
    if (hasScheme(connection)) {
        server = std::string_view(connection).substr(Scheme.size());
        server.remove_prefix(std::min(server.find_first_not_of(' '), server.size()));
        server = server.substr(0, server.find_last_not_of(" /") + 1);
    }
    if (server.empty() || !fitsRequestLine(progId))
        throw data::Error(data::number::CannotCreateObject,
                          "ActiveX component can't create object");
    return RemoteObject(progId, std::string(server), HttpClient(limits_, whileWaiting_));
}

} // namespace quillet::rds
