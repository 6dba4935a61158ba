#include "sync/StoreSafeguard.h"

#include "files/DurableFile.h"
#include "files/Paths.h"
#include "sync/LeadingNumber.h"
#include "sync/Receiver.h"
#include "sync/UpdateStamps.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <system_error>
#include <utility>
#include <vector>

namespace quillet::sync {

namespace {

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

std::int64_t rowsIn(db::VelkDBPro& store, const std::string& table) {
    db::TextTable FD;
    std::int32_t FDROW = 0;
    std::int32_t FDCOL = 0;
    store.GET_DATA("SELECT COUNT(*) FROM " + table, FD, FDROW, FDCOL);
    if (store.Status() != 1 || FDROW < 1)
        throw data::Error(data::number::Unspecified,
                          "The rows of " + table + " cannot be counted. " + store.errorText());
    return static_cast<std::int64_t>(leadingNumber(FD[1][0]));
}

} // namespace

StoreSafeguard::StoreSafeguard(Run& run)
    : run_(run), file_(run.store().fileAtRisk()),
      copy_(
          StampNote::beside(file_, std::filesystem::path(".before-receive") += file_.extension())),
      unfinishedCopy_(StampNote::beside(file_, ".before-receive.tmp")),
      note_(StampNote::beside(file_, ".before-receive.txt"),
            {StampColumns.begin(), StampColumns.end()}) {}

void StoreSafeguard::recoverStamps() {
    if (!note_.exists())
        return;
    if (const auto noted = note_.read()) {
        std::transform(run_.stamps.begin(), run_.stamps.end(), noted->begin(), run_.stamps.begin(),
                       StampNote::earlier);
        return;
    }
    run_.stamps.fill(std::string());
    run_.WriteDownloadLog(StoreTitle, "", data::number::Unspecified,
                          files::textOf(note_.file().filename()) +
                              " cannot be read whole. Everything is asked for again; nothing is "
                              "deleted for that.");
}

void StoreSafeguard::begin() {
    if (file_.empty() || note_.exists())
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
        if (run_.isEnding())
            return; // the run, too
        run_.WriteDownloadLog(StoreTitle, "", data::number::Unspecified, failure.what());
    }
}

/// Under another name first: neither half a copy nor an older one must look like this run's.
void StoreSafeguard::copyStore() const {
    std::filesystem::remove(copy_);
    std::ifstream from(file_, std::ios::binary);
    if (!from)
        throw data::Error(data::number::Unspecified,
                          files::textOf(file_.filename()) + " cannot be read for a copy");
    {
        std::ofstream to(unfinishedCopy_, std::ios::binary | std::ios::trunc);
        from.exceptions(std::ios::badbit);
        to.exceptions(std::ios::badbit | std::ios::failbit);
        std::vector<char> piece(std::size_t{1} << 20U);
        while (from.read(piece.data(), static_cast<std::streamsize>(piece.size())),
               from.gcount() > 0) {
            to.write(piece.data(), from.gcount());
            run_.yieldOrEnd();
        }
        to.close();
    }
    files::bringToDisk(unfinishedCopy_);
    std::filesystem::rename(unfinishedCopy_, copy_);
}

void StoreSafeguard::noteStamps() const {
    note_.write({run_.stamps.begin(), run_.stamps.end()});
}

void StoreSafeguard::confirm() const {
    if (file_.empty())
        return;
    files::bringToDisk(file_);
    release();
}

void StoreSafeguard::release() const {
    note_.remove();
    std::error_code unimportant;
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
        rows += rowsIn(run_.store(), table);
}

bool StoreSafeguard::verify(bool committed) {
    if (file_.empty())
        return true;
    std::string finding;
    try {
        const auto stamps = storedStamps(run_.store());
        run_.stampRowExists = stamps.has_value();
        if (committed)
            finding = whatIsMissing(stamps);
        else if (stamps != stampsBefore_)
            finding = "part of a transaction that was rolled back is in the store";
    } catch (const data::Error& failure) {
        finding = failure.Description();
    }
    if (!finding.empty()) {
        report(finding);
        return false;
    }
    if (!committed)
        abandon();
    return true;
}

std::string StoreSafeguard::whatIsMissing(const std::optional<Stamps>& stamps) const {
    // The stamps come first in the batch, the rows after them. Whether an engine gives a stamp back
    // in the form in which it was written is its own affair.
    const bool stampsMove = run_.statements.at(1).find(run_.newStamp) != std::string::npos;
    if (!stamps || (stamps == stampsBefore_ && stampsMove &&
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
    run_.fail(
        StoreTitle, before ? before->subject : "",
        data::Error(data::number::Unspecified,
                    "The store did not keep the transaction whole: " + finding +
                        ". The next receive repeats everything." +
                        (isThere(copy_) ? " Before this one: " + files::textOf(copy_.filename())
                                        : std::string()) +
                        (before ? "\r\n" + before->error : std::string())));
    if (before)
        run_.failure->subject = before->subject;
}

void StoreSafeguard::abandon() {
    const bool nothingWritten = run_.DelList.size() <= 1;
    if (ownsNote_ && nothingWritten)
        release();
    ownsNote_ = false;
}

} // namespace quillet::sync
