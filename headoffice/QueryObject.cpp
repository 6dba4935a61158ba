#include "headoffice/QueryObject.h"

#include "data/Error.h"
#include "headoffice/guards/QueryGuard.h"

#include <string>

namespace quillet::headoffice {

std::vector<rds::ServerObject::Method> QueryObject::methods() {
    return {{"Getsql",
             {true, false, false, true, true},
             [this](Arguments& arguments, rds::CallResult& result) { getsql(arguments, result); }}};
}

void QueryObject::getsql(Arguments& arguments, rds::CallResult& result) {
    const std::string sql = arguments[0].toText();
    const DatabaseLogin login = access_.loginOf(arguments[4].toText());
    requireQuery(sql);
    DatabaseSession session = pool_.lend(login, result.gone());
    try {
        const auto cursor = session.query(sql);
        result.rows(*cursor);
    } catch (const data::Error&) {
        session.explain();
        throw;
    }
}

} // namespace quillet::headoffice
