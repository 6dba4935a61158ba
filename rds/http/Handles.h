#pragma once

#include <cstddef>

namespace quillet::rds {

/// How many files and connections this process may have open at once.
std::size_t handleLimit() noexcept;

} // namespace quillet::rds
