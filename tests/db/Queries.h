#pragma once

#include "db/Connection.h"
#include "db/Recordset.h"
#include "tests/support/Errors.h"

#include <functional>
#include <string>

namespace quillet::tests {

inline std::string sqlStateOf(const std::function<void()>& call) {
    const db::Error error = errorOf(call);
    return error.providerRecords().empty() ? error.Description()
                                           : error.providerRecords().front().SqlState;
}

/// The cells of all rows: "|" behind each, Null as "Null".
inline std::string cells(db::Connection& connection, const std::string& query) {
    db::Recordset rows;
    std::string result;
    for (rows.Open(query, connection); !rows.Eof(); rows.MoveNext())
        for (std::size_t i = 0; i < rows.Fields().size(); ++i)
            result += (rows.Item(i).isNull() ? "Null" : rows.Item(i).toText()) + "|";
    return result;
}

} // namespace quillet::tests
