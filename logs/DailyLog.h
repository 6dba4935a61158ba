#pragma once

#include "logs/Clock.h"

#include <filesystem>
#include <string>

namespace quillet::logs {

/// The log of failed statement batches: `ZELMARO_LOG/YYYYMMDD.TXT` in the program folder, one file
/// a day, entries appended, UTF-8, lines ending in CR LF. Nothing reads it but people, and of them
/// only the file's owner can: the statements hold what was received about others.
class DailyLog {
public:
    explicit DailyLog(std::filesystem::path programFolder, Clock clock = localNow);

    /// Appends an entry: "[date time]", the message, the kind, and each detail that is not empty.
    /// @throws Error 75 when the folder is missing and cannot be created. Everything after that,
    ///         a file that cannot be opened or written included, is deliberately passed over.
    void write(const std::string& message, const std::string& kind, const std::string& detail1,
               const std::string& detail2, const std::string& detail3) const;

private:
    void requireFolder(const std::filesystem::path& folder) const;

    std::filesystem::path programFolder_;
    Clock clock_;
};

} // namespace quillet::logs
