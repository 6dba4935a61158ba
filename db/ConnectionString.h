#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::db {

/// A connection string, `KEY=value;KEY={value with ;};...`, taken apart without changing it.
///
/// The rules are those of ODBC's SQLDriverConnect: letter case of keys does not count, the first of
/// several equal keys wins, a value that begins with "{" ends at the next "}" that is not doubled.
class ConnectionString {
public:
    explicit ConnectionString(std::string text);

    /// The value of a key without braces and without blanks around it; empty when the key is
    /// absent.
    std::string value(std::string_view key) const;

    /// Every key as it stands there, without blanks around it; empty for an entry that is more than
    /// blanks and has none.
    std::vector<std::string> keys() const;

    /// The text less every entry of a key, the other entries byte for byte as they were.
    std::string without(std::string_view key) const;

private:
    struct Entry {
        std::size_t begin; ///< of the key, blanks included
        std::size_t end;   ///< behind the ";"
        std::string key;
        std::string value;
    };

    std::string text_;
    std::vector<Entry> entries_;
};

} // namespace quillet::db
