#include "headoffice/admin/HealthKeeper.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace quillet::headoffice::admin {

using std::chrono::seconds;

bool HealthKeeper::Health::allOk() const {
    return std::all_of(databases.begin(), databases.end(),
                       [](const DatabaseHealth& database) { return database.ok; });
}

HealthKeeper::HealthKeeper(Ask ask, AdminClock clock)
    : ask_(std::move(ask)), clock_(std::move(clock)) {}

HealthKeeper::Health HealthKeeper::current() {
    std::unique_lock lock(mutex_);
    if (asking_ && !isYounger(seconds(60)))
        answered_.wait(lock, [this] { return !asking_; });
    if (asking_ || isYounger(seconds(10)))
        return health_;

    asking_ = true;
    lock.unlock();
    std::vector<DatabaseHealth> databases = asked();
    lock.lock();
    health_ = {std::move(databases), clock_()};
    known_ = true;
    asking_ = false;
    answered_.notify_all();
    return health_;
}

bool HealthKeeper::isYounger(seconds age) const {
    const auto now = clock_();
    return known_ && health_.at <= now && now < health_.at + age;
}

std::vector<DatabaseHealth> HealthKeeper::asked() const {
    try {
        return ask_();
    } catch (const std::exception&) {
        return {{"databases", false, "they could not be asked"}};
    }
}

} // namespace quillet::headoffice::admin
