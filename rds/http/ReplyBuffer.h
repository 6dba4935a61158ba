#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>

namespace quillet::rds {

/// What a worker has written and the network thread has not yet sent.
class ReplyBuffer {
public:
    /// What take() has found.
    enum class Found { Bytes, NothingYet, End, Broken };

    /// @param size half of it is for what is being sent.
    /// @param wake called on the worker's thread when there is something to take() after there
    ///             was NothingYet.
    ReplyBuffer(std::size_t size, std::function<void()> wake);

    /// On the worker: waits until all bytes are in the buffer.
    /// @throws data::Error 462 when it is closed.
    void write(std::string_view bytes);

    /// On the worker: nothing follows.
    void finish();

    /// On the worker: what was written is not the whole reply and must not look like it.
    void breakOff();

    /// On the network thread.
    /// @param bytes what was taken before, all of it sent; gets what comes next.
    Found take(std::string& bytes);

    /// On the network thread: nobody takes anything any more.
    /// @param why for the worker's error.
    void close(std::string why);

private:
    const std::size_t capacity_;
    const std::function<void()> wake_;

    std::mutex mutex_; ///< of what follows
    std::condition_variable room_;
    std::string waiting_;
    std::string whyClosed_; ///< "" while it is open
    bool finished_ = false;
    bool broken_ = false;
    bool awaited_ = true; ///< take() has found nothing
};

} // namespace quillet::rds
