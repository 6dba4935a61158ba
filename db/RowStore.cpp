#include "db/RowStore.h"

#include <algorithm>
#include <bit>

namespace quillet::db {

namespace {
constexpr std::size_t LargestBlock = 8192;
} // namespace

void RowStore::append(std::span<const Value> cells) {
    const auto isThere = [](const Value& cell) { return !cell.isNull(); };
    Value* target =
        allocate(static_cast<std::size_t>(std::count_if(cells.begin(), cells.end(), isThere)));
    const std::size_t map = present_.size();
    present_.resize(map + mapSize_);
    rows_.push_back(target);
    for (std::size_t column = 0; column < columns_; ++column) {
        if (!isThere(cells[column]))
            continue;
        *target++ = cells[column];
        present_[map + column / 8] |= static_cast<std::uint8_t>(1U << column % 8);
    }
}

Value RowStore::at(std::size_t row, std::size_t column) const noexcept {
    const std::uint8_t* map = present_.data() + row * mapSize_;
    const unsigned bits = map[column / 8];
    const unsigned bit = 1U << column % 8;
    if ((bits & bit) == 0)
        return {};
    int before = std::popcount(bits & (bit - 1));
    for (std::size_t byte = 0; byte < column / 8; ++byte)
        before += std::popcount(map[byte]);
    return rows_[row][before];
}

Value* RowStore::allocate(std::size_t values) {
    if (values > left_) {
        left_ = std::max(values, nextBlock_);
        blocks_.push_back(std::make_unique<Value[]>(left_));
        next_ = blocks_.back().get();
        nextBlock_ = std::min(2 * nextBlock_, LargestBlock);
    }
    Value* result = next_;
    next_ += values;
    left_ -= values;
    return result;
}

} // namespace quillet::db
