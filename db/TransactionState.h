#pragma once

namespace quillet::db {

/// Whether a transaction is open on a connection, with the platform's own errors for calls out of
/// turn: databases differ in what they say to those, or say nothing.
class TransactionState {
public:
    bool active() const noexcept { return active_; }
    void begun() noexcept { active_ = true; }
    void ended() noexcept { active_ = false; }

    /// @throws Error -2147168237 (XACT_E_XTIONEXISTS) when a transaction is open.
    void requireNone() const;

    /// @throws Error -2147168242 (XACT_E_NOTRANSACTION) when none is open.
    void requireActive() const;

private:
    bool active_ = false;
};

} // namespace quillet::db
