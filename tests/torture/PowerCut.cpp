#include "tests/torture/PowerCut.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace quillet::torture {

namespace {

constexpr std::size_t Sector = 512;

std::string folderOf(const std::string& path) {
    return std::filesystem::path(path).parent_path().string();
}

std::string contentsOf(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace

/// Walks through a list, call by call.
struct PowerCut::Reader {
    std::string_view rest;
    std::string_view verb;
    std::string_view line;  ///< behind the verb
    std::string_view bytes; ///< of a write

    bool next() {
        if (rest.empty())
            return false;
        line = taken(rest.find('\n'));
        verb = line.substr(0, line.find(' '));
        line.remove_prefix(std::min(verb.size() + 1, line.size()));
        if (verb == "write")
            bytes = taken(lengthOf(line));
        return true;
    }

    std::size_t number() {
        std::size_t value = 0;
        const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), value);
        if (error != std::errc())
            throw std::runtime_error("no number: " + std::string(line));
        line.remove_prefix(static_cast<std::size_t>(end - line.data()));
        line.remove_prefix(std::min<std::size_t>(1, line.size()));
        return value;
    }

    std::string path() const { return std::string(line); }

private:
    static std::size_t lengthOf(std::string_view line) {
        return std::stoul(std::string(line.substr(line.rfind(' ') + 1)));
    }

    /// Up to a line end, which goes as well.
    std::string_view taken(std::size_t length) {
        if (length >= rest.size())
            throw std::runtime_error("the list ends in the middle of a call");
        const std::string_view result = rest.substr(0, length);
        rest.remove_prefix(length + 1);
        return result;
    }
};

PowerCut::PowerCut(std::filesystem::path before, Names names, std::uint64_t seed)
    : before_(std::move(before)), names_(names), random_(seed) {}

std::size_t PowerCut::callsIn(std::string_view list) {
    std::size_t calls = 0;
    for (Reader reader{list, {}, {}, {}}; reader.next();)
        ++calls;
    return calls;
}

std::shared_ptr<PowerCut::File> PowerCut::find(const std::string& path) {
    const auto known = live_.find(path);
    if (known != live_.end() && known->second)
        return known->second;
    auto file = std::make_shared<File>();
    if (known == live_.end()) {
        file->isFolder = std::filesystem::is_directory(before_ / path);
        if (!file->isFolder)
            file->synced = contentsOf(before_ / path);
        live_[path] = onDisk_[path] = file;
    }
    return file;
}

void PowerCut::name(Renaming renaming) {
    apply(renaming, live_);
    pendingNames_.push_back(std::move(renaming));
}

void PowerCut::apply(const Renaming& renaming, FileOf& names) {
    if (!renaming.from.empty()) {
        const auto known = names.find(renaming.from);
        if (known == names.end() || !known->second)
            return; // the call that made it was lost
        known->second = nullptr;
    }
    if (!renaming.to.empty())
        names[renaming.to] = renaming.file;
}

void PowerCut::apply(const Change& change, std::string& contents) {
    if (change.isTruncation) {
        contents.resize(change.offset);
        return;
    }
    contents.resize(std::max(contents.size(), change.offset + change.bytes.size()));
    contents.replace(change.offset, change.bytes.size(), change.bytes);
}

void PowerCut::applyTorn(const Change& change, std::string& contents) {
    const std::size_t end = change.offset + change.bytes.size();
    if (change.isTruncation)
        return;
    const bool isGarbage = chance(2);
    for (std::size_t i = contents.size(); i < end; ++i)
        contents += isGarbage ? static_cast<char>(random_()) : '\0';
    for (std::size_t start = change.offset; start < end;) {
        const std::size_t next = std::min(end, (start / Sector + 1) * Sector);
        if (chance(2))
            contents.replace(start, next - start, change.bytes, start - change.offset,
                             next - start);
        start = next;
    }
}

bool PowerCut::chance(unsigned in) {
    return random_() % in == 0;
}

