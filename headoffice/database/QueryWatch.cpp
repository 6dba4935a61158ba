#include "headoffice/database/QueryWatch.h"

#include "data/Error.h"

#include <string>
#include <utility>

namespace quillet::headoffice {

namespace {

/// The database's own limit comes first, so that its own words are told.
constexpr auto Grace = std::chrono::seconds(5);

/// Ending a statement misses when it has not quite begun.
constexpr auto Again = std::chrono::milliseconds(500);

} // namespace

QueryWatch::QueryWatch(db::Engine& engine, std::stop_token gone, std::chrono::seconds limit)
    : engine_(engine), limit_(limit), deadline_(std::chrono::steady_clock::now() + limit + Grace),
      gone_(std::move(gone)), onGone_(gone_,
                                      [this] {
                                          const std::lock_guard lock(mutex_);
                                          wake_.notify_all();
                                      }),
      thread_([this](const std::stop_token& over) { run(over); }) {}

QueryWatch::~QueryWatch() = default;

void QueryWatch::require() const {
    if (gone_.stop_requested())
        throw data::Error(data::number::Canceled, "Nobody waits for the result any more.");
    if (late_)
        throw data::Error(data::number::Canceled, "It took longer than the " +
                                                      std::to_string(limit_.count()) +
                                                      " seconds that a call may take.");
}

void QueryWatch::run(const std::stop_token& over) {
    std::unique_lock lock(mutex_);
    while (!over.stop_requested()) {
        const bool ended =
            wake_.wait_until(lock, over, deadline_, [this] { return gone_.stop_requested(); });
        if (over.stop_requested())
            return;
        late_ = late_ || !ended;
        lock.unlock();
        engine_.cancel();
        lock.lock();
        wake_.wait_for(lock, over, Again, [] { return false; });
    }
}

} // namespace quillet::headoffice
