#include "headoffice/database/DatabaseProbe.h"

#include "data/AsciiText.h"
#include "data/Error.h"
#include "headoffice/database/OpenDatabase.h"
#include "headoffice/database/SqlState.h"

#include <fstream>

namespace quillet::headoffice {

namespace {

constexpr const char* AccessDenied = "28000";
constexpr const char* Stranger = "quillet-probe";

std::string firstLineOf(const std::filesystem::path& file) {
    std::ifstream stream(file);
    std::string line;
    if (!std::getline(stream, line))
        throw data::Error(data::number::FileAccess,
                          "Cannot read the password's file " + file.string());
    return std::string(data::trimmed(line, "\r\n"));
}

} // namespace

DatabaseProbe::DatabaseProbe(const Options& options)
    : databases_(options.databases), driver_(options.driver), user_(options.user),
      password_(options.passwordFile.empty() ? "" : firstLineOf(options.passwordFile)) {}

std::vector<DatabaseState> DatabaseProbe::look() const {
    std::vector<DatabaseState> result;
    for (const DatabaseName& database : databases_)
        result.push_back(look(database));
    return result;
}

DatabaseState DatabaseProbe::look(const DatabaseName& database) const {
    DatabaseState state{database.text(), true, {}};
    try {
        openDatabase({database, user_.empty() ? Stranger : user_, password_, 0}, driver_)
            ->query("SELECT 1")
            ->next();
    } catch (const data::Error& error) {
        state.answers = user_.empty() && sqlStateOf(error) == AccessDenied;
        state.reason = state.answers ? "" : error.Description();
    }
    return state;
}

} // namespace quillet::headoffice
