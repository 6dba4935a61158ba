#include "bench/receive/Counter.h"
#include "bench/receive/Measurements.h"
#include "bench/receive/Stopwatch.h"

#include <QByteArray>

#include <iostream>
#include <stdexcept>

namespace quillet::bench {

void measureStart(Report& report, const Site& site, const Chain& chain, int rounds) {
    // Nobody listens there: the window comes up, fails at once and stays.
    const Counter counter(site, "127.0.0.1:1", chain.database);
    std::vector<double> samples;
    // What Qt says when it hands a window's pixels to the screen.
    qputenv("QT_LOGGING_RULES", "qt.widgets.painting=true");
    for (int round = 0; round <= rounds; ++round) {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        const Stopwatch stopwatch;
        counter.start(process);
        for (QByteArray said; !said.contains(": Flushing "); said += process.readAll())
            if (!process.waitForReadyRead())
                throw std::runtime_error("the window was never painted");
        if (round > 0) // the first one warms up
            samples.push_back(1000 * stopwatch.seconds());
        process.kill();
        process.waitForFinished();
    }
    qunsetenv("QT_LOGGING_RULES");
    report.add({"process start to first painted window (" +
                    qEnvironmentVariable("QT_QPA_PLATFORM").toStdString() + ")",
                "ms", samples});
}

} // namespace quillet::bench
