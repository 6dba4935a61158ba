// Looking a key up: the index once per recordset, and then each key.

#include "bench/pieces/MemberRows.h"

#include <benchmark/benchmark.h>

namespace quillet::bench {
namespace {

std::string criteria(std::int64_t number) {
    return "CT_CODE = '" + std::to_string(1000100000000000 + number) + "' ";
}

void findFirst(benchmark::State& state) {
    const auto rows = static_cast<int>(state.range(0));
    for ([[maybe_unused]] const auto iteration : state) {
        state.PauseTiming();
        data::Recordset recordset = memberRows(rows);
        recordset.MoveFirst();
        state.ResumeTiming();
        recordset.Find(criteria(rows - 1)); // makes the index
    }
    state.SetItemsProcessed(state.iterations() * rows);
}
BENCHMARK(findFirst)->Arg(1000)->Arg(10'000)->Arg(100'000);

void findNext(benchmark::State& state) {
    const auto rows = static_cast<int>(state.range(0));
    data::Recordset recordset = memberRows(rows);
    std::int64_t number = 0;
    for ([[maybe_unused]] const auto iteration : state) {
        recordset.MoveFirst();
        recordset.Find(criteria(number));
        number = (number + 7919) % (rows + rows / 10); // one in eleven is not there
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(findNext)->Arg(1000)->Arg(10'000)->Arg(100'000);

} // namespace
} // namespace quillet::bench
