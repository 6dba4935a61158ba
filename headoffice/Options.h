#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace quillet::headoffice {

/// The command line of the head office's server.
struct Options {
    std::string address = "127.0.0.1";
    std::uint16_t port = 8080; ///< 0: any free one
    std::string queryObject = "quorin.data";
    bool returnArguments = false;
    std::filesystem::path portFile; ///< gets the bound port as one line; empty: no file
    bool help = false;
    bool version = false;
};

/// @param arguments without the program's name.
/// @throws db::Error 3001 with a sentence for the user when they cannot be understood.
Options parseOptions(const std::vector<std::string>& arguments);

std::string helpText();
std::string versionText();

} // namespace quillet::headoffice
