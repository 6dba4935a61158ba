#pragma once

#include <atomic>
#include <cstddef>
#include <map>
#include <string>

namespace quillet::rds {

/// Memory that requests and replies in flight may take together. No client gets more than three
/// quarters of it. It is charged before memory is used, and belongs to one thread but for used().
class MemoryBudget {
    /// What has been charged, of all or of one client.
    struct Account {
        std::size_t used = 0;
        std::size_t bodies = 0; ///< of these
    };
    using Accounts = std::map<std::string, Account>;

public:
    /// What one connection has been charged; given back with its end.
    class Charge {
    public:
        /// @param budget must live longer.
        Charge(MemoryBudget& budget, std::string client);
        ~Charge() { keep(0); }
        Charge(const Charge&) = delete;
        Charge& operator=(const Charge&) = delete;

        /// Charges more, for anything but a body.
        /// @return false, and charges nothing, when there is not so much.
        [[nodiscard]] bool grow(std::size_t bytes) { return add({bytes, 0}); }

        /// Charges more of a body.
        [[nodiscard]] bool growBody(std::size_t bytes) { return add({bytes, bytes}); }

        /// Gives back all but so many bytes, which are no body's.
        void keep(std::size_t bytes) noexcept;

        std::size_t bodyBytes() const noexcept { return mine_.bodies; }

    private:
        bool add(const Account& more);

        MemoryBudget& budget_;
        std::string client_;
        Account mine_;
    };

    /// @param notForBodies bytes of it, so that what waits to be worked on does not take what
    ///                     working on it needs.
    MemoryBudget(std::size_t bytes, std::size_t notForBodies)
        : bytes_(bytes), notForBodies_(notForBodies) {}

    /// What one client gets of a budget at most.
    static std::size_t shareOf(std::size_t bytes) noexcept { return bytes - bytes / 4; }

    /// May be asked from any thread.
    std::size_t used() const noexcept { return used_; }

private:
    bool hasRoom(std::size_t limit, const Account& account, const Account& more) const noexcept;

    const std::size_t bytes_;
    const std::size_t notForBodies_;
    Account all_;
    Accounts clients_; ///< those that are charged anything
    std::atomic<std::size_t> used_ = 0;
};

} // namespace quillet::rds
