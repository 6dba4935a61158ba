#include "headoffice/admin/Activity.h"

#include "headoffice/admin/RefusalReason.h"
#include "headoffice/admin/SafeText.h"

#include <algorithm>
#include <tuple>

namespace quillet::headoffice::admin {

namespace {

using std::chrono::minutes;

constexpr std::size_t MostOfName = 64;
constexpr std::size_t MostOfError = 240;

/// "[::1]:50012" is "::1", "127.0.0.1:50012" is "127.0.0.1".
std::string addressOf(std::string_view peer) {
    if (peer.starts_with('['))
        return kept(peer.substr(1, peer.find(']') - 1), MostOfName);
    return kept(peer.substr(0, peer.rfind(':')), MostOfName);
}

std::size_t slotOf(TimePoint minute) {
    const auto number = minute.time_since_epoch() / minutes(1);
    return static_cast<std::size_t>((number % 60 + 60) % 60);
}

} // namespace

std::chrono::milliseconds Activity::Minute::mean() const {
    return calls == 0 ? std::chrono::milliseconds(0) : total / static_cast<std::int64_t>(calls);
}

template <typename Entry>
Entry* Activity::Recent<Entry>::find(const std::string& key) {
    const auto found = byKey.find(key);
    if (found == byKey.end())
        return nullptr;
    list.splice(list.begin(), list, found->second);
    return &list.front().second;
}

template <typename Entry>
Entry& Activity::Recent<Entry>::get(const std::string& key, std::size_t most) {
    if (Entry* const known = find(key))
        return *known;
    if (!list.empty() && list.size() >= most) {
        byKey.erase(list.back().first);
        list.pop_back();
    }
    list.emplace_front(key, Entry{});
    byKey.emplace(key, list.begin());
    return list.front().second;
}

Activity::Activity(AdminClock clock) : Activity(std::move(clock), Limits{}) {}

Activity::Activity(AdminClock clock, Limits limits)
    : clock_(std::move(clock)), limits_(limits), since_(clock_()) {}

void Activity::callFinished(const rds::CallRecord& record) {
    const std::string address = addressOf(record.peer);
    std::string target = kept(record.target, MostOfName);
    std::string error = kept(record.error, MostOfError);
    const std::lock_guard lock(mutex_);
    const TimePoint now = clock_();

    Client& client = clients_.get(address, limits_.clients);
    client.address = address;
    client.lastCall = now;
    client.lastTarget = std::move(target);
    ++client.calls;
    client.lastFailed = !error.empty();

    Minute& minute = minuteOf(now);
    ++minute.calls;
    minute.rows += record.rows;
    minute.bytes += record.bytes;
    minute.longest = std::max(minute.longest, record.elapsed);
    minute.total += record.elapsed;

    if (client.lastFailed) {
        ++minute.failed;
        ++client.failed;
        client.lastErrorAt = now;
        client.lastError = std::move(error);
    }
}

void Activity::refused(std::string_view reason, std::string_view peer) {
    const RefusalReason& known = refusalReason(reason);
    const std::string address = addressOf(peer);
    const std::lock_guard lock(mutex_);
    const TimePoint now = clock_();
    Refusals& refusals = refusals_[std::string(known.label)];
    ++refusals.count;
    refusals.last = now;
    refusals.lastAddress = address;
    ++minuteOf(now).refused;
    if (Client* const client = clients_.find(address)) {
        ++client->failed;
        client->lastFailed = true;
        client->lastErrorAt = now;
        client->lastError = "refused: " + std::string(known.words);
    }
}

void Activity::versionReported(std::string_view peer, std::string_view store,
                               std::string_view counter, std::string_view version) {
    Version report{kept(store, MostOfName),
                   kept(counter, MostOfName),
                   kept(version, MostOfName),
                   addressOf(peer),
                   {}};
    // No kept text has a control character.
    const std::string key = report.store + '\n' + report.counter;
    const std::lock_guard lock(mutex_);
    report.at = clock_();
    versions_.get(key, limits_.versions) = std::move(report);
}

Activity::Snapshot Activity::snapshot() const {
    Snapshot result;
    {
        const std::lock_guard lock(mutex_);
        result.at = clock_();
        result.since = since_;
        result.refusals = refusals_;
        for (const auto& [key, client] : clients_.list)
            result.clients.push_back(client);
        for (const auto& [key, version] : versions_.list)
            result.versions.push_back(version);
        TimePoint start = std::chrono::floor<minutes>(result.at) - minutes(59);
        for (Minute& minute : result.minutes) {
            // A slot may still hold a minute of an hour ago, or of before the clock was set.
            const Minute& slot = minutes_[slotOf(start)];
            minute = slot.start == start ? slot : Minute{};
            minute.start = start;
            start += minutes(1);
        }
    }
    std::sort(result.versions.begin(), result.versions.end(),
              [](const Version& a, const Version& b) {
                  return std::tie(a.store, a.counter) < std::tie(b.store, b.counter);
              });
    return result;
}

Activity::Minute& Activity::minuteOf(TimePoint time) {
    const TimePoint start = std::chrono::floor<minutes>(time);
    Minute& slot = minutes_[slotOf(start)];
    if (slot.start != start) {
        slot = Minute{};
        slot.start = start;
    }
    return slot;
}

} // namespace quillet::headoffice::admin
