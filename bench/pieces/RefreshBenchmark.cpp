// What a refresh of the window takes of a batch, 30 times a second.

#include "app/Appearance.h"
#include "app/WindowControls.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>

namespace quillet::bench {
namespace {

void refresh(benchmark::State& state) {
    app::applyAppearance(app::Appearance::Light);
    QWidget window(nullptr, Qt::Window | Qt::FramelessWindowHint);
    app::WindowControls controls(window, QStringLiteral("1.0.0"), 1);
    window.setFixedSize(app::WindowControls::Width, app::WindowControls::Height);
    window.show();
    for (auto& bar : controls.bars)
        bar->SetMax(100000);
    controls.setEnabled(false);
    controls.showPhase(app::RunPhase::Writing);
    QCoreApplication::processEvents();

    std::int32_t done = 0;
    for ([[maybe_unused]] const auto iteration : state) {
        done = (done + 500) % 100000;
        controls.bars[0]->SetValue(done);
        controls.bars[1]->SetValue(done);
        controls.counters[1]->SetCaption(std::to_string(done));
        controls.counters[3]->SetCaption(std::to_string(done));
        controls.display.refresh();
        QCoreApplication::processEvents();
    }
}
BENCHMARK(refresh)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace quillet::bench
