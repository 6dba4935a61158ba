#pragma once

#include "data/Error.h"
#include "data/Recordset.h"
#include "db/VelkDBPro.h"
#include "logs/Clock.h"
#include "logs/DownloadLog.h"
#include "rds/DataSpace.h"
#include "sync/RunObserver.h"
#include "sync/Settings.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace quillet::sync {

/// The data groups that a person can tick, in the order of their checkboxes and stamps.
enum class Group : std::size_t { Menu, Members, Users, Settings, AccountTitles };
inline constexpr std::size_t Groups = 5;

/// Which groups are ticked.
using Ticks = std::array<bool, Groups>;

/// Why a run failed, for the person in front of it. The logs hold more: whole statements, with what
/// was received about people.
struct Failure {
    std::string title;   ///< the receiver's, or the group's whose statement was refused
    std::string subject; ///< which row the statement in question is about, if there is one
    std::string error;   ///< "number : description"; of a statement without what it quotes from it
};

/// Where the head office is, as start-up read it from the settings.
struct HeadOffice {
    std::string serverAddress;    ///< host, optionally with ":" and a port
    std::string remoteObjectName; ///< ProgID of the remote query object
    std::string connectionString; ///< of the server database; handed over with every query
    std::string storeCode;        ///< "1000" when the setting is blank
};

/// What the receivers of a run share: where rows come from, what has been collected, what the
/// stamps were. The window owns it; the driver empties and consumes it.
class Run {
public:
    /// @param observer outlives the run; null: nobody watches.
    Run(db::VelkDBPro& store, Settings& settings, logs::DownloadLog downloadLog,
        logs::Clock clock = logs::localNow, RunObserver* observer = nullptr);

    HeadOffice headOffice;

    /// The statement array: element 0 stays an empty placeholder.
    db::StatementArray statements{std::string()};
    /// Statements that must run at once, before collection.
    db::StatementArray DelList{std::string()};
    /// Server rows received; some receivers set it, others add to it.
    std::int32_t RowTotal = 0;
    db::GroupCounts groupCounts{};

    /// Lets the window handle what is waiting for it. The run calls it while it waits for the
    /// server and between rows.
    std::function<void()> yield = [] {};

    /// Whether a person wants the program to end.
    std::function<bool()> endWanted = [] { return false; };

    /// Set while something is written that the rest must follow: a menu that has been emptied, the
    /// batch. The run then goes to its end, whoever wants it.
    bool mustFinish = false;

    /// Whether the run ends where it is: somebody wants the end, and nothing has been written.
    bool isEnding() const { return !mustFinish && endWanted(); }

    /// Lets the window handle what is waiting for it.
    /// @throws data::Error number::Canceled when the run ends here.
    void yieldOrEnd() const;

    /// Why the latest run failed, if it did.
    std::optional<Failure> failure;

    /// Server time of the last receive of each group; empty: never received. Meaningless until
    /// read.
    std::array<std::string, Groups> stamps;
    bool stampsRead = false;
    bool stampRowExists = false;

    /// The store itself says that it never received a menu: only then may what it has be deleted,
    /// whatever stamps are asked from.
    bool menuNeverReceived = false;

    /// The old menu should have been deleted and is still there, as far as anybody knows. The new
    /// one is received all the same, and the menu's stamp stays blank: the next run begins anew.
    bool oldMenuRemains = false;

    /// From when on the store's own settings are asked for.
    std::string storeSettingsSince;

    std::string newStamp; ///< server time of this run

    std::string priceOptionFlag; ///< "Y": prices are the stores' own
    std::string priceOptionMode;
    std::int16_t setMenuSkipFlag = 0; ///< set menus are received when 0

    /// Empties the statement array to its placeholder.
    void clearStatements() { statements.assign(1, std::string()); }

    void append(std::string statement) { statements.push_back(std::move(statement)); }

    /// The highest index of the statement array: how many statements are queued.
    std::int32_t upperBound() const noexcept {
        return static_cast<std::int32_t>(statements.size()) - 1;
    }

    /// The stamp of a group as the store has it.
    const std::string& stamp(Group group) const { return stamps[static_cast<std::size_t>(group)]; }

    /// Runs a query on the server database through the remote query object.
    /// @throws data::Error with the server's number and description, or 429 or 462.
    data::Recordset queryServer(std::string ServerSql);

    /// Runs statements, from element 1 on, on the server database through the server command
    /// object.
    /// @return whether they were executed.
    /// @throws data::Error as queryServer().
    bool executeOnServer(db::StatementArray serverStatements);

    /// The store code as the settings have it. Deliberately "" when they have none, where start-up
    /// puts "1000" into headOffice.
    std::string storeCodeSetting() const { return headOfficeSetting(settings_, "가맹점"); }

    /// Saves a setting. One that cannot be saved is told to the download log and no reason to
    /// stop: what it is for is only done once more.
    void saveSetting(const char* application, const char* section, const char* key,
                     const std::string& value) const noexcept;

    /// Takes a failure down: in the download log, where its folder exists, and in `failure`.
    void fail(const std::string& title, const std::string& statement, const data::Error& error);

    /// Writes to the download log why the store's latest PUT_DATA_DEL has failed.
    void logBatchFailure(const std::string& title) const noexcept;

    /// Takes down in `failure` what the store says of a batch that it has just refused, and of the
    /// statement, if it was one. The daily log has both already.
    void takeRefusalDown(const std::string& title, const std::string& statement);

    /// Writes to the download log, where its folder exists.
    void WriteDownloadLog(const std::string& title, const std::string& statement, long errNumber,
                          const std::string& errDescription) const noexcept;

    db::VelkDBPro& store() noexcept { return store_; }
    Settings& settings() noexcept { return settings_; }
    RunObserver& observer() noexcept { return *observer_; }
    data::DateTime now() const { return clock_(); }

private:
    rds::RemoteObject createObject(const std::string& progId);

    db::VelkDBPro& store_;
    Settings& settings_;
    logs::DownloadLog downloadLog_;
    logs::Clock clock_;
    RunObserver nobody_;
    RunObserver* observer_;
    std::optional<rds::DataSpace> DataSpace; ///< created on first use
    std::string refusal_; ///< the store's latest; its later error texts may begin with it
};

} // namespace quillet::sync
