#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::torture {

/// What a power cut leaves of a folder, from its state before and the list of what a program did to
/// it (CallLog). What was brought to the disk is there. Of the rest, any part is.
///
/// A disk of this kind keeps every sector of 512 bytes whole, old or new, and takes the others in
/// any order. What a file has grown by without its bytes is zeros or garbage.
class PowerCut {
public:
    /// How a file system treats names (files made, renamed, removed):
    enum class Names {
        InOrder, ///< by a journal: they come in their order, and any sync brings all that came
                 ///< before
        OneByOne ///< only the sync of a folder brings them, and they come in any order
    };

    /// What comes of changes that were not brought to the disk.
    enum class Losses {
        None, ///< all of them are there, as after a kill
        Last, ///< the last ones are lost, the one before may be torn at its sectors
        Any   ///< each may be there, lost or torn
    };

    PowerCut(std::filesystem::path before, Names names, std::uint64_t seed);

    /// Does the first `calls` of the list's.
    /// @throws std::runtime_error for a list that this cannot read.
    void run(std::string_view list, std::size_t calls);

    /// Writes what is left into a copy of the folder before.
    void leave(const std::filesystem::path& copy, Losses losses);

    /// How many calls a list has.
    static std::size_t callsIn(std::string_view list);

private:
    struct Change {
        std::size_t offset;
        std::string bytes;
        bool isTruncation; ///< to `offset`
    };

    struct File {
        bool isFolder = false;
        std::string synced; ///< its contents on the disk
        std::vector<Change> pending;
    };
    using FileOf = std::map<std::string, std::shared_ptr<File>>;

    struct Renaming { ///< or a first name, or none any more
        std::string from;
        std::string to;
        std::shared_ptr<File> file;
    };

    struct Reader;

    std::shared_ptr<File> find(const std::string& path);
    void name(Renaming renaming);
    void sync(const std::string& path, File& file);
    static void apply(const Renaming& renaming, FileOf& names);
    static void apply(const Change& change, std::string& contents);
    void applyTorn(const Change& change, std::string& contents);
    std::string contentsAfter(const File& file, Losses losses);
    bool chance(unsigned in);

    std::filesystem::path before_;
    Names names_;
    std::mt19937_64 random_;
    FileOf live_;   ///< as the program sees them; those that it has not touched are not in it
    FileOf onDisk_; ///< of these, the names that a power cut leaves in any case
    std::vector<Renaming> pendingNames_;
    struct Open {
        std::string path;
        std::shared_ptr<File> file;
    };
    std::map<int, Open> open_;
};

} // namespace quillet::torture
