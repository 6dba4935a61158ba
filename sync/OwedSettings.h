#pragma once

#include "sync/StampNote.h"

#include <filesystem>
#include <string>

namespace quillet::sync {

/// The store's own settings are received after the commit that moves their stamp. So that a run
/// that ends between the two loses none, the stamp from which they are owed is noted on the disk
/// before the commit, in `food.settings-owed.txt` beside the store, and stays there until they are
/// written: meanwhile every run asks for them from the noted stamp on.
class OwedSettings {
public:
    /// @param store the store's file.
    explicit OwedSettings(const std::filesystem::path& store);

    /// From which stamp on they are to be asked for: the earlier of the store's and the noted one.
    /// A note that cannot be read whole asks for all of them.
    /// @param stamp the store's.
    std::string since(const std::string& stamp) const;

    /// Before the commit.
    /// @param stamp what since() said.
    /// @throws data::Error 75 when it cannot be brought to the disk: the commit must not come then.
    void note(const std::string& stamp);

    /// After a batch that is known to have been rolled back: what note() has noted goes. What is
    /// owed from an earlier run stays.
    void withdraw() const noexcept;

    /// They are written.
    void settle() const noexcept { note_.remove(); }

private:
    StampNote note_;
    bool notedHere_ = false;
};

} // namespace quillet::sync
