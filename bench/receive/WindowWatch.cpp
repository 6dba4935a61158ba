#include "bench/receive/WindowWatch.h"

#include <QCoreApplication>
#include <QEvent>

#include <algorithm>

namespace quillet::bench {

namespace {

/// Statements in a row, in about 10 ms: long enough for the caches, short enough for the machine's
/// moods.
constexpr std::size_t Turn = 500;

} // namespace

WindowWatch::WindowWatch(std::optional<FloorSites> floors) : floors_(std::move(floors)) {
    if (floors_)
        fetchFloor_ = std::make_unique<FetchFloor>(floors_->connectionString);
    QCoreApplication::instance()->installEventFilter(this);
    clock_ = Stopwatch();
}

WindowWatch::~WindowWatch() = default;

const WindowFigures& WindowWatch::finish() {
    figures_.whole = now();
    return figures_;
}

/// Does something that is not the run's.
/// @return seconds.
template <typename Work>
double WindowWatch::stopClockFor(Work work) {
    const Stopwatch stopwatch;
    work();
    const double seconds = stopwatch.seconds();
    stopped_ += seconds;
    return seconds;
}

void WindowWatch::queryBegins(const std::string& ServerSql) {
    if (batchOver_)
        return; // the store's own settings have no part in the floors
    const double time = now();
    if (begun_)
        figures_.collecting += time - since_;
    figures_.ServerQueries.push_back(ServerSql);
    begun_ = true;
    since_ = time;
}

void WindowWatch::queryEnded() {
    if (batchOver_)
        return;
    figures_.queries += now() - since_;
    if (fetchFloor_)
        figures_.F2 += stopClockFor([&] { fetchFloor_->fetch(figures_.ServerQueries.back()); });
    since_ = now();
}

void WindowWatch::batchBegins(const db::StatementArray& statements) {
    figures_.collecting += now() - since_;
    figures_.statements = statements.size() - 1;
    batch_ = &statements;
    if (floors_) {
        stopClockFor([&] {
            std::filesystem::copy_file(floors_->store, floors_->copy,
                                       std::filesystem::copy_options::overwrite_existing);
        });
        figures_.F1 +=
            stopClockFor([&] { executeFloor_ = std::make_unique<ExecuteFloor>(floors_->copy); });
    }
    since_ = lastPaint_ = now();
}

void WindowWatch::statementDone() {
    if (++done_ % Turn == 0)
        executeOnFloor(Turn);
}

void WindowWatch::executeOnFloor(std::size_t count) {
    if (!executeFloor_)
        return;
    const std::size_t last = std::min(doneOnFloor_ + count, batch_->size() - 1);
    figures_.F1 += stopClockFor([&] {
        while (doneOnFloor_ < last)
            executeFloor_->execute((*batch_)[++doneOnFloor_]);
    });
}

void WindowWatch::batchEnded() {
    figures_.batch = now() - since_;
    painted();
    if (executeFloor_) {
        executeOnFloor(batch_->size());
        figures_.F1 += stopClockFor([this] { executeFloor_->commit(); });
        executeFloor_.reset();
    }
    batch_ = nullptr;
    batchOver_ = true;
}

bool WindowWatch::eventFilter(QObject* /*watched*/, QEvent* event) {
    if (batch_ != nullptr && event->type() == QEvent::Paint)
        painted();
    return false;
}

void WindowWatch::painted() {
    const double time = now();
    figures_.longestGap = std::max(figures_.longestGap, time - lastPaint_);
    lastPaint_ = time;
}

} // namespace quillet::bench
