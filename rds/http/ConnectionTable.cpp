#include "rds/http/ConnectionTable.h"

#include <algorithm>
#include <map>
#include <utility>

namespace quillet::rds {

void ConnectionTable::add(Connection connection) {
    connections_.push_back(std::move(connection));
    size_ = connections_.size();
}

void ConnectionTable::remove(const ServerConnection& connection) {
    const auto found = std::ranges::find(connections_, &connection, &Connection::get);
    if (found != connections_.end())
        connections_.erase(found);
    size_ = connections_.size();
}

bool ConnectionTable::makeRoom() {
    struct Idle {
        std::size_t count = 0;
        Connection oldest;
    };
    std::map<std::string, Idle> clients;
    for (const Connection& connection : connections_) {
        if (!connection->isIdle())
            continue;
        Idle& idle = clients[connection->client()];
        if (idle.count++ == 0)
            idle.oldest = connection;
    }
    if (clients.empty())
        return false;
    const auto most = std::ranges::max_element(
        clients, {}, [](const auto& client) { return client.second.count; });
    most->second.oldest->giveWay();
    return true;
}

bool ConnectionTable::mayEngage(const std::string& client) const {
    const std::size_t share = std::max<std::size_t>(1, most_ - (most_ + 3) / 4);
    if (connections_.size() < share)
        return true;
    const auto engaged = std::ranges::count_if(connections_, [&](const Connection& connection) {
        return connection->isEngaged() && connection->client() == client;
    });
    return static_cast<std::size_t>(engaged) < share;
}

} // namespace quillet::rds
