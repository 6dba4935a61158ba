#include "bench/receive/Measurements.h"
#include "bench/receive/Stopwatch.h"
#include "data/AsciiText.h"
#include "data/Recordset.h"

#include <array>
#include <iostream>
#include <stdexcept>
#include <string>

namespace quillet::bench {

namespace {

constexpr int Scans = 300; // of how many keys; a scan of all would take minutes

std::string key(int row) {
    std::string digits = std::to_string(row);
    return "Kd" + std::string(8 - digits.size(), '0') + digits;
}

/// A store table's keys, each twice in a row, under the rule of the store's codes.
data::Recordset keys(int rows) {
    data::Field field;
    field.Name = "CODE";
    field.Type = data::DataType::WChar;
    field.comparison = data::TextComparison::NoCase;
    data::Recordset result(data::FieldList{field});
    for (int row = 0; row < rows; ++row) {
        const data::Value cell = data::Value::text(result.arena().copy(key(row / 2)));
        result.addRow(std::array{cell});
    }
    return result;
}

/// What Find stands for.
void scan(data::Recordset& rows, const std::string& text) {
    for (rows.MoveFirst(); !rows.Eof(); rows.MoveNext())
        if (data::equalIgnoringCase(rows.Item(0).bytes(), text))
            return;
}

const char* found(const data::Recordset& rows) {
    return rows.Eof() ? nullptr : rows.Item(0).bytes().data(); // tells rows of equal keys apart
}

} // namespace

void measureFind(Report& report, int count) {
    std::cerr << "Find" << std::endl;
    data::Recordset rows = keys(count);
    const auto find = [&rows](const std::string& text) {
        rows.MoveFirst();
        rows.Find("CODE = '" + text + "'");
    };
    const Stopwatch finding; // the making of the index included
    for (int row = 0; row < count; ++row)
        find(key(row / 2));
    const double perFind = finding.seconds() / count;

    double seconds = 0;
    for (int i = 0; i < Scans; ++i) {
        // Spread over all rows and beyond, in the letter case of the head office.
        const std::string text = data::upperCase(key(i * (count / 2 + 100) / Scans));
        const Stopwatch scanning;
        scan(rows, text);
        seconds += scanning.seconds();
        const char* const expected = found(rows);
        find(text);
        if (found(rows) != expected)
            throw std::runtime_error("Find and a scan disagree on " + text);
    }
    report.add({"a scan / Find, " + std::to_string(count) + " rows, index made once",
                "",
                {seconds / Scans / perFind}});
}

} // namespace quillet::bench
