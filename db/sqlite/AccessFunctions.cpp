#include "db/sqlite/AccessFunctions.h"

#include "data/Error.h"

#include <sqlite3.h>

#include <climits>
#include <string>
#include <string_view>

namespace quillet::db {

namespace {

bool isText(sqlite3_value* value) {
    const int type = sqlite3_value_type(value);
    return type == SQLITE_TEXT || type == SQLITE_BLOB;
}

std::string_view textOf(sqlite3_value* value) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
    if (text == nullptr)
        return {};
    return {text, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

void setText(sqlite3_context* context, const std::string& text) {
    sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

void join(sqlite3_context* context, int, sqlite3_value** arguments) {
    std::string result(textOf(arguments[0]));
    result += textOf(arguments[1]);
    setText(context, result);
}

void addIntegers(sqlite3_context* context, sqlite3_int64 a, sqlite3_int64 b) {
    const bool overflows = b > 0 ? a > LLONG_MAX - b : a < LLONG_MIN - b;
    if (overflows)
        sqlite3_result_double(context, static_cast<double>(a) + static_cast<double>(b));
    else
        sqlite3_result_int64(context, a + b);
}

void plus(sqlite3_context* context, int count, sqlite3_value** arguments) {
    sqlite3_value* const a = arguments[0];
    sqlite3_value* const b = arguments[1];
    if (sqlite3_value_type(a) == SQLITE_NULL || sqlite3_value_type(b) == SQLITE_NULL)
        return; // the result is Null unless it is set
    if (isText(a) && isText(b)) {
        join(context, count, arguments);
        return;
    }
    const int typeOfA = sqlite3_value_numeric_type(a);
    const int typeOfB = sqlite3_value_numeric_type(b);
    if (isText(a) || isText(b)) {
        sqlite3_result_error(context, "Data type mismatch in criteria expression.", -1);
        sqlite3_result_error_code(context, SQLITE_MISMATCH);
        return;
    }
    if (typeOfA == SQLITE_INTEGER && typeOfB == SQLITE_INTEGER)
        addIntegers(context, sqlite3_value_int64(a), sqlite3_value_int64(b));
    else
        sqlite3_result_double(context, sqlite3_value_double(a) + sqlite3_value_double(b));
}

} // namespace

void addAccessFunctions(sqlite3* database) {
    constexpr int Flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
    const int plusAdded = sqlite3_create_function_v2(database, "access_plus", 2, Flags, nullptr,
                                                     plus, nullptr, nullptr, nullptr);
    const int joinAdded = sqlite3_create_function_v2(database, "access_join", 2, Flags, nullptr,
                                                     join, nullptr, nullptr, nullptr);
    if (plusAdded != SQLITE_OK || joinAdded != SQLITE_OK)
        throw data::providerError("HY001", sqlite3_errmsg(database));
}

} // namespace quillet::db
