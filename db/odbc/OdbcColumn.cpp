#include "db/odbc/OdbcColumn.h"

#include "data/Utf16.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace quillet::db {

using data::DataType;

namespace {

constexpr std::uint32_t NoLimit = 0xFFFFFFFF;

/// Longer texts (in characters) and bytes are fetched piece by piece.
constexpr SQLULEN LongestBound = 4000;

struct Description {
    SQLSMALLINT sqlType = 0;
    SQLULEN size = 0;
    SQLSMALLINT digits = 0;
    bool isUnsigned = false;
};

template <typename T>
T read(std::string_view cell) {
    T result{};
    std::memcpy(&result, cell.data(), std::min(sizeof result, cell.size()));
    return result;
}

SQLLEN numericAttribute(const OdbcHandle& statement, SQLUSMALLINT number, SQLUSMALLINT attribute) {
    SQLLEN value = 0;
    if (!SQL_SUCCEEDED(
            SQLColAttributeW(statement.get(), number, attribute, nullptr, 0, nullptr, &value)))
        return 0;
    return value;
}

void asFixed(OdbcColumn& column, DataType type, std::uint32_t definedSize, std::uint8_t precision,
             SQLSMALLINT cType, std::size_t cellSize) {
    column.field.Type = type;
    column.field.DefinedSize = definedSize;
    column.field.Precision = precision;
    column.field.fixedLength = true;
    column.cType = cType;
    column.cellSize = cellSize;
}

void asInteger(OdbcColumn& column, DataType signedType, DataType unsignedType, bool isUnsigned,
               std::uint32_t bytes, std::uint8_t precision) {
    // Drivers of old databases do not know the 64-bit C types.
    const bool wide = bytes == 8;
    const SQLSMALLINT signedC = wide ? SQL_C_SBIGINT : SQL_C_SLONG;
    const SQLSMALLINT unsignedC = wide ? SQL_C_UBIGINT : SQL_C_ULONG;
    asFixed(column, isUnsigned ? unsignedType : signedType, bytes, precision,
            isUnsigned ? unsignedC : signedC, wide ? 8 : 4);
}

/// Texts and bytes do not count as of fixed length even where the column is: drivers deliver them
/// without their padding, and a padded one could not be told from one that ends in blanks.
void asVariable(OdbcColumn& column, DataType type, const Description& described, SQLLEN octetLength,
                OdbcTexts texts) {
    column.field.Type = type;
    const bool bytes = type == DataType::Binary;
    const bool limited = described.size > 0 && described.size < NoLimit / 2;
    column.field.DefinedSize = limited ? static_cast<std::uint32_t>(described.size) : NoLimit;
    if (type == DataType::Char && limited && octetLength > 0)
        column.field.DefinedSize =
            std::max(column.field.DefinedSize, static_cast<std::uint32_t>(octetLength));
    const bool narrow = texts == OdbcTexts::Utf8;
    column.cType = bytes ? SQL_C_BINARY : narrow ? SQL_C_CHAR : SQL_C_WCHAR;
    if (!limited || described.size > LongestBound)
        return;
    column.cellSize = bytes    ? described.size
                      : narrow ? odbcUtf8CellSize(described.size)
                               : odbcWideCellSize(described.size);
}

void setNumeric(OdbcColumn& column, const Description& described) {
    // Room for the sign, the point and the terminator.
    asFixed(column, DataType::Numeric, 19,
            static_cast<std::uint8_t>(std::min<SQLULEN>(described.size, 254)), SQL_C_CHAR,
            described.size + 8);
    column.field.NumericScale =
        static_cast<std::uint8_t>(std::clamp<int>(described.digits, 0, 254));
}

void setTimestamp(OdbcColumn& column, const Description& described) {
    const int digits = std::clamp<int>(described.digits, 0, 9);
    // "YYYY-MM-DD HH:MM:SS", and a point where digits follow.
    asFixed(column, DataType::DBTimeStamp, 16,
            static_cast<std::uint8_t>(digits > 0 ? 20 + digits : 19), SQL_C_TYPE_TIMESTAMP,
            sizeof(SQL_TIMESTAMP_STRUCT));
    column.field.NumericScale = static_cast<std::uint8_t>(digits);
}

void setType(OdbcColumn& column, const Description& described, SQLLEN octetLength,
             OdbcTexts texts) {
    switch (described.sqlType) {
    case SQL_BIT:
        return asFixed(column, DataType::Boolean, 2, 0xFF, SQL_C_BIT, 1);
    case SQL_TINYINT:
        return asInteger(column, DataType::TinyInt, DataType::UnsignedTinyInt, described.isUnsigned,
                         1, 3);
    case SQL_SMALLINT:
        return asInteger(column, DataType::SmallInt, DataType::UnsignedSmallInt,
                         described.isUnsigned, 2, 5);
    case SQL_INTEGER:
        return asInteger(column, DataType::Integer, DataType::UnsignedInt, described.isUnsigned, 4,
                         10);
    case SQL_BIGINT:
        return asInteger(column, DataType::BigInt, DataType::UnsignedBigInt, described.isUnsigned,
                         8, described.isUnsigned ? 20 : 19);
    case SQL_REAL:
        // Not as SQL_C_FLOAT: MariaDB's driver writes those of a block 8 bytes apart (3.1.15).
        return asFixed(column, DataType::Single, 4, 7, SQL_C_DOUBLE, sizeof(double));
    case SQL_FLOAT:
    case SQL_DOUBLE:
        return asFixed(column, DataType::Double, 8, 15, SQL_C_DOUBLE, sizeof(double));
    case SQL_DECIMAL:
    case SQL_NUMERIC:
        return setNumeric(column, described);
    case SQL_TYPE_DATE:
        return asFixed(column, DataType::DBDate, 6, 10, SQL_C_TYPE_DATE, sizeof(SQL_DATE_STRUCT));
    case SQL_TYPE_TIME:
        return asFixed(column, DataType::DBTime, 6, 8, SQL_C_TYPE_TIME, sizeof(SQL_TIME_STRUCT));
    case SQL_TYPE_TIMESTAMP:
        return setTimestamp(column, described);
    case SQL_GUID:
        return asFixed(column, DataType::Guid, 16, 0xFF, SQL_C_GUID, 16);
    case SQL_LONGVARBINARY:
        column.field.longValue = true;
        [[fallthrough]];
    case SQL_BINARY:
    case SQL_VARBINARY:
        return asVariable(column, DataType::Binary, described, octetLength, texts);
    case SQL_LONGVARCHAR:
        column.field.longValue = true;
        [[fallthrough]];
    case SQL_CHAR:
    case SQL_VARCHAR:
        return asVariable(column, DataType::Char, described, octetLength, texts);
    case SQL_WLONGVARCHAR:
        column.field.longValue = true;
        [[fallthrough]];
    default: // SQL_WCHAR and SQL_WVARCHAR; a type unknown here reads as text
        return asVariable(column, DataType::WChar, described, octetLength, texts);
    }
}

data::DateTime dateOf(SQLSMALLINT year, SQLUSMALLINT month, SQLUSMALLINT day) {
    data::DateTime result;
    result.year = year;
    result.month = static_cast<std::uint8_t>(month);
    result.day = static_cast<std::uint8_t>(day);
    return result;
}

void setTime(data::DateTime& value, SQLUSMALLINT hour, SQLUSMALLINT minute, SQLUSMALLINT second) {
    value.hour = static_cast<std::uint8_t>(hour);
    value.minute = static_cast<std::uint8_t>(minute);
    value.second = static_cast<std::uint8_t>(second);
}

/// Brings a driver's decimal into its plain form: a point, and a digit in front of it.
data::Value decimalOf(std::string_view text, char* room) {
    char* out = room;
    if (!text.empty() && text.front() == '-')
        *out++ = '-';
    if (!text.empty() && (text.front() == '-' || text.front() == '+'))
        text.remove_prefix(1);
    if (text.empty() || text.front() == '.' || text.front() == ',')
        *out++ = '0';
    out = std::transform(text.begin(), text.end(), out, [](char c) { return c == ',' ? '.' : c; });
    return data::Value::decimal({room, static_cast<std::size_t>(out - room)});
}

} // namespace

