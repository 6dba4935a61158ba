#include "bench/receive/WindowWatch.h"

#include <QCoreApplication>
#include <QEvent>

#include <algorithm>

namespace quillet::bench {

WindowWatch::WindowWatch() {
    QCoreApplication::instance()->installEventFilter(this);
}

void WindowWatch::queryBegins(const std::string& ServerSql) {
    const double now = clock_.seconds();
    // What is asked after the batch is no part of it.
    if (figures_.statements.empty()) {
        if (begun_)
            figures_.collecting += now - since_;
        figures_.ServerQueries.push_back(ServerSql);
    }
    begun_ = true;
    since_ = now;
}

void WindowWatch::queryEnded() {
    const double now = clock_.seconds();
    if (figures_.statements.empty())
        figures_.queries += now - since_;
    since_ = now;
}

void WindowWatch::batchBegins(const db::StatementArray& statements) {
    figures_.collecting += clock_.seconds() - since_;
    figures_.statements = statements;
    inBatch_ = true;
    since_ = lastPaint_ = clock_.seconds();
}

void WindowWatch::batchEnded() {
    figures_.batch = clock_.seconds() - since_;
    painted();
    inBatch_ = false;
}

bool WindowWatch::eventFilter(QObject* /*watched*/, QEvent* event) {
    if (inBatch_ && event->type() == QEvent::Paint)
        painted();
    return false;
}

void WindowWatch::painted() {
    const double now = clock_.seconds();
    figures_.longestGap = std::max(figures_.longestGap, now - lastPaint_);
    lastPaint_ = now;
}

} // namespace quillet::bench
