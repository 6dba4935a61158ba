#pragma once

#include "data/Value.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace quillet::data {

/// Rows of a fixed number of columns, in memory. A Null takes one bit, so that what a row takes is
/// in proportion to what it says, however many columns it has.
class RowStore {
public:
    explicit RowStore(std::size_t columns = 0) : columns_(columns), mapSize_((columns + 7) / 8) {}

    std::size_t size() const noexcept { return rows_.size(); }

    /// @param cells one per column; what they borrow must outlive the store.
    void append(std::span<const Value> cells);

    /// @pre `row` is below size(), `column` below the number of columns.
    Value at(std::size_t row, std::size_t column) const noexcept;

private:
    Value* allocate(std::size_t values);

    std::size_t columns_;
    std::size_t mapSize_;               ///< bytes per row
    std::vector<std::uint8_t> present_; ///< a bit per column, the first one the lowest; and slack
    std::vector<const Value*> rows_;    ///< the values that are there, in the order of the columns
    std::vector<std::unique_ptr<Value[]>> blocks_;
    Value* next_ = nullptr;
    std::size_t left_ = 0;
    std::size_t nextBlock_ = 16;
};

} // namespace quillet::data
