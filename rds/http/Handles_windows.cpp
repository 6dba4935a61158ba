#include "rds/http/Handles.h"

#include <limits>

namespace quillet::rds {

// Sockets are bounded by memory there, not by a number.
std::size_t handleLimit() noexcept {
    return std::numeric_limits<std::size_t>::max();
}

} // namespace quillet::rds
