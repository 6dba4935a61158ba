#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillet::headoffice {

/// `UPDATE table SET column = value, ... WHERE column = 'text' AND ...`, taken apart. Values are
/// literals less their quotes, or `NOW()`.
struct UpdateStatement {
    using Column = std::pair<std::string, std::string>; ///< name in upper case, value

    std::string table; ///< in upper case
    std::vector<Column> values;
    std::vector<Column> keys;
    bool isReport = false; ///< RECEIVE_VER by POS_ID and RCT_CODE, in this order
};

/// What counters may write: the report of their version, which is an update of `POS` by its two
/// keys, and updates of the same form of more tables where the head office says so.
class WriteGuard {
public:
    static constexpr std::string_view ReportTable = "POS";

    /// @param tables beside the report's, of which every column may be written.
    explicit WriteGuard(std::vector<std::string> tables = {});

    /// @return the statement, which says nothing but this.
    /// @throws data::Error number::CommandText with a sentence for the caller when it is another
    /// one.
    UpdateStatement require(std::string_view statement) const;

private:
    std::vector<std::string> tables_; ///< in upper case
};

} // namespace quillet::headoffice
