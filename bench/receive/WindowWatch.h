#pragma once

#include "bench/receive/Counter.h"
#include "bench/receive/Stopwatch.h"
#include "sync/RunObserver.h"

#include <QObject>

#include <string>

namespace quillet::bench {

/// Times a run in a window of this process, and the window's repaints while its batch runs.
class WindowWatch : public QObject, public sync::RunObserver {
public:
    WindowWatch();

    bool hasBegun() const { return begun_; }
    const WindowFigures& figures() const { return figures_; }

    void queryBegins(const std::string& ServerSql) override;
    void queryEnded() override;
    void batchBegins(const db::StatementArray& statements) override;
    void batchEnded() override;

private:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void painted();

    WindowFigures figures_;
    Stopwatch clock_;
    bool begun_ = false;
    bool inBatch_ = false;
    double since_ = 0; ///< when the present step began
    double lastPaint_ = 0;
};

} // namespace quillet::bench
