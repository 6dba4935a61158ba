#pragma once

#include "rds/http/ServerConnection.h"

#include <atomic>
#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <vector>

namespace quillet::rds {

/// The open connections, and who gives way when there are too many. It belongs to the network
/// thread but for size().
class ConnectionTable {
public:
    using Connection = std::shared_ptr<ServerConnection>;

    explicit ConnectionTable(std::size_t most) : most_(most) {}

    void add(Connection connection);
    void remove(const ServerConnection& connection);

    /// Closes a connection without a complete request: of the client that has most of these, the
    /// one that came first.
    /// @return false if there is none.
    bool makeRoom();

    bool isFull() const noexcept { return size_ >= most_; }

    /// Whether one more request of a client may be queued, so that there is always room for
    /// others.
    bool mayEngage(const std::string& client) const;

    /// As they are now; closing one changes the table.
    std::vector<Connection> all() const { return {connections_.begin(), connections_.end()}; }

    std::size_t size() const noexcept { return size_; }

private:
    const std::size_t most_;
    std::list<Connection> connections_; ///< the oldest first
    std::atomic<std::size_t> size_ = 0;
};

} // namespace quillet::rds
