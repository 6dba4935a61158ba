#include "headoffice/admin/HtmlTable.h"

#include <utility>

namespace quillet::headoffice::admin {

namespace {

std::string look(const HtmlTable::Column& column) {
    return column.look.empty() ? "" : " class=\"" + std::string(column.look) + '"';
}

} // namespace

// The roles are what the elements have anyhow, until the style sheet makes blocks of them.

HtmlTable::HtmlTable(std::vector<Column> columns, const std::string& caption)
    : columns_(std::move(columns)), text_("<table role=\"table\">\n") {
    if (!caption.empty())
        text_ += "<caption>" + caption + "</caption>\n";
    text_ += "<thead role=\"rowgroup\"><tr role=\"row\">";
    for (const Column& column : columns_) {
        text_ += "<th scope=\"col\" role=\"columnheader\"";
        text_ += look(column);
        text_ += '>';
        text_ += column.name;
        text_ += "</th>";
    }
    text_ += "</tr></thead>\n<tbody role=\"rowgroup\">\n";
}

void HtmlTable::row(const std::vector<std::string>& cells) {
    text_ += "<tr role=\"row\"><th scope=\"row\" role=\"rowheader\">" + cells.front() + "</th>";
    for (std::size_t i = 1; i < columns_.size(); ++i) {
        text_ += "<td role=\"cell\" data-label=\"";
        text_ += columns_[i].name;
        text_ += '"';
        text_ += look(columns_[i]);
        text_ += '>' + cells[i] + "</td>";
    }
    text_ += "</tr>\n";
}

} // namespace quillet::headoffice::admin
