#include "logs/DailyLog.h"

#include "data/Error.h"
#include "files/PrivateFile.h"

#include <cstdio>
#include <fstream>

namespace quillet::logs {

namespace {

constexpr const char* FolderName = "ZELMARO_LOG";

std::string fileName(const data::DateTime& day) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%04d%02d%02d.TXT", static_cast<int>(day.year),
                  static_cast<int>(day.month), static_cast<int>(day.day));
    return buffer;
}

} // namespace

DailyLog::DailyLog(std::filesystem::path programFolder, Clock clock)
    : programFolder_(std::move(programFolder)), clock_(std::move(clock)) {}

void DailyLog::requireFolder(const std::filesystem::path& folder) const {
    try {
        // By its name in the listing, not by exists(): the letter case must be exact on file
        // systems that do not care for it.
        for (const auto& entry : std::filesystem::directory_iterator(programFolder_))
            if (entry.path().filename() == FolderName)
                return;
        std::filesystem::create_directory(folder);
    } catch (const std::filesystem::filesystem_error& failure) {
        throw data::Error(data::number::FileAccess,
                          std::string("Path/File access error: ") + failure.what());
    }
}

void DailyLog::write(const std::string& message, const std::string& kind,
                     const std::string& detail1, const std::string& detail2,
                     const std::string& detail3) const {
    const std::filesystem::path folder = programFolder_ / FolderName;
    requireFolder(folder);

    const data::DateTime now = clock_();
    const std::filesystem::path path = folder / fileName(now);
    if (!files::makePrivateFile(path))
        return;
    std::ofstream file(path, std::ios::binary | std::ios::app);
    file << '[' << dateTimeText(now) << "]\r\n" << message << "\r\n" << kind << "\r\n";
    for (const std::string* detail : {&detail1, &detail2, &detail3})
        if (!detail->empty())
            file << *detail << "\r\n";
}

} // namespace quillet::logs
