#include "db/mariadb/MariaDbCursor.h"

#include "db/mariadb/MariaDbError.h"

#include <new>
#include <vector>

namespace quillet::db {

MariaDbCursor::MariaDbCursor(MariaDbSession& session, const std::string& source)
    : turn_(session), statement_(mysql_stmt_init(session.get())),
      bigintAsInt_(session.login().bigintAsInt) {
    if (statement_ == nullptr)
        throw std::bad_alloc();
    run(source);
    describe();
    if (fields_.empty())
        dropFurtherResults();
}

MariaDbCursor::~MariaDbCursor() {
    if (!atEnd_)
        turn_.cancel();
}

void MariaDbCursor::run(const std::string& source) {
    MYSQL_STMT* const statement = statement_.get();
    check(mysql_stmt_prepare(statement, source.data(), source.size()) != 0);
    if (mysql_stmt_param_count(statement) != 0)
        throw data::providerError("07002",
                                  "The statement has parameters; nothing is bound to them.");
    check(mysql_stmt_execute(statement) != 0);
    turn_.hasStarted();
    atEnd_ = mysql_stmt_field_count(statement) == 0;
    turn_.requireNotCancelled();
}

void MariaDbCursor::describe() {
    struct Free {
        void operator()(MYSQL_RES* result) const noexcept { mysql_free_result(result); }
    };
    const std::unique_ptr<MYSQL_RES, Free> result(mysql_stmt_result_metadata(statement_.get()));
    const unsigned count = result == nullptr ? 0 : mysql_num_fields(result.get());
    std::vector<MYSQL_BIND> bindings;
    for (unsigned number = 0; number < count; ++number) {
        const MYSQL_FIELD& column = *mysql_fetch_field_direct(result.get(), number);
        fields_.push_back(mariaDbField(column, bigintAsInt_));
        bindings.push_back(cells_.emplace_back(column, fields_.back()).binding());
    }
    if (count != 0)
        check(mysql_stmt_bind_result(statement_.get(), bindings.data()) != 0);
}

bool MariaDbCursor::next() {
    if (atEnd_)
        return false;
    turn_.requireNotCancelled();
    const int result = mysql_stmt_fetch(statement_.get());
    if (result == MYSQL_NO_DATA) {
        atEnd_ = true;
        dropFurtherResults();
        return false;
    }
    // A long text counts as truncated.
    check(result != 0 && result != MYSQL_DATA_TRUNCATED);
    unsigned number = 0;
    for (MariaDbCell& cell : cells_)
        check(!cell.complete(statement_.get(), number++));
    return true;
}

/// A procedure has as many results as queries, and one of its own.
void MariaDbCursor::dropFurtherResults() {
    int result = 0;
    while ((result = mysql_stmt_next_result(statement_.get())) == 0)
        mysql_stmt_free_result(statement_.get());
    check(result > 0);
}

void MariaDbCursor::check(bool failed) {
    if (!failed)
        return;
    atEnd_ = true;
    throw turn_.failure(statement_.get());
}

} // namespace quillet::db
