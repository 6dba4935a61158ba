#include "db/VelkDBPro.h"

#include "data/AsciiText.h"
#include "db/BatchProgress.h"
#include "db/Transaction.h"

#include <exception>

namespace quillet::db {

VelkDBPro::VelkDBPro(logs::DailyLog dailyLog, Yield yield, WaitHandler* waits)
    : dailyLog_(std::move(dailyLog)), yield_(std::move(yield)), waits_(waits) {}

void VelkDBPro::succeed() {
    StatusFlag = 1;
    ErrText.clear();
}

void VelkDBPro::failWithErrors() {
    StatusFlag = 0;
    const std::vector<data::ErrorRecord>& Errs = Conn.Errors();
    for (const data::ErrorRecord& record : Errs) {
        if (!ErrText.empty())
            ErrText += "\r\n";
        ErrText += record.Description + "[" + std::to_string(record.Number) + "]";
    }
}

void VelkDBPro::failWith(const data::Error& error) {
    StatusFlag = 0;
    ErrText = std::to_string(error.Number()) + " : ";
    ErrText += data::trimmed(error.what());
}

void VelkDBPro::DBOpen(const std::string& constr) {
    try {
        Conn = Connection();
        Conn.setWaitHandler(waits_);
        Conn.Open(constr);
        succeed();
    } catch (const std::exception&) {
        failWithErrors();
    }
}

data::Recordset VelkDBPro::GET_RSS(const std::string& SSQL, std::string_view onlyColumn) {
    try {
        data::Recordset result = Conn.read(SSQL, onlyColumn);
        StatusFlag = 1;
        return result;
    } catch (const std::exception&) {
        failWithErrors();
        return {};
    }
}

void VelkDBPro::PUT_DATA_DEL(const StatementArray& SQL) {
    try {
        Transaction transaction(Conn);
        for (std::size_t i = 1; i < SQL.size(); ++i)
            Conn.Execute(SQL[i]);
        transaction.Commit();
        succeed();
    } catch (const std::exception&) {
        failWith(data::currentError());
    }
}

void VelkDBPro::PUT_DATA_TABLE(const StatementArray& SQL, std::int16_t /*transactionSwitch*/,
                               std::string& /*errorText*/) {
    const auto passingOver = [](const auto& step) {
        try {
            step();
        } catch (const data::Error&) {
            return; // tolerated on purpose: the column may be there already
        }
    };
    passingOver([this] { Conn.BeginTrans(); });
    for (std::size_t i = 1; i < SQL.size(); ++i)
        passingOver([&] { Conn.Execute(SQL[i]); });
    passingOver([this] {
        try {
            Conn.CommitTrans();
        } catch (const data::Error&) {
            Conn.RollbackTrans(); // or the next batch would find this one's transaction open
            throw;
        }
    });
    succeed();
}

void VelkDBPro::PUT_DATA(const StatementArray& SQL, std::int16_t /*transactionSwitch*/,
                         ProgressBar& PBarT, ProgressBar& PBar1, Label& LBLT, Label& LBL1,
                         Label& LBL2, Label& LBL3, const GroupCounts& CNT) {
    BatchProgress progress(PBarT, PBar1, LBLT, LBL1, LBL2, LBL3, CNT);
    std::size_t i = 0; // the placeholder, until a statement runs
    try {
        Transaction transaction(Conn);
        for (i = 1; i < SQL.size(); ++i) {
            Conn.Execute(SQL[i]);
            if (i + 1 == SQL.size())
                continue;
            progress.beforeYield(static_cast<std::int32_t>(i));
            yield_();
            progress.afterYield();
        }
        transaction.Commit();
        succeed();
    } catch (const std::exception&) {
        const data::Error error = data::currentError();
        failWith(error);
        failedIndex_ = i;
        try {
            WriteDailyLog(error.Description(), "수신에러", i < SQL.size() ? SQL[i] : "", "", "");
        } catch (const data::Error&) {
            return; // a log folder that cannot be made; the failure itself stands in ErrText
        }
    }
}

void VelkDBPro::WriteDailyLog(const std::string& message, const std::string& kind,
                              const std::string& detail1, const std::string& detail2,
                              const std::string& detail3) const {
    dailyLog_.write(message, kind, detail1, detail2, detail3);
}

void VelkDBPro::GET_DATA(const std::string& SSQL, TextTable& FD, std::int32_t& FDROW,
                         std::int32_t& FDCOL) {
    try {
        Rs = Conn.read(SSQL);
        if (Rs.RecordCount() == 0) {
            FDROW = 0;
            FDCOL = 0;
            FD.assign(1, {std::string()});
        } else {
            const std::size_t columns = Rs.Fields().size();
            TextTable table;
            table.reserve(static_cast<std::size_t>(Rs.RecordCount()) + 1);
            table.emplace_back();
            for (const data::Field& field : Rs.Fields())
                table.back().push_back(field.Name);
            for (; !Rs.Eof(); Rs.MoveNext()) {
                table.emplace_back();
                for (std::size_t column = 0; column < columns; ++column)
                    table.back().push_back(Rs.Item(column).toText());
            }
            FDROW = Rs.RecordCount();
            FDCOL = static_cast<std::int32_t>(columns);
            FD = std::move(table);
        }
        Rs.Close();
        succeed();
    } catch (const std::exception&) {
        failWithErrors();
    }
}

} // namespace quillet::db
