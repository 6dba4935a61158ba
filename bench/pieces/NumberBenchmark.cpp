// The leading-number rule, and numbers as text.

#include "sync/LeadingNumber.h"

#include <benchmark/benchmark.h>

#include <array>
#include <string_view>

namespace quillet::bench {
namespace {

void numberRead(benchmark::State& state) {
    constexpr std::array<std::string_view, 6> Texts{"0", "12000", " 5 ", "12.5", "-1 500", "3%"};
    std::size_t i = 0;
    for ([[maybe_unused]] const auto iteration : state)
        benchmark::DoNotOptimize(sync::leadingNumber(Texts[++i % Texts.size()]));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(numberRead);

void numberWrite(benchmark::State& state, double value) {
    for ([[maybe_unused]] const auto iteration : state)
        benchmark::DoNotOptimize(sync::numberText(value).data());
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK_CAPTURE(numberWrite, whole, 12000.0);
BENCHMARK_CAPTURE(numberWrite, broken, 4312.75);
BENCHMARK_CAPTURE(numberWrite, tiny, 1.5e-12);

} // namespace
} // namespace quillet::bench
