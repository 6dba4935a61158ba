#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace quillet::data {

/// Memory for many small things that are freed together.
class Arena {
public:
    /// Uninitialised bytes without alignment; they stay where they are until the arena goes.
    char* allocate(std::size_t bytes);

    /// A copy that lives as long as the arena.
    std::string_view copy(std::string_view bytes);

    /// Gives back the tail of the latest allocation.
    /// @pre `bytes` is at most the size of that allocation.
    void giveBack(std::size_t bytes) noexcept;

private:
    std::vector<std::unique_ptr<char[]>> blocks_;
    char* next_ = nullptr;
    std::size_t left_ = 0;
    std::size_t nextBlock_ = 512;
};

} // namespace quillet::data
