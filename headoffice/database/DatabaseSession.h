#pragma once

#include "db/Engine.h"
#include "headoffice/database/DatabaseLogin.h"
#include "headoffice/database/QueryWatch.h"

#include <chrono>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace quillet::headoffice {

class DatabasePool;

/// A database as long as one call needs it. What is not committed at its end is rolled back.
class DatabaseSession {
public:
    /// @param wasUsed by another call before: the database may have closed it since.
    DatabaseSession(DatabasePool& pool, DatabaseLogin login, std::unique_ptr<db::Engine> engine,
                    bool wasUsed, std::stop_token gone, std::chrono::seconds limit);
    ~DatabaseSession();
    DatabaseSession(const DatabaseSession&) = delete;
    DatabaseSession& operator=(const DatabaseSession&) = delete;

    /// Begins a transaction that cannot write and runs a query in it, both within the limits.
    /// The cursor must not outlive the session.
    /// @throws data::Error number::Canceled when the call has been ended.
    std::unique_ptr<data::Cursor> query(const std::string& sql);

    /// Runs statements in one transaction, all or none.
    /// @throws data::Error with nothing changed.
    void write(const std::vector<std::string>& statements);

    /// Whether an error of the engine was the end of the call, said in its own words.
    /// @throws data::Error number::Canceled then.
    void explain() const {
        if (watch_)
            watch_->explain();
    }

private:
    void start();
    void limitTime();
    void run(const std::string& statement);

    DatabasePool& pool_;
    DatabaseLogin login_;
    std::unique_ptr<db::Engine> engine_;
    bool wasUsed_;
    std::stop_token gone_;
    std::chrono::seconds limit_;
    std::optional<QueryWatch> watch_; ///< of the engine, and gone before it is given back
};

} // namespace quillet::headoffice
