// From a row to a statement, and what the embedded store does with its text before running it.

#include "bench/pieces/MemberRows.h"
#include "db/sqlite/AccessDialect.h"
#include "sync/SqlTemplate.h"

#include <benchmark/benchmark.h>

namespace quillet::bench {
namespace {

/// As wide as a member's: 40 columns, one in five a number.
std::string insertPattern() {
    std::string pattern = " INSERT INTO CT (";
    for (int i = 0; i < 40; ++i)
        pattern += (i == 0 ? "CT_" : ",CT_") + std::to_string(i);
    pattern += ") VALUES (";
    for (int i = 0; i < 40; ++i) {
        const std::string field = std::to_string(i);
        pattern += (i == 0 ? "" : ",") + (i % 5 == 3 ? "{#" + field + "?}" : "'{" + field + "}'");
    }
    return pattern + ") ";
}

void statementBuild(benchmark::State& state) {
    data::Recordset rows = memberRows(1000);
    rows.MoveFirst();
    const sync::ServerRow row(rows);
    const sync::SqlTemplate insert(insertPattern());
    for ([[maybe_unused]] const auto iteration : state) {
        benchmark::DoNotOptimize(insert.render(row).data());
        rows.MoveNext();
        if (rows.Eof())
            rows.MoveFirst();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(statementBuild);

void statementTranslate(benchmark::State& state, const std::string& statement) {
    std::string buffer;
    for ([[maybe_unused]] const auto iteration : state)
        benchmark::DoNotOptimize(db::translateAccessSql(statement, buffer).data());
    state.SetItemsProcessed(state.iterations());
}

std::string memberInsert() {
    data::Recordset rows = memberRows(1);
    rows.MoveFirst();
    return sync::SqlTemplate(insertPattern()).render(sync::ServerRow(rows));
}
BENCHMARK_CAPTURE(statementTranslate, nothingToDo, memberInsert());
BENCHMARK_CAPTURE(statementTranslate, joinedKey,
                  " SELECT PR_CODE,PROP_CODE,PROP_NAME, PR_CODE + PROP_CODE AS COL0   FROM   PRO ");

} // namespace
} // namespace quillet::bench
