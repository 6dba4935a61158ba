#pragma once

#include "data/Error.h"

#include <string>

namespace quillet::headoffice {

/// What a database has classified its error as (ISO 9075, "SQLSTATE"); empty for an error that is
/// none of a database.
inline std::string sqlStateOf(const data::Error& error) {
    return error.providerRecords().empty() ? "" : error.providerRecords().front().SqlState;
}

} // namespace quillet::headoffice
