#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::headoffice::admin {

/// An HTML table whose first column names the rows. All texts are HTML already.
class HtmlTable {
public:
    struct Column {
        std::string_view name;
        std::string_view look{}; ///< class of its cells: "number", "name", "when" or none
    };

    explicit HtmlTable(std::vector<Column> columns, const std::string& caption = {});

    /// @param cells one per column.
    void row(const std::vector<std::string>& cells);

    std::string finished() const { return text_ + "</tbody>\n</table>\n"; }

private:
    std::vector<Column> columns_;
    std::string text_;
};

} // namespace quillet::headoffice::admin
