#include "sync/Receiver.h"

#include "data/Error.h"

namespace quillet::sync {

namespace {

/// A yield costs about as much as a row.
void yieldNowAndThen(Run& run) {
    constexpr std::size_t Statements = 32;
    if (run.statements.size() % Statements == 0)
        run.yieldOrEnd();
}

/// The element of the statement array that a failure logs: the one at the handled-row counter.
std::string loggedStatement(const Run& run, std::size_t handledRows) {
    return handledRows < run.statements.size() ? run.statements[handledRows] : std::string();
}

void appendIfAny(Run& run, std::optional<std::string> statement) {
    if (statement)
        run.append(std::move(*statement));
}

/// Reads the look-up rows' keys. A failed snapshot comes back closed; using it is the error, and
/// what the store said of it tells the technician why.
data::Recordset snapshot(Run& run, const Upsert& upsert) {
    data::Recordset StoreRs = run.store().GET_RSS(
        std::string(upsert.StoreSql), data::Recordset::columnOf(upsert.criteria.opening()));
    if (run.store().Status() != 1)
        throw data::Error(data::number::ObjectClosed,
                          "Operation is not allowed when the object is closed. " +
                              run.store().errorText());
    return StoreRs;
}

void collect(Run& run, const Upsert& upsert, std::size_t& handledRows) {
    data::Recordset ServerRs = run.queryServer(upsert.ServerSql);
    if (ServerRs.Eof())
        return;
    run.RowTotal =
        (upsert.rowTotal == RowTotalRule::Set ? 0 : run.RowTotal) + ServerRs.RecordCount();
    if (upsert.beforeLookup)
        upsert.beforeLookup();

    data::Recordset StoreRs = snapshot(run, upsert);
    const ServerRow row(ServerRs);

    if (StoreRs.Eof()) {
        const auto& insert = upsert.firstFill ? upsert.firstFill : upsert.insert;
        for (; !ServerRs.Eof(); ServerRs.MoveNext()) {
            appendIfAny(run, insert(row));
            yieldNowAndThen(run);
        }
        return;
    }
    for (; !ServerRs.Eof(); ServerRs.MoveNext()) {
        StoreRs.MoveFirst();
        StoreRs.Find(upsert.criteria.renderCriteria(row));
        if (StoreRs.Eof())
            appendIfAny(run, upsert.insert(row));
        else
            run.append(upsert.update(row));
        if (upsert.countsRows)
            ++handledRows;
        yieldNowAndThen(run);
    }
}

} // namespace

bool guardReceiver(Run& run, std::string_view title,
                   const std::function<void(std::size_t& handledRows)>& steps) {
    std::size_t handledRows = 0;
    try {
        steps(handledRows);
        return true;
    } catch (const std::exception&) {
        if (run.isEnding())
            return false;
        run.fail(std::string(title), loggedStatement(run, handledRows), data::currentError());
        run.failure->subject.clear(); // the log's statement is an earlier one than what failed
        return false;
    }
}

bool receive(Run& run, const Upsert& upsert) {
    return guardReceiver(run, upsert.title,
                         [&](std::size_t& handledRows) { collect(run, upsert, handledRows); });
}

} // namespace quillet::sync
