#include "headoffice/database/DatabasePool.h"

#include "data/Error.h"
#include "headoffice/database/SqlState.h"

#include <algorithm>
#include <utility>

namespace quillet::headoffice {

namespace {

using Clock = std::chrono::steady_clock;

} // namespace

DatabasePool::DatabasePool(Open open, Limits limits) : open_(std::move(open)), limits_(limits) {}

DatabaseSession DatabasePool::lend(const DatabaseLogin& login, std::stop_token gone) {
    auto engine = takeIdle(login);
    const bool wasUsed = engine != nullptr;
    if (!wasUsed)
        engine = open(login);
    {
        const std::lock_guard lock(mutex_);
        ++inUse_;
    }
    return {*this, login, std::move(engine), wasUsed, std::move(gone), limits_.call};
}

DatabasePool::Counts DatabasePool::counts() {
    std::list<Idle> old;
    const std::lock_guard lock(mutex_);
    removeOld(old);
    return {inUse_ + idle_.size(), inUse_};
}

std::unique_ptr<db::Engine> DatabasePool::takeIdle(const DatabaseLogin& login) {
    std::list<Idle> old; // closed when nobody waits for the lock
    const std::lock_guard lock(mutex_);
    removeOld(old);
    const auto match = std::find_if(idle_.begin(), idle_.end(),
                                    [&](const Idle& idle) { return idle.login == login; });
    if (match == idle_.end())
        return nullptr;
    auto engine = std::move(match->engine);
    idle_.erase(match);
    return engine;
}

std::unique_ptr<db::Engine> DatabasePool::open(const DatabaseLogin& login) try {
    return open_(login);
} catch (const data::Error& error) {
    // 28000: who comes is refused. 42000: there is no such database, or not for this user.
    const std::string state = sqlStateOf(error);
    if (state == "28000" || state == "42000")
        throw data::providerError(state, "The database does not let this user in.");
    throw data::providerError("08001", "The database does not answer.");
}

void DatabasePool::giveBack(const DatabaseLogin& login,
                            std::unique_ptr<db::Engine> engine) noexcept {
    std::list<Idle> returned;
    try {
        if (engine->reset())
            returned.push_back({login, std::move(engine), Clock::now()});
    } catch (const std::exception&) {
        // It is closed instead.
    }
    engine.reset();
    std::list<Idle> old;
    const std::lock_guard lock(mutex_);
    --inUse_;
    idle_.splice(idle_.begin(), returned);
    removeOld(old);
}

void DatabasePool::removeOld(std::list<Idle>& removed) {
    const auto oldest = Clock::now() - limits_.keep;
    while (!idle_.empty() && (idle_.size() > limits_.idle || idle_.back().since < oldest))
        removed.splice(removed.begin(), idle_, std::prev(idle_.end()));
}

} // namespace quillet::headoffice
