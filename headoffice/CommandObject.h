#pragma once

#include "headoffice/database/DatabaseAccess.h"
#include "headoffice/database/DatabasePool.h"
#include "headoffice/guards/WriteGuard.h"
#include "rds/CallServer.h"

#include <functional>
#include <string>
#include <utility>

namespace quillet::headoffice {

/// The command object: `PUTSQL(statements, error text, connection string)` runs the statements
/// from element 1 on in one transaction. The result is False, and the error text set, when one of
/// them fails or is none that counters may send, and nothing has been changed.
class CommandObject : public rds::ServerObject {
public:
    /// Hears of every statement that has been committed, and from whom it came.
    using Written = std::function<void(const UpdateStatement&, const std::string& peer)>;

    /// The first two outlive the object.
    CommandObject(const DatabaseAccess& access, DatabasePool& pool, WriteGuard guard,
                  Written written)
        : access_(access), pool_(pool), guard_(std::move(guard)), written_(std::move(written)) {}

    std::vector<Method> methods() override;

private:
    void putsql(Arguments& arguments, rds::CallResult& result);

    const DatabaseAccess& access_;
    DatabasePool& pool_;
    WriteGuard guard_;
    Written written_;
};

} // namespace quillet::headoffice
