#pragma once

#include "db/Engine.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <stop_token>
#include <thread>

namespace quillet::headoffice {

/// Ends what a database does for a call as soon as nobody waits for it any more or its time is up,
/// as long as the watch lives. It must go before anybody else gets the engine.
class QueryWatch {
public:
    /// @param engine outlives the watch.
    /// @param gone asked to stop when nobody waits any more.
    QueryWatch(db::Engine& engine, std::stop_token gone, std::chrono::seconds limit);
    ~QueryWatch();
    QueryWatch(const QueryWatch&) = delete;
    QueryWatch& operator=(const QueryWatch&) = delete;

    /// Between two statements.
    /// @throws data::Error number::Canceled when the call has been ended.
    void require() const;

    /// To be called when the engine has failed: says it in other words where it was the watch.
    /// @throws data::Error number::Canceled when the call has been ended; otherwise does nothing.
    void explain() const { require(); }

private:
    void run(const std::stop_token& over);

    db::Engine& engine_;
    std::chrono::seconds limit_;
    std::chrono::steady_clock::time_point deadline_;
    std::stop_token gone_;
    std::atomic<bool> late_ = false;
    std::mutex mutex_;
    std::condition_variable_any wake_;
    std::stop_callback<std::function<void()>> onGone_;
    std::jthread thread_;
};

} // namespace quillet::headoffice
