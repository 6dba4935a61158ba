#pragma once

#include "data/Cursor.h"
#include "db/WaitHandler.h"

#include <memory>
#include <string>

namespace quillet::db {

/// An open database behind a `Connection`. Every failure is an `Error` with provider records.
class Engine {
public:
    virtual ~Engine() = default;

    /// Runs exactly one statement; its rows, if any, are dropped.
    virtual void execute(const std::string& statement) = 0;

    /// Runs exactly one query. The cursor must not outlive the engine.
    virtual std::unique_ptr<data::Cursor> query(const std::string& source) = 0;

    /// The same for a query of which one column is wanted. An engine that gains by it leaves the
    /// others out, and may deliver the rows in another order.
    virtual std::unique_ptr<data::Cursor> queryColumn(const std::string& source,
                                                      const std::string& /*column*/) {
        return query(source);
    }

    /// @param handler outlives the engine; null: nobody stands by. An engine whose driver waits by
    /// itself never calls it.
    virtual void setWaitHandler(WaitHandler* /*handler*/) {}

    /// From any thread: ends what runs at this moment, which then fails, as soon as the database
    /// can be told. Does nothing where a database cannot be told.
    virtual void cancel() noexcept {}

    /// Puts the session back into the state in which it was opened: no transaction, no variables,
    /// no temporary tables.
    /// @return false where that cannot be done, so that the next user needs an engine of its own.
    virtual bool reset() { return false; }

    /// Whether a transaction of any size is all or nothing, whatever happens.
    virtual bool keepsTransactionsWhole() const noexcept { return false; }

    virtual void begin() = 0;
    virtual void commit() = 0;
    virtual void rollback() = 0;
};

} // namespace quillet::db
