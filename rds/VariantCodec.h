#pragma once

#include "rds/ByteReader.h"
#include "rds/ByteWriter.h"
#include "rds/Variant.h"

#include <cstddef>
#include <string_view>

namespace quillet::rds {

/// What stands in front of the tablegram of a recordset that is not Nothing: type code, null flag
/// and the identifiers of interface and implementation (MS-ADTG 2.2.3.13.9).
std::string_view recordsetHead();

/// Appends a value with its type code (MS-ADTG 2.2.1). A recordset is written from its first row
/// on and stands there afterwards.
/// @throws data::Error 13 for an array whose elements are not of its element type, and as
///         TablegramWriter.
void encodeValue(const Variant& value, ByteWriter& out);

/// Reads the values of one message. Whatever they claim about themselves, they are given no more
/// memory than their bytes justify.
class VariantDecoder {
public:
    static constexpr int MaxDepth = 16; ///< arrays within arrays

    /// A message may have this many values, elements included, and one more for every so many
    /// bytes: in memory a value is much larger than the smallest ones are on the wire.
    static constexpr std::size_t FreeValues = std::size_t{32} << 10U;
    static constexpr std::size_t BytesPerValue = 8;

    explicit VariantDecoder(ByteReader& in)
        : in_(in), valuesLeft_(FreeValues + in.remaining() / BytesPerValue) {}

    /// Reads a value with its type code.
    /// @throws data::Error `number::Unspecified` when the bytes are no such value.
    Variant next();

private:
    Variant value(int depth);
    Variant scalar(VarType type);
    VariantArray array(VarType elementType, int depth);
    BStr string();
    ScodeError error();
    Decimal decimal();
    Dispatch dispatch();
    void takeFromBudget(std::size_t values);

    ByteReader& in_;
    std::size_t valuesLeft_;
};

} // namespace quillet::rds
