#pragma once

#include "rds/http/HttpServer.h"

#include <atomic>
#include <condition_variable>
#include <mutex>

namespace quillet::tests {

/// Holds handlers back until a test lets them go, or until nobody waits for them.
class Gate {
public:
    /// @return false when the request's client has gone before.
    bool pass(const rds::HttpRequest& request) {
        std::unique_lock lock(mutex_);
        ++inside_;
        return changed_.wait(lock, request.gone, [this] { return open_; });
    }

    void open() {
        {
            const std::lock_guard lock(mutex_);
            open_ = true;
        }
        changed_.notify_all();
    }

    int inside() const { return inside_; } ///< that have come so far

private:
    std::mutex mutex_;
    std::condition_variable_any changed_;
    std::atomic<int> inside_ = 0;
    bool open_ = false;
};

} // namespace quillet::tests