void PowerCut::sync(const std::string& path, File& file) {
    for (const Change& change : file.pending)
        apply(change, file.synced);
    file.pending.clear();
    std::vector<Renaming> left;
    for (Renaming& renaming : pendingNames_) {
        const bool isInside =
            file.isFolder && folderOf(renaming.to.empty() ? renaming.from : renaming.to) ==
                                 (path == "." ? std::string() : path);
        if (names_ == Names::InOrder || isInside)
            apply(renaming, onDisk_);
        else
            left.push_back(std::move(renaming));
    }
    pendingNames_ = std::move(left);
}

void PowerCut::run(std::string_view list, std::size_t calls) {
    Reader call{list, {}, {}, {}};
    for (std::size_t done = 0; done < calls && call.next(); ++done) {
        if (call.verb == "rename") {
            const std::size_t tab = call.line.find('\t');
            const std::string from(call.line.substr(0, tab));
            name({from, std::string(call.line.substr(tab + 1)), find(from)});
            continue;
        }
        if (call.verb == "unlink") {
            find(call.path());
            name({call.path(), {}, nullptr});
            continue;
        }
        if (call.verb == "mkdir") {
            auto folder = std::make_shared<File>();
            folder->isFolder = true;
            name({{}, call.path(), std::move(folder)});
            continue;
        }
        const int descriptor = static_cast<int>(call.number());
        if (call.verb == "create" || call.verb == "unnamed") {
            open_[descriptor] = {call.path(), std::make_shared<File>()};
            if (call.verb == "create")
                name({{}, call.path(), open_[descriptor].file});
        } else if (call.verb == "open" || call.verb == "empty") {
            open_[descriptor] = {call.path(), find(call.path())};
            if (call.verb == "empty")
                open_[descriptor].file->pending.push_back({0, {}, true});
        } else if (call.verb == "link") {
            name({{}, call.path(), open_.at(descriptor).file});
        } else if (call.verb == "write") {
            const std::size_t offset = call.number();
            open_.at(descriptor).file->pending.push_back({offset, std::string(call.bytes), false});
        } else if (call.verb == "truncate") {
            open_.at(descriptor).file->pending.push_back({call.number(), {}, true});
        } else if (call.verb == "sync") {
            const Open synced = open_.at(descriptor);
            sync(synced.path, *synced.file);
        } else {
            throw std::runtime_error("no call: " + std::string(call.verb));
        }
    }
}

std::string PowerCut::contentsAfter(const File& file, Losses losses) {
    std::string contents = file.synced;
    std::size_t kept = file.pending.size();
    if (losses == Losses::Last)
        kept = random_() % (file.pending.size() + 1);
    for (std::size_t i = 0; i < file.pending.size(); ++i) {
        const unsigned fate = losses == Losses::Any ? static_cast<unsigned>(random_() % 3)
                              : i < kept            ? 0
                              : i == kept           ? 1 + static_cast<unsigned>(random_() % 2)
                                                    : 2;
        if (fate == 0)
            apply(file.pending[i], contents);
        else if (fate == 1)
            applyTorn(file.pending[i], contents);
    }
    return contents;
}

void PowerCut::leave(const std::filesystem::path& copy, Losses losses) {
    const std::size_t kept = losses == Losses::None || pendingNames_.empty()
                                 ? pendingNames_.size()
                                 : random_() % (pendingNames_.size() + 1);
    for (std::size_t i = 0; i < pendingNames_.size(); ++i)
        if (names_ == Names::InOrder || losses != Losses::Any ? i < kept : chance(2))
            apply(pendingNames_[i], onDisk_);

    // Parents come before what is in them.
    for (const auto& [path, file] : onDisk_) {
        const std::filesystem::path target = copy / path;
        if (!file) {
            std::filesystem::remove(target);
        } else if (file->isFolder) {
            std::filesystem::create_directory(target);
        } else if (std::filesystem::exists(target.parent_path())) {
            std::ofstream stream(target, std::ios::binary | std::ios::trunc);
            const std::string contents = contentsAfter(*file, losses);
            stream.write(contents.data(), static_cast<std::streamsize>(contents.size()));
            if (!stream.flush())
                throw std::runtime_error(target.string() + " cannot be written");
        }
    }
}

} // namespace quillet::torture
