#include "bench/receive/Counter.h"
#include "bench/receive/HeadOfficeProcess.h"
#include "bench/receive/Measurements.h"
#include "db/sqlite/SqliteHandle.h"

#include <algorithm>
#include <functional>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace quillet::bench {

namespace {

namespace fs = std::filesystem;

/// Makes everything in a received store look long out of date, so that all of it comes again.
void ageStamps(const fs::path& store) {
    int result = SQLITE_OK;
    const db::SqliteDatabase database = db::openSqlite(store, SQLITE_OPEN_READWRITE, result);
    constexpr const char* Old = "UPDATE UPD SET UPD_PR = '2000-01-01', UPD_CT = '2000-01-01', "
                                "UPD_USR = '2000-01-01', UPD_BAS = '2000-01-01', "
                                "UPD_FN = '2000-01-01'";
    if (sqlite3_exec(database.get(), Old, nullptr, nullptr, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(database.get()));
}

/// Of one kind, always from the same stores.
class Receive {
public:
    Receive(const Site& site, const std::string& address, const Chain& large, const Chain& small,
            const std::string& name, bool received)
        : name_(name), members_(large.members), large_(site, address, large.database),
          small_(site, address, small.database), largeStore_(folder_ / "large.MDB"),
          smallStore_(folder_ / "small.MDB") {
        if (received) {
            large_.receive();
            ageStamps(large_.store());
            small_.receive();
            ageStamps(small_.store());
        }
        fs::copy_file(large_.store(), largeStore_);
        fs::copy_file(small_.store(), smallStore_);
        ofLarge_ = inWindow(large_, largeStore_); // warms up
        ofSmall_ = inWindow(small_, smallStore_);
    }

    /// Every measurement once, in the other order every other time.
    void round(bool backwards) {
        WindowFigures paired;
        ProcessFigures process;
        std::vector<std::function<void()>> steps{
            [&] { paired = inWindow(large_, largeStore_, true); }, [&] { process = inProcess(); },
            [&] { ofLarge_ = inWindow(large_, largeStore_); },
            [&] { ofSmall_ = inWindow(small_, smallStore_); }};
        if (backwards)
            std::reverse(steps.begin(), steps.end());
        for (const auto& step : steps)
            step();

        const double floor = paired.F1 + paired.F2;
        F1_.push_back(paired.F1);
        F2_.push_back(paired.F2);
        batch_.push_back(paired.batch / paired.F1);
        queries_.push_back(paired.queries / paired.F2);
        collecting_.push_back(paired.collecting / paired.F1);
        whole_.push_back(paired.whole / floor);
        program_.push_back(process.seconds / floor);
        seconds_.push_back(process.seconds);
        growth_.push_back(perStatement(ofLarge_) / perStatement(ofSmall_));
        gap_.push_back(1000 * ofLarge_.longestGap);
        memory_.push_back(static_cast<double>(process.peakMemory) / 1024 / members_);
    }

    void report(Report& report) const {
        const auto worst = [this](const std::string& what, const std::string& unit,
                                  const std::vector<double>& samples, double target) {
            return Figure{name_ + ": " + what,   unit, samples, target, Figure::Goal::AtMost,
                          Figure::Quote::Maximum};
        };
        const std::string sizes = std::to_string(ofLarge_.statements) + " statements against " +
                                  std::to_string(ofSmall_.statements);
        report.add({name_ + ": PUT_DATA with its window / F1", "", batch_, 1.10});
        report.add({name_ + ": server queries to recordsets / F2", "", queries_, 1.5});
        report.add({name_ + ": look-ups and statements / F1", "", collecting_, 0.20});
        report.add({name_ + ": whole run / (F1 + F2)", "", whole_, 1.35});
        report.add({name_ + ": whole program, start to end / (F1 + F2)", "", program_});
        report.add({name_ + ": time per statement, " + sizes, "", growth_, 1.10});
        report.add(worst("peak memory of quillet / member row", "KiB", memory_, 3));
        report.add(worst("longest gap between repaints in PUT_DATA", "ms", gap_, 100));
        report.add({name_ + ": F1", "s", F1_});
        report.add({name_ + ": F2", "s", F2_});
        report.add({name_ + ": whole program", "s", seconds_});
    }

private:
    static double perStatement(const WindowFigures& figures) {
        return (figures.queries + figures.collecting + figures.batch) /
               static_cast<double>(figures.statements);
    }

    static WindowFigures inWindow(Counter& counter, const fs::path& store,
                                  bool againstFloors = false) {
        counter.useStore(store);
        return counter.receiveInWindow(againstFloors);
    }

    ProcessFigures inProcess() {
        large_.useStore(largeStore_);
        return large_.receive();
    }

    std::string name_;
    int members_;
    tests::TempFolder folder_;
    Counter large_;
    Counter small_;
    fs::path largeStore_;
    fs::path smallStore_;
    WindowFigures ofLarge_; ///< the latest run without floors
    WindowFigures ofSmall_;

    std::vector<double> F1_, F2_, batch_, queries_, collecting_, whole_, program_, seconds_,
        growth_, gap_, memory_;
};

} // namespace

void measureReceives(Report& report, const Site& site, const Chain& large, const Chain& small,
                     int rounds) {
    const HeadOfficeProcess headOffice(site.headOffice);
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
