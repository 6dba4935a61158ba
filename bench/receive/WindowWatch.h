#pragma once

#include "bench/receive/Floors.h"
#include "bench/receive/Stopwatch.h"
#include "sync/RunObserver.h"

#include <QObject>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillet::bench {

/// What a receive took, as its window lives through it. Seconds.
struct WindowFigures {
    double queries = 0;    ///< server queries, each until its rows are in the recordset
    double collecting = 0; ///< look-ups and statements: all the rest before the batch
    double batch = 0;      ///< PUT_DATA
    double whole = 0;      ///< from showing the window to its closing
    double longestGap = 0; ///< between two repaints while the batch runs

    double F1 = 0; ///< floors, where they were measured
    double F2 = 0;

    std::size_t statements = 0;
    std::vector<std::string> ServerQueries;
};

/// What a receive takes turns with, where it is measured against its floors.
struct FloorSites {
    std::string connectionString; ///< of the server's database
    std::filesystem::path store;  ///< the counter's, copied when its batch begins
    std::filesystem::path copy;
};

/// Times a run in a window of this process, and the window's repaints while its batch runs.
///
/// With floors, each query is followed by the same query on its floor, and each few hundred
/// statements by the same ones on theirs, with the run's own clock stopped: a machine that is
/// quick now and slow a second later is so for both.
class WindowWatch : public QObject, public sync::RunObserver {
public:
    explicit WindowWatch(std::optional<FloorSites> floors);
    ~WindowWatch() override;

    bool hasBegun() const { return begun_; }

    /// Once the window has closed.
    const WindowFigures& finish();

    void queryBegins(const std::string& ServerSql) override;
    void queryEnded() override;
    void batchBegins(const db::StatementArray& statements) override;
    void statementDone() override;
    void batchEnded() override;

private:
    bool eventFilter(QObject* watched, QEvent* event) override;
    double now() const { return clock_.seconds() - stopped_; }
    void painted();
    void executeOnFloor(std::size_t count);

    template <typename Work>
    double stopClockFor(Work work);

    WindowFigures figures_;
    Stopwatch clock_;
    double stopped_ = 0; ///< how long the run's clock has been
    double since_ = 0;   ///< when the present step began
    double lastPaint_ = 0;
    bool begun_ = false;
    bool batchOver_ = false;

    std::optional<FloorSites> floors_;
    std::unique_ptr<FetchFloor> fetchFloor_;
    std::unique_ptr<ExecuteFloor> executeFloor_;
    const db::StatementArray* batch_ = nullptr; ///< while it runs
    std::size_t done_ = 0;                      ///< statements of it
    std::size_t doneOnFloor_ = 0;
};

} // namespace quillet::bench
