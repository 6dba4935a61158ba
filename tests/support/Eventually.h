#pragma once

#include <chrono>
#include <thread>

namespace quillet::tests {

/// Waits for something that another thread is about to do.
/// @return false when it has not come after a long time.
template <typename Condition>
bool eventually(Condition condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

} // namespace quillet::tests
