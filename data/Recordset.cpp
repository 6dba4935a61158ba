#include "data/Recordset.h"

#include "data/AsciiText.h"
#include "data/Error.h"

#include <algorithm>
#include <array>
#include <limits>

namespace quillet::data {

namespace {

constexpr std::uint32_t NoRow = std::numeric_limits<std::uint32_t>::max();

/// The form of a text in which those that a rule calls equal are identical.
void fold(std::string& text, TextComparison comparison) {
    if (comparison == TextComparison::Access || comparison == TextComparison::RTrim)
        text.resize(text.find_last_not_of(' ') + 1);
    if (comparison == TextComparison::Access || comparison == TextComparison::NoCase)
        std::transform(text.begin(), text.end(), text.begin(), upperAscii);
}

struct Criteria {
    std::string_view column;
    std::string text;
};

[[noreturn]] void badCriteria() {
    throw Error(number::InvalidArgument,
                "Arguments are of the wrong type, are out of acceptable range, or are in conflict "
                "with one another.");
}

[[noreturn]] void failNotFound() {
    throw Error(number::ItemNotFound, "Item cannot be found in the collection corresponding to "
                                      "the requested name or ordinal.");
}

/// Reads `COLUMN = 'text'`.
Criteria parseCriteria(std::string_view criteria) {
    const std::size_t equals = criteria.find('=');
    if (equals == std::string_view::npos)
        badCriteria();
    Criteria result;
    result.column = Recordset::columnOf(criteria);
    const std::string_view quoted = trimmed(criteria.substr(equals + 1));
    if (result.column.empty() || result.column.find_first_of(" '<>") != std::string_view::npos ||
        quoted.size() < 2 || quoted.front() != '\'' || quoted.back() != '\'')
        badCriteria();
    const std::string_view body = quoted.substr(1, quoted.size() - 2);
    for (std::size_t i = 0; i < body.size(); ++i) {
        if (body[i] == '\'' && (++i == body.size() || body[i] != '\''))
            badCriteria();
        result.text += body[i];
    }
    return result;
}

} // namespace

Recordset::Recordset(FieldList fields)
    : fields_(std::move(fields)), rows_(fields_.size()), open_(true) {}

Recordset Recordset::readFrom(Cursor& cursor, std::string_view onlyColumn) {
    Recordset result(cursor.fields());
    if (onlyColumn.empty()) {
        while (cursor.next())
            result.addRow(cursor);
    } else {
        const std::size_t column = result.positionOf(onlyColumn);
        result = Recordset(FieldList{result.fields_[column]});
        while (cursor.next())
            result.addRow(std::array{cursor.value(column).keptIn(result.arena_)});
    }
    return result;
}

void Recordset::Close() {
    requireOpen();
    *this = Recordset();
}

std::int32_t Recordset::RecordCount() const {
    requireOpen();
    return static_cast<std::int32_t>(rows_.size());
}

const FieldList& Recordset::Fields() const {
    requireOpen();
    return fields_;
}

bool Recordset::Eof() const {
    requireOpen();
    return current_ >= rows_.size();
}

void Recordset::MoveFirst() {
    requireOpen();
    current_ = 0;
    requireCurrent();
}

void Recordset::MoveNext() {
    requireOpen();
    requireCurrent();
    ++current_;
}

void Recordset::Find(std::string_view criteria) {
    requireOpen();
    requireCurrent();
    Criteria wanted = parseCriteria(criteria);
    const std::size_t column = positionOf(wanted.column);
    fold(wanted.text, fields_[column].comparison);
    const ColumnIndex& index = indexOf(column);
    const auto found = index.first.find(wanted.text);
    std::uint32_t row = found == index.first.end() ? NoRow : found->second;
    while (row != NoRow && row < current_)
        row = index.nextEqual[row];
    current_ = row == NoRow ? rows_.size() : row;
}

std::string_view Recordset::columnOf(std::string_view criteria) {
    return trimmed(criteria.substr(0, criteria.find('=')));
}

Value Recordset::Item(std::size_t column) const {
    requireOpen();
    if (column >= fields_.size())
        failNotFound();
    requireCurrent();
    return rows_.at(current_, column);
}

void Recordset::addRow(std::span<const Value> cells) {
    requireOpen();
    indexes_.clear();
    rows_.append(cells);
}

void Recordset::addRow(const Cursor& cursor) {
    scratch_.resize(fields_.size());
    for (std::size_t column = 0; column < scratch_.size(); ++column)
        scratch_[column] = cursor.value(column).keptIn(arena_);
    addRow(scratch_);
}

void Recordset::requireOpen() const {
    if (!open_)
        throw Error(number::ObjectClosed, "Operation is not allowed when the object is closed.");
}

void Recordset::requireCurrent() const {
    if (current_ >= rows_.size())
        throw Error(number::NoCurrentRecord,
                    "Either BOF or EOF is True, or the current record has been deleted. Requested "
                    "operation requires a current record.");
}

std::size_t Recordset::positionOf(std::string_view column) const {
    const auto field =
        std::find_if(fields_.begin(), fields_.end(), [column](const Field& candidate) {
            return equalIgnoringCase(candidate.Name, column);
        });
    if (field == fields_.end())
        failNotFound();
    return static_cast<std::size_t>(field - fields_.begin());
}

const Recordset::ColumnIndex& Recordset::indexOf(std::size_t column) {
    if (const auto known = indexes_.find(column); known != indexes_.end())
        return known->second;
    ColumnIndex index;
    index.first.reserve(rows_.size());
    index.nextEqual.assign(rows_.size(), NoRow);
    // Backwards, so that each text ends up at its first row and chains to the later ones.
    for (std::size_t row = rows_.size(); row-- > 0;) {
        const Value value = rows_.at(row, column);
        if (value.isNull())
            continue;
        std::string text = value.toText();
        fold(text, fields_[column].comparison);
        const auto [entry, isNew] =
            index.first.try_emplace(std::move(text), static_cast<std::uint32_t>(row));
        if (!isNew) {
            index.nextEqual[row] = entry->second;
            entry->second = static_cast<std::uint32_t>(row);
        }
    }
    return indexes_.emplace(column, std::move(index)).first->second;
}

} // namespace quillet::data
