#include "rds/http/ReplyBuffer.h"

#include "data/Error.h"

#include <algorithm>
#include <utility>

namespace quillet::rds {

ReplyBuffer::ReplyBuffer(std::size_t size, std::function<void()> wake)
    : capacity_(size / 2), wake_(std::move(wake)) {}

void ReplyBuffer::write(std::string_view bytes) {
    while (!bytes.empty()) {
        std::unique_lock lock(mutex_);
        room_.wait(lock, [this] { return !whyClosed_.empty() || waiting_.size() < capacity_; });
        if (!whyClosed_.empty())
            throw data::Error(data::number::RemoteServerUnavailable,
                              "The client is gone: " + whyClosed_);
        const std::string_view piece = bytes.substr(0, capacity_ - waiting_.size());
        if (waiting_.capacity() < waiting_.size() + piece.size())
            waiting_.reserve(std::min(capacity_, 2 * (waiting_.size() + piece.size())));
        waiting_ += piece;
        bytes.remove_prefix(piece.size());
        const bool wake = std::exchange(awaited_, false);
        lock.unlock();
        if (wake)
            wake_();
    }
}

void ReplyBuffer::finish() {
    const std::lock_guard lock(mutex_);
    finished_ = true;
}

void ReplyBuffer::breakOff() {
    const std::lock_guard lock(mutex_);
    broken_ = true;
}

ReplyBuffer::Found ReplyBuffer::take(std::string& bytes) {
    {
        const std::lock_guard lock(mutex_);
        if (broken_)
            return Found::Broken;
        if (waiting_.empty()) {
            awaited_ = !finished_;
            return finished_ ? Found::End : Found::NothingYet;
        }
        bytes.clear();
        bytes.swap(waiting_);
    }
    room_.notify_one();
    return Found::Bytes;
}

void ReplyBuffer::close(std::string why) {
    {
        const std::lock_guard lock(mutex_);
        if (whyClosed_.empty())
            whyClosed_ = std::move(why);
    }
    room_.notify_one();
}

} // namespace quillet::rds
