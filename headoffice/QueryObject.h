#pragma once

#include "headoffice/database/DatabaseAccess.h"
#include "headoffice/database/DatabasePool.h"
#include "rds/CallServer.h"

namespace quillet::headoffice {

/// The data object: `Getsql(sql, 0, 1, information, connection string)` runs a query and returns
/// its rows, which leave as the database delivers them. The second to fourth arguments are taken
/// and not used. Nothing but queries is run, and only in databases that callers may name.
class QueryObject : public rds::ServerObject {
public:
    /// Both outlive the object.
    QueryObject(const DatabaseAccess& access, DatabasePool& pool) : access_(access), pool_(pool) {}

    std::vector<Method> methods() override;

private:
    void getsql(Arguments& arguments, rds::CallResult& result);

    const DatabaseAccess& access_;
    DatabasePool& pool_;
};

} // namespace quillet::headoffice
