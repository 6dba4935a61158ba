// Rows to bytes and back, as server and counter do it.

#include "bench/pieces/MemberRows.h"
#include "rds/tablegram/TablegramReader.h"
#include "rds/tablegram/TablegramWriter.h"

#include <benchmark/benchmark.h>

namespace quillet::bench {
namespace {

constexpr int Rows = 2000;

std::string written(data::Recordset& rows) {
    std::string bytes;
    rds::TablegramWriter writer([&bytes](std::string_view piece) { bytes += piece; },
                                rds::describeResult(rows.Fields()));
    for (RecordsetCursor cursor(rows); cursor.next();)
        writer.writeRow(cursor);
    writer.finish();
    return bytes;
}

void tablegramWrite(benchmark::State& state) {
    data::Recordset rows = memberRows(Rows);
    std::size_t bytes = 0;
    for ([[maybe_unused]] const auto iteration : state)
        bytes += written(rows).size();
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
    state.SetItemsProcessed(state.iterations() * Rows);
}
BENCHMARK(tablegramWrite);

void tablegramRead(benchmark::State& state) {
    data::Recordset rows = memberRows(Rows);
    const std::string bytes = written(rows);
    for ([[maybe_unused]] const auto iteration : state) {
        rds::ByteReader in(bytes);
        benchmark::DoNotOptimize(rds::readTablegram(in).RecordCount());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
    state.SetItemsProcessed(state.iterations() * Rows);
}
BENCHMARK(tablegramRead);

} // namespace
} // namespace quillet::bench
