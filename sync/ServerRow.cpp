#include "sync/ServerRow.h"

#include "data/Error.h"
#include "sync/LeadingNumber.h"

namespace quillet::sync {

double ServerRow::number(std::size_t field) const {
    const data::Value value = rows_.Item(field);
    if (value.isNull())
        throw data::invalidUseOfNull();
    switch (value.kind()) {
    case data::Value::Kind::Integer: // as its text would be read
        return static_cast<double>(value.asInteger());
    case data::Value::Kind::Text:
        return leadingNumber(value.bytes());
    default:
        return leadingNumber(value.toText());
    }
}

void ServerRow::appendNumberTo(std::string& out, std::size_t field) const {
    const data::Value value = rows_.Item(field);
    // Most numbers are whole and small, and their own text already.
    constexpr std::int64_t Exact = 1'000'000;
    if (value.kind() == data::Value::Kind::Integer && value.asInteger() <= Exact &&
        value.asInteger() >= -Exact)
        value.appendTextTo(out);
    else
        out += numberText(number(field));
}

} // namespace quillet::sync
