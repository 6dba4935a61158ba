#include "db/Transaction.h"

namespace quillet::db {

Transaction::Transaction(Connection& connection) : connection_(connection) {
    connection_.BeginTrans();
}

Transaction::~Transaction() {
    if (committed_)
        return;
    try {
        connection_.RollbackTrans();
    } catch (const data::Error&) { // NOLINT(bugprone-empty-catch): see the header
    }
}

void Transaction::Commit() {
    connection_.CommitTrans();
    committed_ = true;
}

} // namespace quillet::db
