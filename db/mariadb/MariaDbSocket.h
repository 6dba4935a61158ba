#pragma once

#include <cstdint>

namespace quillet::db {

/// A second grip on a connection's socket, by which any thread can cut the connection while
/// another one waits in it. It stays valid when the connection's owner closes its own.
class MariaDbSocket {
public:
    /// @param socket as mysql_get_socket() gives it.
    explicit MariaDbSocket(std::uintptr_t socket) noexcept;
    ~MariaDbSocket();
    MariaDbSocket(const MariaDbSocket&) = delete;
    MariaDbSocket& operator=(const MariaDbSocket&) = delete;

    /// Ends whatever is read or written on the connection, for good.
    void shutDown() const noexcept;

private:
    std::uintptr_t socket_;
};

} // namespace quillet::db
