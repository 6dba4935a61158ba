#pragma once

#include "data/Cursor.h"
#include "data/Error.h"
#include "data/Recordset.h"
#include "db/Engine.h"
#include "db/WaitHandler.h"
#include "files/FileIdentity.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::db {

/// The portable stand-in for ADO's `Connection`. Members that are ADO's carry ADO's names.
///
/// Every operation throws `Error`; one that a database reported is also left in `Errors()`, which
/// keeps it until the next such error, as ADO does.
class Connection {
public:
    Connection();
    ~Connection();
    Connection(Connection&&) noexcept;
    Connection& operator=(Connection&&) noexcept;

    /// Opens a database. The string's `Driver={...}` decides which engine serves it: a driver of
    /// that name known to the ODBC driver manager gets the string as it stands, less `PROVIDER=`;
    /// otherwise the Access driver's name means the embedded store, the file `Dbq` in
    /// `DefaultDir`. A missing file is an error: a store is never created here.
    void Open(const std::string& connectionString);

    /// Runs exactly one statement and drops its rows.
    /// @throws Error 3709 when the connection is not open.
    void Execute(const std::string& statement);

    /// @throws Error also when the store's file is no longer the one that was opened.
    void BeginTrans();
    /// @throws Error also when the store's file is no longer the one that was opened: what was
    ///         written has gone nowhere then, whatever the engine says of it.
    void CommitTrans();
    void RollbackTrans();

    /// Runs a query and delivers its rows one by one; the connection must outlive the cursor and
    /// stay where it is meanwhile.
    /// @param onlyColumn where it names one, others may be missing.
    std::unique_ptr<data::Cursor> query(const std::string& source,
                                        std::string_view onlyColumn = {});

    /// Reads the whole result of a query.
    /// @param onlyColumn see data::Recordset::readFrom(); the order of the rows may differ then.
    /// @throws Error 3709 when the connection is not open, or what the database reported; 3265 for
    ///         an unknown column.
    data::Recordset read(const std::string& source, std::string_view onlyColumn = {});

    /// Who stands by while the database keeps its caller waiting; before Open().
    /// @param handler outlives the connection; null: nobody.
    void setWaitHandler(WaitHandler* handler) noexcept { waitHandler_ = handler; }

    bool IsOpen() const noexcept { return engine_ != nullptr; }

    /// The database's file, `Dbq` in `DefaultDir`, of the latest Open(), also of a failed one.
    const std::filesystem::path& file() const noexcept { return file_; }

    /// The same where the engine does not vouch for large transactions; otherwise empty.
    const std::filesystem::path& fileAtRisk() const noexcept { return fileAtRisk_; }

    /// Whether the database's path leads to another file than the one that was opened, or to none.
    /// A database without a file never moves.
    bool hasMoved() const noexcept;

    const std::vector<data::ErrorRecord>& Errors() const noexcept { return errors_; }

private:
    template <typename Operation>
    auto guarded(Operation operation);

    void requireSameFile() const;

    std::unique_ptr<Engine> engine_;
    WaitHandler* waitHandler_ = nullptr;
    std::filesystem::path file_;
    std::filesystem::path fileAtRisk_;
    std::optional<files::FileIdentity> opened_; ///< the file that was opened
    std::vector<data::ErrorRecord> errors_;
};

} // namespace quillet::db
