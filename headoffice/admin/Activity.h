#pragma once

#include "headoffice/admin/LocalTime.h"
#include "rds/CallServer.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace quillet::headoffice::admin {

/// What the server has been doing, for the person who runs it: its clients, the versions they have
/// reported, and the last hour by the minute. Memory is bounded whatever comes from outside: texts
/// are cut, and the client or counter not heard of for longest makes room for a new one. Any thread
/// may call.
class Activity {
public:
    struct Limits {
        std::size_t clients = 2'000;
        std::size_t versions = 5'000;
    };

    struct Client {
        std::string address; ///< without the port
        TimePoint lastCall;
        std::string lastTarget; ///< "quorin.data.Getsql"
        std::uint64_t calls = 0;
        std::uint64_t failed = 0; ///< calls, or refusals of a client that has called before
        bool lastFailed = false;
        TimePoint lastErrorAt;
        std::string lastError; ///< empty: never one
    };

    struct Version {
        std::string store;
        std::string counter;
        std::string version;
        std::string address; ///< that reported it
        TimePoint at;
    };

    /// Sums of one minute.
    struct Minute {
        TimePoint start;
        std::uint64_t calls = 0;
        std::uint64_t failed = 0; ///< of the calls
        std::uint64_t refused = 0;
        std::uint64_t rows = 0;
        std::uint64_t bytes = 0;
        std::chrono::milliseconds longest{0};
        std::chrono::milliseconds total{0};

        /// 0 without calls.
        std::chrono::milliseconds mean() const;
    };

    struct Refusals {
        std::uint64_t count = 0;
        TimePoint last;
        std::string lastAddress;
    };

    struct Snapshot {
        TimePoint at;
        TimePoint since;                ///< when watching began
        std::vector<Client> clients;    ///< heard of most recently first
        std::vector<Version> versions;  ///< by store and counter
        std::array<Minute, 60> minutes; ///< the last one is the present minute
        std::map<std::string, Refusals, std::less<>> refusals; ///< by label
    };

    explicit Activity(AdminClock clock = std::chrono::system_clock::now);
    Activity(AdminClock clock, Limits limits);

    void callFinished(const rds::CallRecord& record);

    /// @param reason a label of RefusalReasons.
    /// @param peer "address:port", an IPv6 address in brackets. An address that has never called
    /// is not remembered as a client, so that strangers push nobody out.
    void refused(std::string_view reason, std::string_view peer);

    /// A counter has told which version it is.
    void versionReported(std::string_view peer, std::string_view store, std::string_view counter,
                         std::string_view version);

    Snapshot snapshot() const;

private:
    /// At most so many entries, the one used last in front.
    template <typename Entry>
    struct Recent {
        using List = std::list<std::pair<std::string, Entry>>;

        Entry* find(const std::string& key);
        Entry& get(const std::string& key, std::size_t most);

        List list;
        std::unordered_map<std::string, typename List::iterator> byKey;
    };

    Minute& minuteOf(TimePoint time);

    AdminClock clock_;
    Limits limits_;
    TimePoint since_;
    mutable std::mutex mutex_;
    Recent<Client> clients_;
    Recent<Version> versions_;
    std::array<Minute, 60> minutes_; ///< by the minute's number modulo 60
    std::map<std::string, Refusals, std::less<>> refusals_;
};

} // namespace quillet::headoffice::admin
