#include "rds/http/MemoryBudget.h"

#include <utility>

namespace quillet::rds {

MemoryBudget::Charge::Charge(MemoryBudget& budget, std::string client)
    : budget_(budget), client_(std::move(client)) {}

bool MemoryBudget::Charge::add(const Account& more) {
    const auto found = budget_.clients_.find(client_);
    const Account before = found == budget_.clients_.end() ? Account() : found->second;
    if (!budget_.hasRoom(budget_.bytes_, budget_.all_, more) ||
        !budget_.hasRoom(shareOf(budget_.bytes_), before, more))
        return false;
    if (more.used > 0)
        budget_.clients_[client_] = {before.used + more.used, before.bodies + more.bodies};
    for (Account* account : {&budget_.all_, &mine_}) {
        account->used += more.used;
        account->bodies += more.bodies;
    }
    budget_.used_ = budget_.all_.used;
    return true;
}

void MemoryBudget::Charge::keep(std::size_t bytes) noexcept {
    if (bytes >= mine_.used)
        return;
    const auto client = budget_.clients_.find(client_);
    for (Account* account : {&budget_.all_, &client->second}) {
        account->used -= mine_.used - bytes;
        account->bodies -= mine_.bodies;
    }
    if (client->second.used == 0)
        budget_.clients_.erase(client);
    mine_ = {bytes, 0};
    budget_.used_ = budget_.all_.used;
}

bool MemoryBudget::hasRoom(std::size_t limit, const Account& account,
                           const Account& more) const noexcept {
    const auto fits = [](std::size_t most, std::size_t used, std::size_t bytes) {
        return used <= most && bytes <= most - used;
    };
    return fits(limit, account.used, more.used) &&
           (more.bodies == 0 ||
            (limit > notForBodies_ && fits(limit - notForBodies_, account.bodies, more.bodies)));
}

} // namespace quillet::rds