OdbcColumn describeOdbcColumn(const OdbcHandle& statement, SQLUSMALLINT number, OdbcTexts texts) {
    OdbcColumn column;
    Description described;
    std::array<SQLWCHAR, 512> name{};
    SQLSMALLINT nameLength = 0;
    SQLSMALLINT nullable = SQL_NULLABLE_UNKNOWN;
    statement.check(SQLDescribeColW(
        statement.get(), number, name.data(), static_cast<SQLSMALLINT>(name.size()), &nameLength,
        &described.sqlType, &described.size, &described.digits, &nullable));
    described.isUnsigned = numericAttribute(statement, number, SQL_DESC_UNSIGNED) == SQL_TRUE;
    column.field.Name = utf8OfOdbc(name.data(), name.size(), nameLength);
    column.field.nullable = nullable != SQL_NO_NULLS;
    setType(column, described, numericAttribute(statement, number, SQL_DESC_OCTET_LENGTH), texts);
    // A zero date reads as Null even where the column allows none.
    if (column.cType == SQL_C_TYPE_DATE || column.cType == SQL_C_TYPE_TIMESTAMP)
        column.field.nullable = true;
    return column;
}

bool deliversUtf8(SQLHDBC connection) {
    // One character of each length that UTF-8 has.
    constexpr std::string_view Probe = "e\u00E9\uD55C\U0001F600";
    const OdbcHandle statement(SQL_HANDLE_STMT, SQL_HANDLE_DBC, connection);
    OdbcText query("SELECT '" + std::string(Probe) + "'");
    std::array<char, 64> cell{};
    SQLLEN length = 0;
    return SQL_SUCCEEDED(SQLExecDirectW(statement.get(), query.data(), SQL_NTS)) &&
           SQL_SUCCEEDED(SQLFetch(statement.get())) &&
           SQL_SUCCEEDED(SQLGetData(statement.get(), 1, SQL_C_CHAR, cell.data(),
                                    static_cast<SQLLEN>(cell.size()), &length)) &&
           length == static_cast<SQLLEN>(Probe.size()) &&
           std::string_view(cell.data(), Probe.size()) == Probe;
}

