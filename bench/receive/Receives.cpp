#include "bench/receive/Counter.h"
#include "bench/receive/Floors.h"
#include "bench/receive/HeadOfficeProcess.h"
#include "bench/receive/Measurements.h"

#include <sqlite3.h>

#include <functional>
#include <iostream>
#include <memory>
#include <stdexcept>

namespace quillet::bench {

namespace {

namespace fs = std::filesystem;

/// Makes everything in a received store look long out of date, so that all of it comes again.
void ageStamps(const fs::path& store) {
    sqlite3* opened = nullptr;
    sqlite3_open(store.string().c_str(), &opened);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> database(opened, sqlite3_close);
    constexpr const char* Old = "UPDATE UPD SET UPD_PR = '2000-01-01', UPD_CT = '2000-01-01', "
                                "UPD_USR = '2000-01-01', UPD_BAS = '2000-01-01', "
                                "UPD_FN = '2000-01-01'";
    if (sqlite3_exec(opened, Old, nullptr, nullptr, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(opened));
}

double secondsPerStatement(const WindowFigures& figures) {
    return (figures.queries + figures.collecting + figures.batch) /
           static_cast<double>(figures.statements.size());
}

/// One kind of receive, always from the same store.
class Receive {
public:
    Receive(const Site& site, const std::string& address, const Chain& large, const Chain& small,
            const std::string& name, bool received)
        : connectionString_(site.connectionString(large.database)), members_(large.members),
          name_(name), large_(site, address, large.database),
          small_(site, address, small.database), largeStore_(folder_ / "large.MDB"),
          smallStore_(folder_ / "small.MDB"), floorStore_(folder_ / "floor.MDB") {
        if (received) {
            large_.receive();
            ageStamps(large_.store());
            small_.receive();
            ageStamps(small_.store());
        }
        fs::copy_file(large_.store(), largeStore_);
        fs::copy_file(small_.store(), smallStore_);
        warmUp();
    }

    /// Every measurement once, in the other order every other time.
    void round(bool backwards) {
        double F1 = 0;
        double F2 = 0;
        WindowFigures window;
        WindowFigures ofSmall;
        ProcessFigures process;
        std::vector<std::function<void()>> steps{[&] { window = inWindow(large_, largeStore_); },
                                                 [&] { F1 = executeFloor(); },
                                                 [&] { process = inProcess(); },
                                                 [&] { F2 = fetchFloor(); },
                                                 [&] { ofSmall = inWindow(small_, smallStore_); }};
        if (backwards)
            std::reverse(steps.begin(), steps.end());
        for (const auto& step : steps)
            step();

        F1_.push_back(F1);
        F2_.push_back(F2);
        seconds_.push_back(process.seconds);
        batch_.push_back(window.batch / F1);
        queries_.push_back(window.queries / F2);
        collecting_.push_back(window.collecting / F1);
        whole_.push_back(process.seconds / (F1 + F2));
        growth_.push_back(secondsPerStatement(window) / secondsPerStatement(ofSmall));
        memory_.push_back(static_cast<double>(process.peakMemory) / 1024 / members_);
        gap_.push_back(1000 * window.longestGap);
    }

    void report(Report& report) const {
        const std::string sizes = std::to_string(statements_.size() - 1) + " statements against " +
                                  std::to_string(smallStatements_);
        report.add({name_ + ": PUT_DATA with its window / F1", "", batch_, 1.10});
        report.add({name_ + ": server queries to recordsets / F2", "", queries_, 1.5});
        report.add({name_ + ": look-ups and statements / F1", "", collecting_, 0.20});
        report.add({name_ + ": whole run, process start to end / (F1 + F2)", "", whole_, 1.35});
        report.add({name_ + ": time per statement, " + sizes, "", growth_, 1.10});
        report.add({name_ + ": peak memory of quillet / member row", "KiB", memory_, 3,
                    Figure::Goal::AtMost, Figure::Quote::Maximum});
        report.add({name_ + ": longest gap between repaints in PUT_DATA", "ms", gap_, 100,
                    Figure::Goal::AtMost, Figure::Quote::Maximum});
        report.add({name_ + ": F1", "s", F1_});
        report.add({name_ + ": F2", "s", F2_});
        report.add({name_ + ": whole run", "s", seconds_});
    }

private:
    static WindowFigures inWindow(Counter& counter, const fs::path& store) {
        counter.useStore(store);
        return counter.receiveInWindow();
    }

    ProcessFigures inProcess() {
        large_.useStore(largeStore_);
        return large_.receive();
    }

    double executeFloor() const {
        fs::copy_file(largeStore_, floorStore_, fs::copy_options::overwrite_existing);
        return executeByFloor(floorStore_, statements_);
    }

    double fetchFloor() const { return fetchByFloor(connectionString_, ServerQueries_); }

    /// Learns what the floors have to do, too.
    void warmUp() {
        WindowFigures figures = inWindow(large_, largeStore_);
        statements_ = std::move(figures.statements);
        ServerQueries_ = std::move(figures.ServerQueries);
        smallStatements_ = inWindow(small_, smallStore_).statements.size() - 1;
        executeFloor();
        fetchFloor();
    }

    std::string connectionString_;
    int members_;
    std::string name_;
    tests::TempFolder folder_;
    Counter large_;
    Counter small_;
    fs::path largeStore_;
    fs::path smallStore_;
    fs::path floorStore_;

    db::StatementArray statements_;
    std::vector<std::string> ServerQueries_;
    std::size_t smallStatements_ = 0;

    std::vector<double> F1_, F2_, seconds_, batch_, queries_, collecting_, whole_, growth_, memory_,
        gap_;
};

} // namespace

void measureReceives(Report& report, const Site& site, const Chain& large, const Chain& small,
                     int rounds) {
    const HeadOfficeProcess headOffice(site);
    for (const bool received : {false, true}) {
        const std::string name = received ? "full update" : "first receive";
        std::cerr << name << ": warming up" << std::endl;
        Receive receive(site, headOffice.address(), large, small, name, received);
        for (int round = 1; round <= rounds; ++round) {
            std::cerr << name << ": round " << round << " of " << rounds << std::endl;
            receive.round(round % 2 == 0);
        }
        receive.report(report);
    }
}

} // namespace quillet::bench
