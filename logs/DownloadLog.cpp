#include "logs/DownloadLog.h"

#include "files/PrivateFile.h"

#include <cstdio>
#include <exception>
#include <fstream>

namespace quillet::logs {

DownloadLog::DownloadLog(std::filesystem::path programFolder, Clock clock)
    : programFolder_(std::move(programFolder)), clock_(std::move(clock)) {}

void DownloadLog::write(const std::string& title, const std::string& statement, long errNumber,
                        const std::string& errDescription) const noexcept {
    try {
        const data::DateTime now = clock_();
        char name[64];
        std::snprintf(name, sizeof name, "Down%02d%02d%02d%02d%02d%02d.txt", now.year % 100,
                      static_cast<int>(now.month), static_cast<int>(now.day),
                      static_cast<int>(now.hour), static_cast<int>(now.minute),
                      static_cast<int>(now.second));
        const std::filesystem::path path = programFolder_ / "log" / name;
        if (!files::makePrivateFile(path))
            return;
        std::ofstream file(path, std::ios::binary | std::ios::trunc);
        file << title << "\r\n"
             << statement << "\r\n"
             << errNumber << "\r\n"
             << errDescription << "\r\n";
    } catch (const std::exception&) {
        return; // best effort: a log that cannot be written must not hide the failure it is about
    }
}

} // namespace quillet::logs
