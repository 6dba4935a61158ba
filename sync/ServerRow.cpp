#include "sync/ServerRow.h"

#include "db/Error.h"
#include "sync/LeadingNumber.h"

namespace quillet::sync {

double ServerRow::number(std::size_t field) const {
    const db::Value value = rows_.Item(field);
    if (value.isNull())
        throw db::invalidUseOfNull();
    if (value.kind() == db::Value::Kind::Text)
        return leadingNumber(value.bytes());
    return leadingNumber(value.toText());
}

} // namespace quillet::sync
