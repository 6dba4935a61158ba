#pragma once

#include "headoffice/admin/LocalTime.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace quillet::headoffice::admin {

/// Whether one of the listed databases answers.
struct DatabaseHealth {
    std::string name; ///< "host:port/database"
    bool ok = false;
    std::string reason; ///< why not, in words that anybody may read: no statement, no driver text
};

/// What is known of the databases' health. They are asked by one thread at a time and not more
/// often than every 10 seconds, however often somebody wants to know. Any thread may call.
class HealthKeeper {
public:
    using Ask = std::function<std::vector<DatabaseHealth>()>;

    struct Health {
        std::vector<DatabaseHealth> databases;
        TimePoint at;

        bool allOk() const;
    };

    /// @param ask should come back within a few seconds. What it throws counts as a failure.
    HealthKeeper(Ask ask, AdminClock clock);

    /// While another thread asks, an answer of the last minute is good enough; without one this
    /// waits for the other.
    Health current();

private:
    bool isYounger(std::chrono::seconds age) const;
    std::vector<DatabaseHealth> asked() const;

    Ask ask_;
    AdminClock clock_;
    std::mutex mutex_;
    std::condition_variable answered_;
    bool asking_ = false;
    bool known_ = false;
    Health health_;
};

} // namespace quillet::headoffice::admin
