#pragma once

#include "data/Recordset.h"
#include "db/Connection.h"
#include "tests/support/Errors.h"

#include <functional>
#include <string>

namespace quillet::tests {

inline std::string sqlStateOf(const std::function<void()>& call) {
    const data::Error error = errorOf(call);
    return error.providerRecords().empty() ? error.Description()
                                           : error.providerRecords().front().SqlState;
}

/// The cells of all rows: "|" behind each, Null as "Null".
inline std::string cells(db::Connection& connection, const std::string& query) {
    data::Recordset rows;
    std::string result;
    for (rows = connection.read(query); !rows.Eof(); rows.MoveNext())
        for (std::size_t i = 0; i < rows.Fields().size(); ++i)
            result += (rows.Item(i).isNull() ? "Null" : rows.Item(i).toText()) + "|";
    return result;
}

} // namespace quillet::tests
