#include "bench/receive/Counter.h"
#include "bench/receive/Measurements.h"
#include "bench/receive/Stopwatch.h"

#include <QByteArray>

#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace quillet::bench {

namespace {

/// Milliseconds from the start of the process to the first painted window.
double start(const Counter& counter) {
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    const Stopwatch stopwatch;
    counter.start(process);
    for (QByteArray said; !said.contains(": Flushing "); said += process.readAll())
        if (!process.waitForReadyRead())
            throw std::runtime_error("the window was never painted");
    const double milliseconds = 1000 * stopwatch.seconds();
    process.kill();
    process.waitForFinished();
    return milliseconds;
}

} // namespace

void measureStart(Report& report, const Site& site, const Chain& chain, int rounds) {
    // Nobody listens there: the window comes up, fails at once and stays.
    const Counter counter(site, "127.0.0.1:1", chain.database);
    const QByteArray ownPlatform = qgetenv("QT_QPA_PLATFORM");
    const QByteArray ownRules = qgetenv("QT_LOGGING_RULES");
    // What Qt says when it hands a window's pixels to the screen.
    qputenv("QT_LOGGING_RULES", "qt.widgets.painting=true");
    std::vector<const char*> platforms{"offscreen"};
    if (!qEnvironmentVariableIsEmpty("DISPLAY"))
        platforms.push_back("xcb");
    for (const char* const platform : platforms) {
        std::cerr << "start (" << platform << ')' << std::endl;
        qputenv("QT_QPA_PLATFORM", platform);
        start(counter); // warms up
        Figure figure{
            "process start to first painted window (" + std::string(platform) + ")", "ms", {}};
        for (int round = 0; round < rounds; ++round)
            figure.samples.push_back(start(counter));
        report.add(std::move(figure));
    }
    qputenv("QT_QPA_PLATFORM", ownPlatform);
    qputenv("QT_LOGGING_RULES", ownRules);
}

} // namespace quillet::bench
