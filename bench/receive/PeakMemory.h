#pragma once

#include <cstdint>

namespace quillet::bench {

/// The most memory that a running process has had resident so far, in bytes; 0 when the system
/// does not say. A parent's own peak, which a finished child's accounting may include, is not in
/// it.
std::uint64_t peakMemory(std::int64_t processId);

} // namespace quillet::bench
