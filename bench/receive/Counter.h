#pragma once

#include "app/IniSettings.h"
#include "bench/receive/Site.h"
#include "db/VelkDBPro.h"
#include "tests/support/TempFolder.h"

#include <QProcess>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace quillet::bench {

/// What a receive took, as its window lives through it. Seconds.
struct WindowFigures {
    double queries = 0;    ///< server queries, each until its rows are in the recordset
    double collecting = 0; ///< look-ups and statements: all the rest before the batch
    double batch = 0;      ///< PUT_DATA
    double longestGap = 0; ///< between two repaints of the window while the batch runs

    std::vector<std::string> ServerQueries;
    db::StatementArray statements;
};

/// What the program took from its start to its end.
struct ProcessFigures {
    double seconds = 0;
    std::uint64_t peakMemory = 0; ///< bytes
};

/// A counter: a program folder with the program, a store and settings.
class Counter {
public:
    /// @param address of the head office's server, @param database of the chain.
    Counter(const Site& site, const std::string& address, const std::string& database);

    std::filesystem::path store() const { return folder_ / "food.MDB"; }

    /// Replaces the store by a copy.
    void useStore(const std::filesystem::path& original);

    /// Receives in the real window inside this process.
    /// @throws std::runtime_error when the receive fails.
    WindowFigures receiveInWindow();

    /// Receives with the real program.
    /// @throws std::runtime_error as above.
    ProcessFigures receive();

    /// The real program, started and left to itself.
    void start(QProcess& process) const;

    /// @throws std::runtime_error unless the program has ended well and logged no failure.
    void requireSuccess(const QProcess& process) const;

private:
    tests::TempFolder folder_;
    app::IniSettings settings_;
};

} // namespace quillet::bench
