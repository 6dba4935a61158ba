#include "db/TransactionState.h"

#include "data/Error.h"

namespace quillet::db {

namespace {
constexpr long TransactionExists = -2147168237;
constexpr long NoTransaction = -2147168242;
} // namespace

void TransactionState::requireNone() const {
    if (active_)
        throw data::Error({data::ErrorRecord{
            TransactionExists, "Only one transaction can be active on this session.", {}}});
}

void TransactionState::requireActive() const {
    if (!active_)
        throw data::Error({data::ErrorRecord{NoTransaction, "No transaction is active.", {}}});
}

} // namespace quillet::db
