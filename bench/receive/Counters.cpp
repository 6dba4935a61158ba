#include "bench/receive/Counter.h"
#include "bench/receive/HeadOfficeProcess.h"
#include "bench/receive/Measurements.h"
#include "bench/receive/Stopwatch.h"

#include <array>
#include <deque>
#include <iostream>

namespace quillet::bench {

namespace {

/// Seconds that counters take which receive at the same time, each into an empty store.
double receiveTogether(std::deque<Counter>& counters, const std::filesystem::path& emptyStore) {
    std::deque<QProcess> processes(counters.size());
    for (Counter& counter : counters)
        counter.useStore(emptyStore);
    const Stopwatch stopwatch;
    for (std::size_t i = 0; i < counters.size(); ++i)
        counters[i].start(processes[i]);
    for (QProcess& process : processes)
        process.waitForFinished(-1);
    const double seconds = stopwatch.seconds();
    for (std::size_t i = 0; i < counters.size(); ++i)
        counters[i].requireSuccess(processes[i]);
    return seconds;
}

} // namespace

void measureServers(Report& report, const Site& site, const Chain& chain, int counters,
                    int rounds) {
    if (site.earlierHeadOffice.empty())
        return;
    const HeadOfficeProcess present(site.headOffice);
    const HeadOfficeProcess earlier(site.earlierHeadOffice);
    const tests::TempFolder folder;
    const std::filesystem::path emptyStore = folder / "empty.MDB";
    std::deque<Counter> atPresent;
    std::deque<Counter> atEarlier;
    for (int i = 0; i < counters; ++i) {
        atPresent.emplace_back(site, present.address(), chain.database);
        atEarlier.emplace_back(site, earlier.address(), chain.database);
    }
    std::filesystem::copy_file(atPresent.front().store(), emptyStore);

    Figure figure{std::to_string(counters) +
                      (counters == 1 ? " counter: " : " counters at once: ") +
                      "time from this server / from an earlier one",
                  "",
                  {},
                  1.03};
    for (int round = 0; round <= rounds; ++round) {
        std::cerr << "two servers: round " << round << " of " << rounds << std::endl;
        std::array<double, 2> times{};
        for (const bool first : {true, false, false, true})
            times[first ? 0 : 1] += receiveTogether(first ? atPresent : atEarlier, emptyStore);
        if (round > 0) // the first one warms up
            figure.samples.push_back(times[0] / times[1]);
    }
    report.add(std::move(figure));
}

void measureCounters(Report& report, const Site& site, const Chain& chain, int counters,
                     int rounds) {
    const HeadOfficeProcess headOffice(site.headOffice);
    const tests::TempFolder folder;
    const std::filesystem::path emptyStore = folder / "empty.MDB";
    std::deque<Counter> one;
    std::deque<Counter> many;
    one.emplace_back(site, headOffice.address(), chain.database);
    std::filesystem::copy_file(one.front().store(), emptyStore);
    for (int i = 0; i < counters; ++i)
        many.emplace_back(site, headOffice.address(), chain.database);
    receiveTogether(one, emptyStore); // warms up

    Figure throughput{std::to_string(counters) + " counters at once / one: receives per second",
                      "",
                      {},
                      1.98,
                      Figure::Goal::AtLeast};
    for (int round = 1; round <= rounds; ++round) {
        std::cerr << counters << " counters: round " << round << " of " << rounds << std::endl;
        const double alone = (receiveTogether(one, emptyStore) + receiveTogether(one, emptyStore) +
                              receiveTogether(one, emptyStore)) /
                             3;
        throughput.samples.push_back(counters * alone / receiveTogether(many, emptyStore));
    }
    report.add(std::move(throughput));
}

} // namespace quillet::bench
