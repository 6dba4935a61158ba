#include "headoffice/Options.h"

#include "db/Error.h"

#include <charconv>
#include <cstddef>
#include <string_view>

namespace quillet::headoffice {

namespace {

[[noreturn]] void refuse(const std::string& sentence) {
    throw db::Error(db::number::InvalidArgument, sentence);
}

/// "ADDRESS:PORT", an IPv6 address in brackets.
void parseListen(const std::string& text, Options& options) {
    const std::size_t colon = text.rfind(':');
    std::string_view address = std::string_view(text).substr(0, colon);
    if (address.starts_with('[') && address.ends_with(']'))
        address = address.substr(1, address.size() - 2);
    else if (address.find(':') != std::string_view::npos)
        address = {};
    if (colon == std::string::npos || address.empty())
        refuse("--listen takes ADDRESS:PORT, not '" + text + "'.");
    options.address = address;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + colon + 1, end, options.port);
    if (error != std::errc() || stop != end)
        refuse("'" + text.substr(colon + 1) + "' is not a port.");
}

} // namespace

Options parseOptions(const std::vector<std::string>& arguments) {
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& name = arguments[i];
        const auto value = [&]() -> const std::string& {
            if (i + 1 == arguments.size() || arguments[i + 1].empty())
                refuse(name + " needs a value.");
            return arguments[++i];
        };
        if (name == "--listen")
            parseListen(value(), options);
        else if (name == "--object")
            options.queryObject = value();
        else if (name == "--return-arguments")
            options.returnArguments = true;
        else if (name == "--port-file")
            options.portFile = value();
        else if (name == "--help" || name == "-h")
            options.help = true;
        else if (name == "--version")
            options.version = true;
        else
            refuse("Unknown option '" + name + "'; --help lists them.");
    }
    return options;
}

std::string helpText() {
    return "Usage: quillet-headoffice [options]\n"
           "\n"
           "Serves the head office's database to the counters: the data object (Getsql) and the\n"
           "command object quorin.demon (PUTSQL), over any ODBC database. Each call names its own\n"
           "database, so whoever reaches the port can run any SQL that the named user may.\n"
           "\n"
           "  --listen ADDRESS:PORT  where to listen (127.0.0.1:8080); port 0: any free one\n"
           "  --object PROGID        the data object's name (quorin.data)\n"
           "  --return-arguments     send by-reference arguments back with their values\n"
           "  --port-file FILE       write the port there as soon as calls are accepted\n"
           "  --help, --version\n"
           "\n"
           "Every call is one line on standard output. SIGINT or SIGTERM ends the server after\n"
           "the calls under way.\n";
}

std::string versionText() {
    return "quillet-headoffice " QUILLET_VERSION;
}

} // namespace quillet::headoffice
