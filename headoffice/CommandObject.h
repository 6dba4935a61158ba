#pragma once

#include "rds/CallServer.h"

namespace quillet::headoffice {

/// The command object: `PUTSQL(statements, error text, connection string)` runs the statements
/// from element 1 on in one transaction. The result is False, and the error text set, when one of
/// them fails and nothing has been changed.
class CommandObject : public rds::ServerObject {
public:
    std::vector<Method> methods() override;

private:
    static void putsql(Arguments& arguments, rds::CallResult& result);
};

} // namespace quillet::headoffice
