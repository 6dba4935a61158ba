#include "headoffice/database/DatabaseName.h"

#include "data/Error.h"
#include "headoffice/HostPort.h"

namespace quillet::headoffice {

DatabaseName DatabaseName::parse(const std::string& text) {
    const auto refuse = [&] {
        throw data::Error(data::number::InvalidArgument,
                          "'" + text + "' is no database; write HOST/NAME or HOST:PORT/NAME.");
    };
    const std::size_t slash = text.find('/');
    if (slash == std::string::npos || slash + 1 == text.size() ||
        text.find('/', slash + 1) != std::string::npos)
        refuse();
    const auto server = HostPort::parse(text.substr(0, slash), DefaultPort);
    if (!server || server->port == 0)
        refuse();
    return {server->host, server->port, text.substr(slash + 1)};
}

std::string DatabaseName::text() const {
    return HostPort{host, port}.text() + '/' + name;
}

} // namespace quillet::headoffice
