#pragma once

#include "rds/CallServer.h"

namespace quillet::headoffice {

/// The data object: `Getsql(sql, 0, 1, information, connection string)` runs a query and returns
/// its rows, which leave as the database delivers them. The second to fourth arguments are taken
/// and not used. A statement without rows returns Nothing.
class QueryObject : public rds::ServerObject {
public:
    std::vector<Method> methods() override;

private:
    static void getsql(Arguments& arguments, rds::CallResult& result);
};

} // namespace quillet::headoffice
