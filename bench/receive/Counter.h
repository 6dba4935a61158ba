#pragma once

#include "app/IniSettings.h"
#include "bench/receive/Site.h"
#include "bench/receive/WindowWatch.h"
#include "tests/support/TempFolder.h"

#include <QProcess>

#include <cstdint>
#include <filesystem>
#include <string>

namespace quillet::bench {

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
    /// @param againstFloors measures them, too.
    /// @throws std::runtime_error when the receive fails.
    WindowFigures receiveInWindow(bool againstFloors = false);

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
    std::string connectionString_; ///< of the server's database
};

} // namespace quillet::bench
