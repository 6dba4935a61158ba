#include "db/Error.h"

namespace quillet::db {

long numberOfSqlState(const std::string& sqlState) noexcept {
    if (sqlState == "42000")
        return number::CommandText;
    if (sqlState == "42S02")
        return -2147217865;
    if (sqlState == "23000")
        return -2147217873;
    if (sqlState == "07001" || sqlState == "07002")
        return -2147217904;
    if (sqlState == "22001")
        return -2147217833;
    return number::Unspecified;
}

Error providerError(const std::string& sqlState, const std::string& description) {
    return Error({ErrorRecord{numberOfSqlState(sqlState), description, sqlState}});
}

} // namespace quillet::db
