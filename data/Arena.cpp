#include "data/Arena.h"

#include <algorithm>
#include <cstring>

namespace quillet::data {

namespace {
constexpr std::size_t LargestBlock = std::size_t{1} << 20U;
}

char* Arena::allocate(std::size_t bytes) {
    if (bytes > left_) {
        const std::size_t size = std::max(bytes, nextBlock_);
        blocks_.push_back(std::make_unique_for_overwrite<char[]>(size));
        next_ = blocks_.back().get();
        left_ = size;
        nextBlock_ = std::min(nextBlock_ * 2, LargestBlock);
    }
    char* result = next_;
    next_ += bytes;
    left_ -= bytes;
    return result;
}

std::string_view Arena::copy(std::string_view bytes) {
    if (bytes.empty())
        return {};
    char* target = allocate(bytes.size());
    std::memcpy(target, bytes.data(), bytes.size());
    return {target, bytes.size()};
}

void Arena::giveBack(std::size_t bytes) noexcept {
    next_ -= bytes;
    left_ += bytes;
}

} // namespace quillet::data
