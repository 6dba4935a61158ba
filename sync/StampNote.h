#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::sync {

/// Update stamps written down in a file beside the store, for the run that comes after a failure:
/// `stamp ; COLUMN`, a line each, so that a technician can read them.
class StampNote {
public:
    /// @param columns of `UPD` whose stamps it holds, in this order.
    StampNote(std::filesystem::path file, std::vector<std::string_view> columns);

    /// "food.MDB" and ".reason.txt" make "food.reason.txt" in the same folder; nothing beside none.
    static std::filesystem::path beside(const std::filesystem::path& store,
                                        const std::filesystem::path& ending);

    const std::filesystem::path& file() const noexcept { return file_; }

    /// Where that cannot be found out, it counts as there.
    bool exists() const noexcept;

    /// @return the stamps; nothing unless every line of it is there and whole.
    std::optional<std::vector<std::string>> read() const;

    /// Writes it so that a power cut leaves all of it, or what was there before.
    /// @throws data::Error 75.
    void write(const std::vector<std::string>& stamps) const;

    /// From which of two stamps on rows are to be asked for, so that none is missed: the earlier
    /// one, or none at all. A store that was put back from a copy, or is new, can be older than a
    /// note; where they cannot be compared, the noted stamp counts.
    static std::string earlier(const std::string& stored, const std::string& noted);

    /// A note that cannot be removed only makes the next run ask for more than it needs.
    void remove() const noexcept;

private:
    std::filesystem::path file_;
    std::vector<std::string_view> columns_;
};

} // namespace quillet::sync
