#include "headoffice/QueryObject.h"

#include "db/Connection.h"
#include "headoffice/RowByRow.h"

#include <string>

namespace quillet::headoffice {

std::vector<rds::ServerObject::Method> QueryObject::methods() {
    return {{"Getsql", {true, false, false, true, true}, getsql}};
}

void QueryObject::getsql(Arguments& arguments, rds::CallResult& result) {
    const std::string sql = arguments[0].toText();
    db::Connection connection;
    connection.Open(readingRowByRow(arguments[4].toText()));
    const auto cursor = connection.query(sql);
    if (cursor->fields().empty()) {
        result.value(rds::Dispatch{});
        result.note("no rows, not a query");
        return;
    }
    result.rows(*cursor);
}

} // namespace quillet::headoffice
