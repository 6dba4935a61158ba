#include "sync/UpdateStamps.h"

#include "data/AsciiText.h"
#include "sync/QuoteGuard.h"
#include "sync/Receiver.h"

#include <algorithm>

namespace quillet::sync {

namespace {

constexpr std::array<std::string_view, Groups> Openings{
    " UPD_PR = '", " UPD_CT = '", " UPD_USR = '", " UPD_BAS = '", " UPD_FN = '"};

using Items = std::array<std::string, Groups>;

std::string joined(const Items& items, std::string_view separator) {
    std::string result = items[0];
    for (std::size_t i = 1; i < items.size(); ++i) {
        result += separator;
        result += items[i];
    }
    return result;
}

std::string stampText(Run& run) {
    const data::Recordset ServerRs = run.queryServer(" SELECT NOW() ");
    return ServerRs.Eof() ? logs::dateTimeText(run.now()) : ServerRs.Item(0).toText();
}

std::string updateStatement(const Ticks& ticked, const Stamps& stamps) {
    Items items;
    for (std::size_t i = 0; i < items.size(); ++i)
        if (ticked[i])
            items[i] = std::string(Openings[i]) + stamps[i] + "' ";
    return " UPDATE UPD SET " + joined(items, ",");
}

std::string insertStatement(const Ticks& ticked, const Stamps& stamps) {
    Items items;
    for (std::size_t i = 0; i < items.size(); ++i)
        if (ticked[i])
            items[i] = stamps[i];
    return " INSERT INTO UPD (UPD_PR,UPD_CT,UPD_USR,UPD_BAS,UPD_FN) VALUES ('" +
           joined(items, "','") + "') ";
}

std::string stampStatement(const Run& run, const Ticks& ticked) {
    Stamps stamps;
    stamps.fill(run.newStamp);
    if (run.oldMenuRemains)
        stamps[static_cast<std::size_t>(Group::Menu)].clear();
    return run.stampRowExists ? updateStatement(ticked, stamps) : insertStatement(ticked, stamps);
}

} // namespace

std::optional<Stamps> storedStamps(db::VelkDBPro& store) {
    db::TextTable FD;
    std::int32_t FDROW = 0;
    std::int32_t FDCOL = 0;
    store.GET_DATA(" SELECT UPD_PR,UPD_CT,UPD_USR,UPD_BAS,UPD_FN FROM UPD ", FD, FDROW, FDCOL);
    if (store.Status() != 1)
        throw data::Error(data::number::Unspecified,
                          "The update stamps cannot be read. " + store.errorText());
    if (FDROW < 1)
        return std::nullopt;
    Stamps stamps;
    std::copy_n(FD[1].begin(), Groups, stamps.begin());
    return stamps;
}

bool ReadStamps(Run& run) {
    return guardReceiver(run, StoreTitle, [&](std::size_t& /*handledRows*/) {
        const auto stamps = storedStamps(run.store());
        run.stampRowExists = stamps.has_value();
        run.stamps = stamps.value_or(Stamps());
        run.menuNeverReceived = data::isBlank(run.stamp(Group::Menu));
        run.stampsRead = true;
    });
}

bool QueueStamps(Run& run, const Ticks& ticked, std::string_view title) {
    return guardReceiver(run, title, [&](std::size_t& /*handledRows*/) {
        run.newStamp = stampText(run);
        std::string statement = stampStatement(run, ticked);
        QuoteGuard guard;
        for (auto times = std::count(ticked.begin(), ticked.end(), true); times > 0; --times)
            guard.add(run.newStamp);
        guard.require(statement);
        run.append(std::move(statement));
    });
}

void LeaveMenuStampBlank(Run& run, const Ticks& ticked) {
    run.statements.at(1) = stampStatement(run, ticked);
}

} // namespace quillet::sync
