#pragma once

#include "data/Cursor.h"
#include "db/mariadb/MariaDbColumn.h"
#include "db/mariadb/MariaDbSession.h"

#include <deque>
#include <memory>
#include <string>

namespace quillet::db {

/// Rows of a query as the server sends them, one in memory at a time.
///
/// The query goes as a prepared statement, whose rows come in binary form: as text the server
/// rounds a FLOAT to six digits.
class MariaDbCursor final : public data::Cursor {
public:
    /// Runs the query. A statement without a result runs and gives a cursor without columns.
    /// @throws Error among others 07002 for a statement with parameters.
    MariaDbCursor(MariaDbSession& session, const std::string& source);

    /// A query of which rows are left is ended at the server, which takes as long as
    /// Engine::cancel() does; the connection can be used again.
    ~MariaDbCursor() override;

    const data::FieldList& fields() const override { return fields_; }
    bool next() override;
    data::Value value(std::size_t column) const override { return cells_[column].value(); }

private:
    struct Close {
        void operator()(MYSQL_STMT* statement) const noexcept { mysql_stmt_close(statement); }
    };

    void run(const std::string& source);
    void describe();
    void check(bool failed);
    void dropFurtherResults();

    MariaDbSession::Turn turn_; ///< outlives the statement
    std::unique_ptr<MYSQL_STMT, Close> statement_;
    bool bigintAsInt_;
    bool atEnd_ = true;
    data::FieldList fields_;
    std::deque<MariaDbCell> cells_;
};

} // namespace quillet::db
