#include "db/sqlite/SqliteCursor.h"

#include "data/AsciiText.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

namespace quillet::db {

namespace {

constexpr std::uint32_t NoLimit = 0xFFFFFFFF;

bool containsOneOf(std::string_view text, std::initializer_list<std::string_view> words) {
    return std::any_of(words.begin(), words.end(), [text](std::string_view word) {
        return text.find(word) != std::string_view::npos;
    });
}

/// Close to SQLite's affinity rules (sqlite.org/datatype3.html, 3.1), with Access's type names too.
data::DataType typeOfDeclaration(std::string_view declared) {
    const std::string upper = data::upperCase(declared);
    if (upper.find("BIGINT") != std::string::npos)
        return data::DataType::BigInt;
    if (containsOneOf(upper, {"CHAR", "CLOB", "TEXT", "MEMO"}))
        return data::DataType::WChar;
    if (containsOneOf(upper, {"BLOB", "BINARY", "IMAGE"}))
        return data::DataType::Binary;
    if (containsOneOf(upper, {"INT", "LONG", "COUNTER", "BYTE", "YESNO", "BOOL"}))
        return data::DataType::Integer;
    if (containsOneOf(upper, {"REAL", "FLOA", "DOUB", "SINGLE", "CURRENCY", "MONEY", "NUM", "DEC"}))
        return data::DataType::Double;
    return data::DataType::WChar;
}

data::DataType typeOfValue(sqlite3_stmt* statement, int column) {
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER: {
        const sqlite3_int64 value = sqlite3_column_int64(statement, column);
        const bool fits = value >= std::numeric_limits<std::int32_t>::min() &&
                          value <= std::numeric_limits<std::int32_t>::max();
        return fits ? data::DataType::Integer : data::DataType::BigInt;
    }
    case SQLITE_FLOAT:
        return data::DataType::Double;
    case SQLITE_BLOB:
        return data::DataType::Binary;
    default:
        return data::DataType::WChar;
    }
}

data::TextComparison comparisonOfCollation(const char* collation) {
    if (collation == nullptr || data::equalIgnoringCase(collation, "BINARY"))
        return data::TextComparison::Binary;
    return data::equalIgnoringCase(collation, "RTRIM") ? data::TextComparison::RTrim
                                                       : data::TextComparison::NoCase;
}

/// The n of a declared `TYPE(n)`.
std::uint32_t declaredLength(std::string_view declared) {
    std::uint32_t length = 0;
    if (const std::size_t open = declared.find('('); open != std::string_view::npos)
        std::from_chars(declared.data() + open + 1, declared.data() + declared.size(), length);
    return length == 0 ? NoLimit : length;
}

void setSizes(data::Field& field, std::string_view declared) {
    switch (field.Type) {
    case data::DataType::Integer:
        field.DefinedSize = 4;
        field.Precision = 10;
        break;
    case data::DataType::BigInt:
        field.DefinedSize = 8;
        field.Precision = 19;
        break;
    case data::DataType::Double:
        field.DefinedSize = 8;
        field.Precision = 15;
        break;
    default:
        field.DefinedSize = declaredLength(declared);
        field.longValue = field.DefinedSize == NoLimit;
        return;
    }
    field.fixedLength = true;
}

data::Field fieldOf(sqlite3_stmt* statement, int column, bool onRow) {
    data::Field field;
    if (const char* const name = sqlite3_column_name(statement, column))
        field.Name = name;
    const char* declared = nullptr;
    const char* const table = sqlite3_column_table_name(statement, column);
    const char* collation = nullptr;
    if (table != nullptr &&
        sqlite3_table_column_metadata(sqlite3_db_handle(statement),
                                      sqlite3_column_database_name(statement, column), table,
                                      sqlite3_column_origin_name(statement, column), &declared,
                                      &collation, nullptr, nullptr, nullptr) == SQLITE_OK)
        field.comparison = comparisonOfCollation(collation);
    else
        field.comparison = data::TextComparison::NoCase;
    if (declared != nullptr)
        field.Type = typeOfDeclaration(declared);
    else if (onRow)
        field.Type = typeOfValue(statement, column);
    setSizes(field, declared != nullptr ? declared : "");
    return field;
}

} // namespace

SqliteCursor::SqliteCursor(SqliteStatement statement) : statement_(std::move(statement)) {
    onRow_ = stepSqlite(statement_.get());
    const int columns = sqlite3_column_count(statement_.get());
    for (int column = 0; column < columns; ++column)
        fields_.push_back(fieldOf(statement_.get(), column, onRow_));
}

bool SqliteCursor::next() {
    if (firstPending_)
        firstPending_ = false;
    else if (onRow_)
        onRow_ = stepSqlite(statement_.get());
    return onRow_;
}

data::Value SqliteCursor::value(std::size_t column) const {
    sqlite3_stmt* const statement = statement_.get();
    const int index = static_cast<int>(column);
    const auto bytes = [&](const void* data) {
        return std::string_view(static_cast<const char*>(data),
                                static_cast<std::size_t>(sqlite3_column_bytes(statement, index)));
    };
    switch (sqlite3_column_type(statement, index)) {
    case SQLITE_INTEGER:
        return data::Value::integer(sqlite3_column_int64(statement, index));
    case SQLITE_FLOAT:
        return data::Value::real(sqlite3_column_double(statement, index));
    case SQLITE_TEXT:
        return data::Value::text(bytes(sqlite3_column_text(statement, index)));
    case SQLITE_BLOB:
        return data::Value::binary(bytes(sqlite3_column_blob(statement, index)));
    default:
        return {};
    }
}

} // namespace quillet::db
