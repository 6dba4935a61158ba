#include "db/mariadb/MariaDbSocket.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quillet::db {

MariaDbSocket::MariaDbSocket(std::uintptr_t socket) noexcept
    : socket_(static_cast<std::uintptr_t>(::fcntl(static_cast<int>(socket), F_DUPFD_CLOEXEC, 0))) {}

MariaDbSocket::~MariaDbSocket() {
    if (static_cast<int>(socket_) >= 0)
        ::close(static_cast<int>(socket_));
}

void MariaDbSocket::shutDown() const noexcept {
    ::shutdown(static_cast<int>(socket_), SHUT_RDWR);
}

} // namespace quillet::db
