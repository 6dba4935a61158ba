#include "data/RowStore.h"

#include <algorithm>
#include <bit>

namespace quillet::data {

namespace {

constexpr std::size_t LargestBlock = 8192;
constexpr std::size_t WordBits = 64;

/// Compilers make one load of it where the machine has it.
std::uint64_t wordAt(const std::uint8_t* map) noexcept {
    std::uint64_t word = 0;
    for (unsigned byte = 0; byte < WordBits / 8; ++byte)
        word |= std::uint64_t{map[byte]} << (8 * byte);
    return word;
}

} // namespace

void RowStore::append(std::span<const Value> cells) {
    const auto isThere = [](const Value& cell) { return !cell.isNull(); };
    Value* target =
        allocate(static_cast<std::size_t>(std::count_if(cells.begin(), cells.end(), isThere)));
    const std::size_t map = rows_.size() * mapSize_;
    rows_.push_back(target);
    present_.resize(rows_.size() * mapSize_ + WordBits / 8); // at() reads words
    for (std::size_t column = 0; column < columns_; ++column) {
        if (!isThere(cells[column]))
            continue;
        *target++ = cells[column];
        present_[map + column / 8] |= static_cast<std::uint8_t>(1U << column % 8);
    }
}

Value RowStore::at(std::size_t row, std::size_t column) const noexcept {
    const std::uint8_t* map = present_.data() + row * mapSize_;
    int before = 0;
    for (; column >= WordBits; column -= WordBits, map += WordBits / 8)
        before += std::popcount(wordAt(map));
    const std::uint64_t word = wordAt(map);
    const std::uint64_t bit = std::uint64_t{1} << column;
    if ((word & bit) == 0)
        return {};
    return rows_[row][before + std::popcount(word & (bit - 1))];
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

} // namespace quillet::data
