#pragma once

#include <cstddef>

namespace quillet::headoffice::admin {

/// How busy the server is at this moment.
struct Load {
    /// A quantity and the most that it may become; limit 0: there is none.
    struct Gauge {
        std::size_t now = 0;
        std::size_t limit = 0;
    };

    Gauge answering;                         ///< calls
    Gauge waiting;                           ///< calls in the queue
    Gauge connections;                       ///< of clients
    Gauge memory;                            ///< bytes that requests and replies under way hold
    Gauge databaseConnections;               ///< in use
    std::size_t databaseConnectionsOpen = 0; ///< in use or kept for the next call
};

} // namespace quillet::headoffice::admin
