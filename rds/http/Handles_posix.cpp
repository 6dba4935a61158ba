#include "rds/http/Handles.h"

#include <limits>
#include <sys/resource.h>

namespace quillet::rds {

std::size_t handleLimit() noexcept {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
        return std::numeric_limits<std::size_t>::max();
    return static_cast<std::size_t>(limit.rlim_cur);
}

} // namespace quillet::rds
