#include "db/Connection.h"

#include "data/AsciiText.h"
#include "db/ConnectionString.h"
#include "db/odbc/OdbcEngine.h"
#include "db/sqlite/SqliteEngine.h"
#include "files/Paths.h"

#include <string_view>
#include <utility>

namespace quillet::db {

namespace {

constexpr std::string_view AccessDriver = "Microsoft Access Driver (*.mdb)";

std::filesystem::path fileOf(const ConnectionString& connectionString) {
    return files::pathOf(connectionString.value("DefaultDir")) /
           files::pathOf(connectionString.value("Dbq"));
}

std::unique_ptr<Engine> openEngine(const ConnectionString& connectionString) {
    const std::string driver = connectionString.value("Driver");
    if (data::equalIgnoringCase(driver, AccessDriver) && !OdbcEngine::knowsDriver(driver))
        return std::make_unique<SqliteEngine>(fileOf(connectionString));
    return std::make_unique<OdbcEngine>(connectionString.without("PROVIDER"));
}

Engine& require(const std::unique_ptr<Engine>& engine) {
    if (!engine)
        throw data::Error(
            data::number::ConnectionClosed,
            "The connection cannot be used to perform this operation. It is either closed "
            "or invalid in this context.");
    return *engine;
}

/// Leaves the errors met while fetching in the connection's collection, too.
class RecordingCursor final : public data::Cursor {
public:
    RecordingCursor(std::unique_ptr<data::Cursor> cursor, std::vector<data::ErrorRecord>& errors)
        : cursor_(std::move(cursor)), errors_(errors) {}

    const data::FieldList& fields() const override { return cursor_->fields(); }
    data::Value value(std::size_t column) const override { return cursor_->value(column); }

    bool next() override {
        try {
            return cursor_->next();
        } catch (const data::Error& error) {
            if (!error.providerRecords().empty())
                errors_ = error.providerRecords();
            throw;
        }
    }

private:
    std::unique_ptr<data::Cursor> cursor_;
    std::vector<data::ErrorRecord>& errors_;
};

} // namespace

Connection::Connection() = default;
Connection::~Connection() = default;
Connection::Connection(Connection&&) noexcept = default;
Connection& Connection::operator=(Connection&&) noexcept = default;

template <typename Operation>
auto Connection::guarded(Operation operation) {
    try {
        return operation();
    } catch (const data::Error& error) {
        if (!error.providerRecords().empty())
            errors_ = error.providerRecords();
        throw;
    }
}

void Connection::Open(const std::string& connectionString) {
    // An engine that is already open stays when the new one cannot be opened.
    const ConnectionString parts(connectionString);
    file_ = fileOf(parts);
    guarded([&] { engine_ = openEngine(parts); });
    engine_->setWaitHandler(waitHandler_);
    fileAtRisk_ = engine_->keepsTransactionsWhole() ? std::filesystem::path() : file_;
    opened_ = files::FileIdentity::of(file_);
}

bool Connection::hasMoved() const noexcept {
    return opened_ && files::FileIdentity::of(file_) != opened_;
}

void Connection::requireSameFile() const {
    if (hasMoved())
        throw data::providerError("HY000",
                                  "The store database '" + files::textOf(file_) +
                                      "' was moved, removed or replaced after it was opened.");
}

void Connection::Execute(const std::string& statement) {
    guarded([&] { require(engine_).execute(statement); });
}

void Connection::BeginTrans() {
    guarded([&] {
        Engine& engine = require(engine_);
        requireSameFile();
        engine.begin();
    });
}

void Connection::CommitTrans() {
    guarded([&] {
        Engine& engine = require(engine_);
        requireSameFile();
        engine.commit();
        requireSameFile(); // it may have gone meanwhile
    });
}

void Connection::RollbackTrans() {
    guarded([&] { require(engine_).rollback(); });
}

std::unique_ptr<data::Cursor> Connection::query(const std::string& source,
                                                std::string_view onlyColumn) {
    return guarded([&]() -> std::unique_ptr<data::Cursor> {
        Engine& engine = require(engine_);
        auto cursor = onlyColumn.empty() ? engine.query(source)
                                         : engine.queryColumn(source, std::string(onlyColumn));
        return std::make_unique<RecordingCursor>(std::move(cursor), errors_);
    });
}

data::Recordset Connection::read(const std::string& source, std::string_view onlyColumn) {
    return data::Recordset::readFrom(*query(source, onlyColumn), onlyColumn);
}

} // namespace quillet::db
