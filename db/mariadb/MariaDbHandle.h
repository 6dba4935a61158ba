#pragma once

#include "db/mariadb/MariaDbApi.h"
#include "db/mariadb/MariaDbLogin.h"

#include <cstddef>
#include <memory>
#include <string_view>

namespace quillet::db {

/// The largest statement and the largest row, in bytes.
inline constexpr std::size_t MariaDbLargestPacket = std::size_t{16} * 1024 * 1024;

/// An open connection, closed when its owner goes. What it never does, whoever asks: read files for
/// the server, run several statements of one text, take settings from option files or plug-ins from
/// another folder than the library's own, use another way than TCP, connect anew by itself, give
/// the password away in clear text.
class MariaDbHandle {
public:
    /// Connects; texts are in utf8mb4 as far as the server knows it.
    /// @throws Error also for a host that is neither a name nor an address.
    explicit MariaDbHandle(const MariaDbLogin& login);

    MYSQL* get() const noexcept { return handle_.get(); }

    /// Runs one statement and drops its rows.
    /// @throws Error
    void run(std::string_view statement) const;

    /// Puts the session back to where the constructor left it.
    /// @return false where that failed; the connection is of no use then.
    bool reset(const MariaDbLogin& login) const noexcept;

private:
    struct Close {
        void operator()(MYSQL* handle) const noexcept { mysql_close(handle); }
    };

    void setUpSession() const;

    std::unique_ptr<MYSQL, Close> handle_;
};

} // namespace quillet::db
