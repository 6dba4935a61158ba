#pragma once

#include "headoffice/HostPort.h"
#include "headoffice/database/DatabaseName.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace quillet::headoffice {

/// What the head office's server is told, on its command line or in its configuration file.
struct Options {
    HostPort listen{"127.0.0.1", 8080}; ///< port 0: any free one
    std::string allow; ///< networks of callers, see rds::AddressList; empty: this machine
    std::vector<DatabaseName> databases;
    std::string driver = "MySQL ODBC 3.51 Driver";
    std::vector<std::string> writable; ///< tables beside the version report's
    std::string queryObject = "quorin.data";
    bool returnArguments = false;

    std::size_t workers = 16;
    std::size_t connections = 512;
    std::size_t queue = 256;
    std::size_t bodyLimit = 1024; ///< KiB
    std::size_t memory = 256;     ///< MiB
    std::chrono::seconds headTime{10};
    std::chrono::seconds bodyTime{60};
    std::chrono::seconds queryTime{300};
    std::chrono::seconds replyTime{600};
    std::chrono::seconds drain{30};

    HostPort admin;         ///< without a host: none
    std::string adminAllow; ///< of those who may see the admin pages
    std::string user; ///< as whom the server itself looks at its databases; empty: from outside
    std::filesystem::path passwordFile;

    std::filesystem::path portFile; ///< gets the bound port as one line; empty: no file
    std::filesystem::path adminPortFile;
    bool check = false;
    std::string information; ///< the text to print instead of anything else: help, version
};

/// @param arguments without the program's name.
/// @throws data::Error 3001 with a sentence for the user when they cannot be understood, contradict
///         each other, or would open the server to more than they name.
Options parseOptions(const std::vector<std::string>& arguments);

} // namespace quillet::headoffice
