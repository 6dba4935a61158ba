#pragma once

#include "db/odbc/OdbcHandle.h"

#include <mutex>

namespace quillet::db {

/// Which statement of a connection the database is busy with, so that another thread can end it.
class OdbcRunning {
public:
    /// Names the statement for as long as this lives.
    class Scope {
    public:
        Scope(OdbcRunning& running, const OdbcHandle& statement) : running_(running) {
            running_.set(statement.get());
        }
        ~Scope() { running_.set(SQL_NULL_HANDLE); }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        OdbcRunning& running_;
    };

    /// From any thread: asks the driver to end the statement, if there is one.
    void cancel() {
        // The statement stays while it is asked for.
        const std::lock_guard lock(mutex_);
        if (statement_ != SQL_NULL_HANDLE)
            SQLCancel(statement_);
    }

private:
    void set(SQLHANDLE statement) {
        const std::lock_guard lock(mutex_);
        statement_ = statement;
    }

    std::mutex mutex_;
    SQLHANDLE statement_ = SQL_NULL_HANDLE;
};

} // namespace quillet::db
