#pragma once

#include "logs/Clock.h"

#include <filesystem>
#include <string>

namespace quillet::logs {

/// The log of failed receivers: one file each, `log/Downyymmddhhmmss.txt` in the program folder,
/// UTF-8, lines ending in CR LF, for the file's owner alone. A second failure within the same
/// second overwrites the first.
///
/// The folder is deliberately not created: a technician who wants these files makes it.
class DownloadLog {
public:
    explicit DownloadLog(std::filesystem::path programFolder, Clock clock = localNow);

    /// Writes title, statement, error number and description, a line each. Never fails: where
    /// the folder is missing or the file cannot be written, nothing happens.
    void write(const std::string& title, const std::string& statement, long errNumber,
               const std::string& errDescription) const noexcept;

private:
    std::filesystem::path programFolder_;
    Clock clock_;
};

} // namespace quillet::logs
