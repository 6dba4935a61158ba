#include "bench/pieces/MemberRows.h"

#include <array>
#include <string>
#include <vector>

namespace quillet::bench {

namespace {

constexpr std::array<const char*, 8> Texts{
    "강한결", "새벗시 물푸레구 한들로 12", " ",          "010-0000-1234",
    "",       "m1234@example.com",         "2024-05-01", "단골 -- 창가 자리"};

data::FieldList memberFields() {
    data::FieldList fields(40);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        data::Field& field = fields[i];
        field.Name = i == 0 ? "CT_CODE" : "COL" + std::to_string(i);
        field.nullable = i != 0;
        if (i % 5 == 3) {
            field.Type = data::DataType::Integer;
            field.DefinedSize = 4;
            field.fixedLength = true;
        } else {
            field.Type = data::DataType::WChar;
            field.DefinedSize = i % 5 == 4 ? 100 : 20;
            field.comparison = data::TextComparison::NoCase;
        }
    }
    return fields;
}

} // namespace

data::Recordset memberRows(int rows) {
    data::Recordset result(memberFields());
    std::vector<data::Value> row(result.Fields().size());
    for (int number = 0; number < rows; ++number) {
        const std::string code = std::to_string(1000100000000000 + number);
        row[0] = data::Value::text(result.arena().copy(code));
        for (std::size_t i = 1; i < row.size(); ++i) {
            if (i % 5 == 3)
                row[i] = data::Value::integer(number % 1000);
            else if (i % 7 == 0)
                row[i] = data::Value();
            else
                row[i] =
                    data::Value::text(Texts[(i + static_cast<std::size_t>(number)) % Texts.size()]);
        }
        result.addRow(row);
    }
    return result;
}

} // namespace quillet::bench
