#include "db/mariadb/MariaDbSocket.h"

#include <winsock2.h>

namespace quillet::db {

namespace {

SOCKET duplicate(SOCKET socket) noexcept {
    WSAPROTOCOL_INFOW description{};
    if (WSADuplicateSocketW(socket, GetCurrentProcessId(), &description) != 0)
        return INVALID_SOCKET;
    return WSASocketW(FROM_PROTOCOL_INFO, FROM_PROTOCOL_INFO, FROM_PROTOCOL_INFO, &description, 0,
                      WSA_FLAG_OVERLAPPED);
}

} // namespace

MariaDbSocket::MariaDbSocket(std::uintptr_t socket) noexcept : socket_(duplicate(socket)) {}

MariaDbSocket::~MariaDbSocket() {
    if (socket_ != INVALID_SOCKET)
        closesocket(socket_);
}

void MariaDbSocket::shutDown() const noexcept {
    shutdown(socket_, SD_BOTH);
}

} // namespace quillet::db
