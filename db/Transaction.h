#pragma once

#include "db/Connection.h"

namespace quillet::db {

/// A transaction that is rolled back unless it was committed.
class Transaction {
public:
    /// Begins it.
    /// @throws Error as Connection::BeginTrans() does.
    explicit Transaction(Connection& connection);

    /// Rolls back unless committed. A failure of the roll-back is swallowed: whatever led here is
    /// the error worth reporting, and the database drops an unfinished transaction by itself.
    ~Transaction();

    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    /// @throws Error when the database refuses; the transaction is then rolled back at the end of
    ///         this object's life.
    void Commit();

private:
    Connection& connection_;
    bool committed_ = false;
};

} // namespace quillet::db
