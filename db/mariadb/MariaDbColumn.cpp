#include "db/mariadb/MariaDbColumn.h"

#include "data/Error.h"

#include <algorithm>
#include <limits>

namespace quillet::db {

using data::DataType;

namespace {

constexpr std::uint32_t NoLimit = 0xFFFFFFFF;
constexpr unsigned BinaryCharset = 63;

/// Room for a text or bytes at the start.
constexpr std::size_t FirstRoom = 256;

void setFixed(data::Field& field, DataType type, std::uint32_t size,
              std::uint8_t precision = 0xFF) {
    field.Type = type;
    field.DefinedSize = size;
    field.Precision = precision;
    field.fixedLength = true;
}

void setInteger(data::Field& field, const MYSQL_FIELD& column, DataType signedType,
                DataType unsignedType, std::uint32_t size, std::uint8_t precision) {
    const bool isUnsigned = (column.flags & UNSIGNED_FLAG) != 0;
    setFixed(field, isUnsigned ? unsignedType : signedType, size, precision);
}

void setNumeric(data::Field& field, const MYSQL_FIELD& column) {
    // The length counts a point and a sign.
    const unsigned long others =
        (column.decimals > 0 ? 1 : 0) + ((column.flags & UNSIGNED_FLAG) != 0 ? 0 : 1);
    const unsigned long digits = column.length > others ? column.length - others : 0;
    setFixed(field, DataType::Numeric, 19, static_cast<std::uint8_t>(std::min(digits, 254UL)));
    field.NumericScale = static_cast<std::uint8_t>(std::min(column.decimals, 254U));
}

void setTimestamp(data::Field& field, const MYSQL_FIELD& column) {
    const unsigned digits = std::min(column.decimals, 9U);
    setFixed(field, DataType::DBTimeStamp, 16,
             static_cast<std::uint8_t>(digits > 0 ? 20 + digits : 19));
    field.NumericScale = static_cast<std::uint8_t>(digits);
}

/// @param length in characters, or in bytes (of a BIT: in bits).
void setVariable(data::Field& field, DataType type, unsigned long length) {
    field.Type = type;
    field.DefinedSize =
        length > 0 && length < NoLimit / 2 ? static_cast<std::uint32_t>(length) : NoLimit;
}

void setTextOrBytes(data::Field& field, const MYSQL_FIELD& column) {
    if (column.charsetnr == BinaryCharset)
        return setVariable(field, DataType::Binary, column.length);
    const MARIADB_CHARSET_INFO* const charset = mariadb_get_charset_by_nr(column.charsetnr);
    setVariable(field, DataType::WChar,
                column.length / (charset != nullptr ? charset->char_maxlen : 4));
}

void setType(data::Field& field, const MYSQL_FIELD& column, bool bigintAsInt) {
    switch (column.type) {
    case MYSQL_TYPE_TINY:
        return setInteger(field, column, DataType::TinyInt, DataType::UnsignedTinyInt, 1, 3);
    case MYSQL_TYPE_SHORT:
    case MYSQL_TYPE_YEAR:
        return setInteger(field, column, DataType::SmallInt, DataType::UnsignedSmallInt, 2, 5);
    case MYSQL_TYPE_LONGLONG:
        if (!bigintAsInt)
            return setInteger(field, column, DataType::BigInt, DataType::UnsignedBigInt, 8,
                              (column.flags & UNSIGNED_FLAG) != 0 ? 20 : 19);
        [[fallthrough]];
    case MYSQL_TYPE_INT24:
    case MYSQL_TYPE_LONG:
        return setInteger(field, column, DataType::Integer, DataType::UnsignedInt, 4, 10);
    case MYSQL_TYPE_FLOAT:
        return setFixed(field, DataType::Single, 4, 7);
    case MYSQL_TYPE_DOUBLE:
        return setFixed(field, DataType::Double, 8, 15);
    case MYSQL_TYPE_DECIMAL:
    case MYSQL_TYPE_NEWDECIMAL:
        return setNumeric(field, column);
    case MYSQL_TYPE_DATE:
    case MYSQL_TYPE_NEWDATE:
        return setFixed(field, DataType::DBDate, 6, 10);
    case MYSQL_TYPE_TIME:
        return setFixed(field, DataType::DBTime, 6, 8);
    case MYSQL_TYPE_DATETIME:
    case MYSQL_TYPE_TIMESTAMP:
        return setTimestamp(field, column);
    case MYSQL_TYPE_BIT:
        if (column.length == 1)
            return setFixed(field, DataType::Boolean, 2);
        return setVariable(field, DataType::Binary, column.length);
    case MYSQL_TYPE_NULL:
        return setVariable(field, DataType::WChar, 0);
    case MYSQL_TYPE_JSON: // in MySQL; its texts are marked as bytes
        field.longValue = true;
        return setVariable(field, DataType::WChar, column.length / 4);
    case MYSQL_TYPE_TINY_BLOB:
    case MYSQL_TYPE_BLOB:
    case MYSQL_TYPE_MEDIUM_BLOB:
    case MYSQL_TYPE_LONG_BLOB:
    case MYSQL_TYPE_GEOMETRY:
        field.longValue = true;
        [[fallthrough]];
    default:
        return setTextOrBytes(field, column);
    }
}

/// As what the library delivers a type's cells.
enum_field_types fetchedAs(DataType type) {
    switch (type) {
    case DataType::TinyInt:
    case DataType::UnsignedTinyInt:
    case DataType::SmallInt:
    case DataType::UnsignedSmallInt:
    case DataType::Integer:
    case DataType::UnsignedInt:
    case DataType::BigInt:
    case DataType::UnsignedBigInt:
        return MYSQL_TYPE_LONGLONG;
    case DataType::Single:
        return MYSQL_TYPE_FLOAT;
    case DataType::Double:
        return MYSQL_TYPE_DOUBLE;
    case DataType::DBDate:
        return MYSQL_TYPE_DATE;
    case DataType::DBTime:
        return MYSQL_TYPE_TIME;
    case DataType::DBTimeStamp:
        return MYSQL_TYPE_DATETIME;
    case DataType::Numeric:
        return MYSQL_TYPE_STRING;
    default:
        return MYSQL_TYPE_BLOB;
    }
}

data::DateTime dateTimeOf(const MYSQL_TIME& time) {
    data::DateTime result;
    result.year = static_cast<std::int16_t>(time.year);
    result.month = static_cast<std::uint8_t>(time.month);
    result.day = static_cast<std::uint8_t>(time.day);
    result.hour = static_cast<std::uint8_t>(time.hour);
    result.minute = static_cast<std::uint8_t>(time.minute);
    result.second = static_cast<std::uint8_t>(time.second);
    result.nanosecond = static_cast<std::uint32_t>(time.second_part) * 1000;
    return result;
}

data::DateTime timeOf(const MYSQL_TIME& time) {
    data::DateTime result;
    result.hour = static_cast<std::uint8_t>(time.hour);
    result.minute = static_cast<std::uint8_t>(time.minute);
    result.second = static_cast<std::uint8_t>(time.second);
    return result;
}

} // namespace

data::Field mariaDbField(const MYSQL_FIELD& column, bool bigintAsInt) {
    data::Field field;
    field.Name = std::string(column.name, column.name_length);
    // The ODBC driver says of a column that numbers itself that it takes Nulls, which is so.
    field.nullable =
        (column.flags & NOT_NULL_FLAG) == 0 || (column.flags & AUTO_INCREMENT_FLAG) != 0;
    setType(field, column, bigintAsInt);
    // A zero date reads as Null even where the column allows none.
    if (field.Type == DataType::DBDate || field.Type == DataType::DBTimeStamp)
        field.nullable = true;
    return field;
}

MariaDbCell::MariaDbCell(const MYSQL_FIELD& column, const data::Field& field)
    : type_(field.Type), unsigned_((column.flags & UNSIGNED_FLAG) != 0),
      fetchedAs_(fetchedAs(field.Type)) {
    if (fetchedAs_ == MYSQL_TYPE_STRING || fetchedAs_ == MYSQL_TYPE_BLOB)
        bytes_.resize(std::clamp<std::size_t>(column.length, 1, FirstRoom));
}

MYSQL_BIND MariaDbCell::binding() {
    MYSQL_BIND binding = {};
    binding.buffer_type = fetchedAs_;
    binding.is_unsigned = unsigned_;
    binding.length = &length_;
    binding.is_null = &isNull_;
    binding.error = &truncated_;
    switch (fetchedAs_) {
    case MYSQL_TYPE_STRING:
    case MYSQL_TYPE_BLOB:
        binding.buffer = bytes_.data();
        binding.buffer_length = bytes_.size();
        break;
    case MYSQL_TYPE_DATE:
    case MYSQL_TYPE_TIME:
    case MYSQL_TYPE_DATETIME:
        binding.buffer = &time_;
        binding.buffer_length = sizeof time_;
        break;
    default:
        binding.buffer = &number_;
        binding.buffer_length = sizeof number_;
    }
    return binding;
}

bool MariaDbCell::complete(MYSQL_STMT* statement, unsigned number) {
    if (isNull_)
        return true;
    const auto outside = [this](std::int64_t lowest, std::int64_t highest) {
        return number_.integer < lowest || number_.integer > highest;
    };
    using Int = std::numeric_limits<std::int32_t>;
    using UnsignedInt = std::numeric_limits<std::uint32_t>;
    switch (type_) {
    case DataType::Integer:
        if (outside(Int::min(), Int::max()))
            throw data::providerError("22003", "A BIGINT is too large for an INT.");
        return true;
    case DataType::UnsignedInt:
        if (outside(0, UnsignedInt::max()))
            throw data::providerError("22003", "A BIGINT is too large for an INT.");
        return true;
    case DataType::DBTime:
        if (time_.neg || time_.day != 0 || time_.hour > 23)
            throw data::providerError("22007", "A TIME is no time of day.");
        return true;
    default:
        break;
    }
    if (bytes_.empty() || length_ <= bytes_.size())
        return true;
    longBytes_.resize(std::max<std::size_t>(longBytes_.size(), length_));
    MYSQL_BIND whole = binding();
    whole.buffer = longBytes_.data();
    whole.buffer_length = longBytes_.size();
    return mysql_stmt_fetch_column(statement, &whole, number, 0) == 0;
}

data::Value MariaDbCell::value() const {
    if (isNull_)
        return {};
    const std::vector<char>& place = length_ > bytes_.size() ? longBytes_ : bytes_;
    const std::string_view bytes(place.data(), place.empty() ? 0 : length_);
    switch (fetchedAs_) {
    case MYSQL_TYPE_LONGLONG:
        return unsigned_ ? data::Value::unsignedInteger(static_cast<std::uint64_t>(number_.integer))
                         : data::Value::integer(number_.integer);
    case MYSQL_TYPE_FLOAT:
        return data::Value::single(number_.single);
    case MYSQL_TYPE_DOUBLE:
        return data::Value::real(number_.real);
    case MYSQL_TYPE_DATE:
    case MYSQL_TYPE_DATETIME:
        if (time_.month == 0 || time_.day == 0)
            return {};
        return fetchedAs_ == MYSQL_TYPE_DATE ? data::Value::date(dateTimeOf(time_))
                                             : data::Value::dateTime(dateTimeOf(time_));
    case MYSQL_TYPE_TIME:
        return data::Value::time(timeOf(time_));
    case MYSQL_TYPE_STRING:
        return data::Value::decimal(bytes);
    default:
        break;
    }
    if (type_ == DataType::Boolean)
        return data::Value::boolean(!bytes.empty() && bytes.front() != '\0');
    return type_ == DataType::Binary ? data::Value::binary(bytes) : data::Value::text(bytes);
}

} // namespace quillet::db
