#pragma once

#include "db/VelkDBPro.h"

#include <string>

namespace quillet::sync {

/// Watches a run without a part in it: a benchmark times it, a demonstration slows it down. This
/// one does nothing.
class RunObserver {
public:
    RunObserver() = default;
    virtual ~RunObserver() = default;
    RunObserver(const RunObserver&) = delete;
    RunObserver& operator=(const RunObserver&) = delete;

    /// A query goes to the server.
    virtual void queryBegins(const std::string& /*ServerSql*/) {}
    /// Its rows are in memory.
    virtual void queryEnded() {}

    /// The store gets what the run has collected, in one transaction.
    virtual void batchBegins(const db::StatementArray& /*statements*/) {}
    /// After a statement of it, when the window has had its turn.
    virtual void statementDone() {}
    /// It is committed, or rolled back.
    virtual void batchEnded() {}
};

} // namespace quillet::sync