data::Value odbcValue(const OdbcColumn& column, std::string_view cell, char* room) {
    switch (column.cType) {
    case SQL_C_BIT:
        return data::Value::boolean(read<unsigned char>(cell) != 0);
    case SQL_C_SLONG:
        return data::Value::integer(read<SQLINTEGER>(cell));
    case SQL_C_ULONG:
        return data::Value::unsignedInteger(read<SQLUINTEGER>(cell));
    case SQL_C_SBIGINT:
        return data::Value::integer(read<std::int64_t>(cell));
    case SQL_C_UBIGINT:
        return data::Value::unsignedInteger(read<std::uint64_t>(cell));
    case SQL_C_DOUBLE: {
        const auto number = read<double>(cell);
        return column.field.Type == DataType::Single
                   ? data::Value::single(static_cast<float>(number))
                   : data::Value::real(number);
    }
    case SQL_C_CHAR:
        return column.field.Type == DataType::Numeric ? decimalOf(cell, room)
                                                      : data::Value::text(cell);
    case SQL_C_TYPE_DATE: {
        const auto raw = read<SQL_DATE_STRUCT>(cell);
        const data::DateTime date = dateOf(raw.year, raw.month, raw.day);
        return date.month == 0 || date.day == 0 ? data::Value() : data::Value::date(date);
    }
    case SQL_C_TYPE_TIME: {
        const auto raw = read<SQL_TIME_STRUCT>(cell);
        data::DateTime time;
        setTime(time, raw.hour, raw.minute, raw.second);
        return data::Value::time(time);
    }
    case SQL_C_TYPE_TIMESTAMP: {
        const auto raw = read<SQL_TIMESTAMP_STRUCT>(cell);
        data::DateTime moment = dateOf(raw.year, raw.month, raw.day);
        setTime(moment, raw.hour, raw.minute, raw.second);
        moment.nanosecond = raw.fraction;
        return moment.month == 0 || moment.day == 0 ? data::Value() : data::Value::dateTime(moment);
    }
    case SQL_C_GUID:
        std::memcpy(room, cell.data(), cell.size());
        return data::Value::guid({room, cell.size()});
    case SQL_C_BINARY:
        return data::Value::binary(cell);
    default:
        return data::Value::text({room, data::utf16LeToUtf8(cell.data(), cell.size() / 2, room)});
    }
}

} // namespace quillet::db
