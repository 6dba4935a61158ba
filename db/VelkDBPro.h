#pragma once

#include "data/Recordset.h"
#include "db/Connection.h"
#include "db/Controls.h"
#include "logs/DailyLog.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::db {

/// Statements to run as a batch. Element 0 is an unused placeholder; statements sit from 1 on.
using StatementArray = std::vector<std::string>;

/// How many statements of a batch belong to each data group: menu, members, users, settings,
/// account titles, business information.
using GroupCounts = std::array<std::int32_t, 6>;

/// Rows of texts.
using TextTable = std::vector<std::vector<std::string>>;

/// The database connection through which every store statement runs.
///
/// No operation throws: each leaves Status() at 1 (done) or 0 (failed) and, after a failure, a
/// text in ErrText(), in one of two forms. Operations that read (`DBOpen`, `GET_RSS`, `GET_DATA`)
/// append "description[number]" for each entry of the connection's `Errors`, joined by CR LF, to
/// whatever text an earlier failure left. Batches (`PUT_DATA_DEL`, `PUT_DATA`) set
/// "number : description".
class VelkDBPro {
public:
    /// Lets the window handle what is waiting for it.
    using Yield = std::function<void()>;

    /// @param waits see Connection::setWaitHandler().
    VelkDBPro(logs::DailyLog dailyLog, Yield yield, WaitHandler* waits = nullptr);

    void DBOpen(const std::string& constr);

    /// 1 when the latest operation completed, 0 when it failed or none has run yet.
    std::int16_t Status() const noexcept { return StatusFlag; }

    const std::string& errorText() const noexcept { return ErrText; }

    /// Where the latest PUT_DATA failed: the index of the statement; the array's size when all ran
    /// and the commit was refused.
    std::size_t failedIndex() const noexcept { return failedIndex_; }

    /// See Connection::file().
    const std::filesystem::path& file() const noexcept { return Conn.file(); }

    /// Whether it is open, and on the file that its path leads to.
    bool isUsable() const noexcept { return Conn.IsOpen() && !Conn.hasMoved(); }

    /// See Connection::fileAtRisk().
    const std::filesystem::path& fileAtRisk() const noexcept { return Conn.fileAtRisk(); }

    /// Reads a query's rows, to look keys up in. After a failure the recordset is closed, not
    /// absent: ask Status(). A success deliberately leaves ErrText as it was.
    /// @param onlyColumn see Connection::read().
    data::Recordset GET_RSS(const std::string& SSQL, std::string_view onlyColumn = {});

    /// Runs every statement in one transaction, all or nothing.
    void PUT_DATA_DEL(const StatementArray& SQL);

    /// Runs every statement in one transaction and passes over those that fail: it serves schema
    /// changes that may have been made before. The two further arguments are not read.
    void PUT_DATA_TABLE(const StatementArray& SQL, std::int16_t transactionSwitch,
                        std::string& errorText);

    /// Runs every statement in one transaction, all or nothing, and shows how far it is. A failure
    /// goes to the daily log with the failing statement.
    ///
    /// Group 5 deliberately does not move the overall bar, and the last statement moves nothing.
    /// @param transactionSwitch not read.
    /// @param PBarT overall bar, sized by the caller; @param PBar1 bar of the current group.
    /// @param LBLT overall counter; @param LBL1 counter of the group; @param LBL2 its total;
    /// @param LBL3 its status text.
    /// @param CNT the groups' counts, in the order in which their statements lie in SQL.
    void PUT_DATA(const StatementArray& SQL, std::int16_t transactionSwitch, ProgressBar& PBarT,
                  ProgressBar& PBar1, Label& LBLT, Label& LBL1, Label& LBL2, Label& LBL3,
                  const GroupCounts& CNT);

    /// Copies a query's rows as texts: row 0 of FD has the column names, Null is "".
    /// @param FDROW rows without the names, @param FDCOL columns. Without any row both are 0 and
    ///        FD is one empty text. A failure leaves all three alone.
    void GET_DATA(const std::string& SSQL, TextTable& FD, std::int32_t& FDROW, std::int32_t& FDCOL);

private:
    void WriteDailyLog(const std::string& message, const std::string& kind,
                       const std::string& detail1, const std::string& detail2,
                       const std::string& detail3) const;

    void succeed();
    void failWithErrors();
    void failWith(const data::Error& error);

    Connection Conn;
    data::Recordset Rs;
    std::int16_t StatusFlag = 0;
    std::string ErrText;

    std::size_t failedIndex_ = 0;
    logs::DailyLog dailyLog_;
    Yield yield_;
    WaitHandler* waits_;
};

} // namespace quillet::db
