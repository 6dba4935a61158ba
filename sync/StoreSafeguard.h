#pragma once

#include "sync/Run.h"
#include "sync/StampNote.h"
#include "sync/UpdateStamps.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace quillet::sync {

/// Protects a store whose engine may give up in the middle of a large transaction. Access's engine
/// takes a lock per page and file (`MaxLocksPerFile`, 9,500 by default); past that it may write a
/// transaction in parts, and a roll-back then leaves the first parts in the store (Microsoft,
/// knowledge base article 815281). An engine that vouches for its transactions is left alone.
///
/// Before a run writes anything, the store file is copied and its stamps are noted, both beside it:
/// `food.before-receive.MDB` and `food.before-receive.txt`. After the batch the store is read
/// again. Both files go when it is as it should be and the run has come to its end. Otherwise they
/// stay, the run counts as failed, and runs, of this start or a later one, ask the head office for
/// everything since the noted stamps until one is known to be good: a receive that is repeated
/// mends what is half there. The same happens after a run that never came to its end.
class StoreSafeguard {
public:
    explicit StoreSafeguard(Run& run);

    /// When the stamps have been read: asks from the noted ones instead, if the last run is not
    /// known to be good and they are earlier. A note that cannot be read whole asks for everything.
    /// Whether the menu may be emptied is not touched: only the store itself can say that it never
    /// received one.
    void recoverStamps();

    /// Before the run writes anything. A copy that cannot be made does not stop the run; it is
    /// told to the download log.
    void begin();

    /// Before the batch: how many rows each table should have after it.
    /// @throws data::Error when the store cannot be read.
    void expectRows();

    /// After the batch. What was noted stays after a commit, until confirm().
    /// @param committed whether the engine says that it is written.
    /// @return whether the store holds all of it, or nothing. If not, the run's failure says what
    ///         was found.
    bool verify(bool committed);

    /// After a run that ended before its batch.
    void abandon();

    /// After a run that is known to be good to its end: copy and note go, once what its engine has
    /// written is on the disk.
    /// @throws data::Error 75 when it cannot be brought there; then both stay.
    void confirm() const;

private:
    std::string whatIsMissing(const std::optional<Stamps>& stamps) const;
    void report(const std::string& finding);
    void attempt(void (StoreSafeguard::*precaution)() const) const;
    void release() const;
    void noteStamps() const;
    void copyStore() const;

    Run& run_;
    const std::filesystem::path file_;
    const std::filesystem::path copy_;
    const std::filesystem::path unfinishedCopy_;
    const StampNote note_;
    std::optional<Stamps> stampsBefore_;
    bool ownsNote_ = false; ///< not one that an earlier run left
    std::map<std::string, std::int64_t> expected_;
};

} // namespace quillet::sync
