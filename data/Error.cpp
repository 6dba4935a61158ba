#include "data/Error.h"

namespace quillet::data {

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

Error currentError() {
    try {
        throw;
    } catch (const Error& error) {
        return error;
    } catch (const std::exception& other) {
        return {number::Unspecified, other.what()};
    }
}

Error invalidUseOfNull() {
    return {number::InvalidUseOfNull, "Invalid use of Null"};
}

Error typeMismatch() {
    return {number::TypeMismatch, "Type mismatch"};
}

} // namespace quillet::data
