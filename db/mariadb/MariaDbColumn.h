#pragma once

#include "data/Field.h"
#include "data/Value.h"
#include "db/mariadb/MariaDbApi.h"

#include <cstdint>
#include <vector>

namespace quillet::db {

/// What a result's column is, in the terms in which MariaDB's ODBC driver (3.1.15) describes it:
/// what is sent to the counters must not depend on the way to the database.
/// @param bigintAsInt see MariaDbLogin.
data::Field mariaDbField(const MYSQL_FIELD& column, bool bigintAsInt);

/// Where the client library puts the cells of a column, one at a time.
class MariaDbCell {
public:
    /// @param field what mariaDbField() made of the column.
    MariaDbCell(const MYSQL_FIELD& column, const data::Field& field);
    MariaDbCell(const MariaDbCell&) = delete;
    MariaDbCell& operator=(const MariaDbCell&) = delete;

    /// How to bind it: pointers into the cell.
    MYSQL_BIND binding();

    /// Reads the rest of a long text or of long bytes, and looks whether the value can be had.
    /// @param number of the column, from 0.
    /// @return false when the library failed.
    /// @throws Error for a number or a time that its type cannot hold.
    bool complete(MYSQL_STMT* statement, unsigned number);

    /// The cell as a value, which borrows from it. Zero dates are Null.
    data::Value value() const;

private:
    data::DataType type_;
    bool unsigned_;
    enum_field_types fetchedAs_;
    unsigned long length_ = 0;
    my_bool isNull_ = 0;
    my_bool truncated_ = 0;
    union Number {
        std::int64_t integer;
        float single;
        double real;
    } number_ = {0};
    MYSQL_TIME time_ = {};
    std::vector<char> bytes_;     ///< texts, bytes and decimals as long as most are
    std::vector<char> longBytes_; ///< those that are longer; grows to the longest
};

} // namespace quillet::db
