#include "sync/StoreSafeguard.h"

#include "db/AsciiText.h"
#include "db/Paths.h"
#include "sync/LeadingNumber.h"
#include "sync/UpdateStamps.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <system_error>
#include <utility>
#include <vector>

namespace quillet::sync {

namespace {

constexpr const char* Title = "저장소 확인";
constexpr std::string_view Suffix = ".before-receive";

std::filesystem::path beside(const std::filesystem::path& file,
                             const std::filesystem::path& extension) {
    if (file.empty())
        return {};
    std::filesystem::path result = file.parent_path() / file.stem();
    result += Suffix;
    result += extension;
    return result;
}

bool isThere(const std::filesystem::path& file) {
    std::error_code unknown;
    return !file.empty() && std::filesystem::exists(file, unknown);
}

/// The table of " INSERT INTO TABLE (...": every such statement brings one row.
std::string insertedInto(const std::string& statement) {
    constexpr std::string_view Opening = "INSERT INTO ";
    std::string_view rest(statement);
    rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    if (!rest.starts_with(Opening))
        return {};
    rest.remove_prefix(Opening.size());
    return std::string(rest.substr(0, rest.find_first_of(" (")));
}

/// -1 when they cannot be counted.
std::int64_t rowsIn(db::VelkDBPro& store, const std::string& table) {
    db::TextTable FD;
    std::int32_t FDROW = 0;
    std::int32_t FDCOL = 0;
    store.GET_DATA("SELECT COUNT(*) FROM " + table, FD, FDROW, FDCOL);
    return FDROW < 1 ? -1 : static_cast<std::int64_t>(leadingNumber(FD[1][0]));
}

} // namespace

StoreSafeguard::StoreSafeguard(Run& run)
    : run_(run), file_(run.store().fileAtRisk()), copy_(beside(file_, file_.extension())),
      unfinishedCopy_(beside(file_, ".tmp")), note_(beside(file_, ".txt")) {}

void StoreSafeguard::recoverStamps() {
    std::ifstream note(note_, std::ios::binary);
    if (file_.empty() || !note)
        return;
    for (std::string& stamp : run_.stamps) {
        std::string line;
        std::getline(note, line);
        // A note that a power cut has emptied asks for everything.
        constexpr std::string_view AfterStamp("\r;\0", 3);
        stamp = db::trimmed(std::string_view(line).substr(0, line.find_first_of(AfterStamp)));
    }
}

void StoreSafeguard::begin() {
    if (file_.empty() || isThere(note_))
        return; // what an earlier run left is the last state known to be good
    ownsNote_ = true;
    // Each is worth having without the other.
    attempt(&StoreSafeguard::copyStore);
    std::error_code unimportant;
    std::filesystem::remove(unfinishedCopy_, unimportant); // a full disk has no room for it
    attempt(&StoreSafeguard::noteStamps);
}

void StoreSafeguard::attempt(void (StoreSafeguard::*precaution)() const) const {
    try {
        (this->*precaution)();
    } catch (const std::exception& failure) {
        run_.WriteDownloadLog(Title, "", db::number::Unspecified, failure.what());
    }
}

/// Under another name first: neither half a copy nor an older one must look like this run's.
void StoreSafeguard::copyStore() const {
    std::filesystem::remove(copy_);
    std::ifstream from(file_, std::ios::binary);
    if (!from)
        throw db::Error(db::number::Unspecified,
                        db::textOf(file_.filename()) + " cannot be read for a copy");
    {
        std::ofstream to(unfinishedCopy_, std::ios::binary | std::ios::trunc);
        from.exceptions(std::ios::badbit);
        to.exceptions(std::ios::badbit | std::ios::failbit);
        std::vector<char> piece(std::size_t{1} << 20U);
        while (from.read(piece.data(), static_cast<std::streamsize>(piece.size())),
               from.gcount() > 0) {
            to.write(piece.data(), from.gcount());
            run_.yield();
        }
        to.close();
    }
    std::filesystem::rename(unfinishedCopy_, copy_);
}

void StoreSafeguard::noteStamps() const {
    constexpr std::array<const char*, Groups> Columns{"UPD_PR", "UPD_CT", "UPD_USR", "UPD_BAS",
                                                      "UPD_FN"};
    std::ofstream note(note_, std::ios::binary | std::ios::trunc);
    note.exceptions(std::ios::badbit | std::ios::failbit);
    for (std::size_t i = 0; i < Groups; ++i)
        note << run_.stamps[i] << " ; " << Columns[i] << "\r\n";
    note.close();
}

void StoreSafeguard::forget() const {
    std::error_code unimportant;
    std::filesystem::remove(note_, unimportant);
    std::filesystem::remove(copy_, unimportant);
}

void StoreSafeguard::expectRows() {
    if (file_.empty())
        return;
    stampsBefore_ = storedStamps(run_.store());
    expected_.clear();
    for (const std::string& statement : run_.statements)
        if (const std::string table = insertedInto(statement); !table.empty())
            ++expected_[table];
    for (auto& [table, rows] : expected_)
        rows += std::max<std::int64_t>(rowsIn(run_.store(), table), 0);
}

bool StoreSafeguard::verify(bool committed) {
    if (file_.empty())
        return true;
    const auto stamps = storedStamps(run_.store());
    if (run_.store().Status() == 1)
        run_.stampRowExists = stamps.has_value();
    const std::string finding = run_.store().Status() != 1 ? run_.store().errorText()
                                : committed                ? whatIsMissing(stamps)
                                : stamps != stampsBefore_
                                    ? "part of a transaction that was rolled back is in the store"
                                    : "";
    if (finding.empty()) {
        if (committed)
            forget();
        else
            abandon();
        return true;
    }
    report(finding);
    return false;
}

std::string StoreSafeguard::whatIsMissing(const std::optional<Stamps>& stamps) const {
    // The stamps come first in the batch, the rows after them. Whether an engine gives a stamp back
    // in the form in which it was written is its own affair.
    if (!stamps || (stamps == stampsBefore_ &&
                    std::find(stamps->begin(), stamps->end(), run_.newStamp) == stamps->end()))
        return "UPD does not have the stamps that were committed";
    for (const auto& [table, rows] : expected_)
        if (const std::int64_t found = rowsIn(run_.store(), table); found < rows)
            return table + " has " + std::to_string(found) + " rows after the commit, not " +
                   std::to_string(rows);
    return {};
}

void StoreSafeguard::report(const std::string& finding) {
    const std::optional<Failure> before = std::exchange(run_.failure, std::nullopt);
    run_.fail(Title, before ? before->statement : "",
              db::Error(db::number::Unspecified,
                        "The store did not keep the transaction whole: " + finding +
                            ". The next receive repeats everything." +
                            (isThere(copy_) ? " Before this one: " + db::textOf(copy_.filename())
                                            : std::string()) +
                            (before ? "\r\n" + before->error : std::string())));
}

void StoreSafeguard::abandon() {
    const bool nothingWritten = run_.DelList.size() <= 1;
    if (ownsNote_ && nothingWritten)
        forget();
    ownsNote_ = false;
}

} // namespace quillet::sync
