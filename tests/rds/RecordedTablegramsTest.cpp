#include "rds/VariantCodec.h"
#include "rds/tablegram/TablegramReader.h"
#include "tests/support/Hex.h"
#include "tests/support/TempFolder.h"

#include <boost/algorithm/hex.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

// Recordsets that ADO itself has saved, each as a tablegram and as XML: the XML says what reading
// the tablegram must give, to the last byte. They lie outside of the sources, see folder().

namespace {

using namespace quillet;
using boost::property_tree::ptree;
using data::DataType;
using Kind = data::Value::Kind;
using Row = std::map<std::string, std::string>; ///< without the columns that are Null

std::filesystem::path folder() {
    const char* given = std::getenv("QUILLET_ADTG_DIR");
    return given != nullptr ? given : QUILLET_SOURCE_DIR "/../shared/adtg";
}

struct Xml {
    std::vector<std::string> columns; ///< the attributes' names
    data::FieldList fields;
    std::map<std::string, Row> rows; ///< as they are after the changes, by their key
    bool changed = false;            ///< there are pending changes
};

DataType typeOf(const ptree& datatype) {
    static const std::map<std::string, DataType> types{
        {"int", DataType::Integer},
        {"i1", DataType::TinyInt},
        {"i2", DataType::SmallInt},
        {"i8", DataType::BigInt},
        {"ui1", DataType::UnsignedTinyInt},
        {"ui2", DataType::UnsignedSmallInt},
        {"ui4", DataType::UnsignedInt},
        {"ui8", DataType::UnsignedBigInt},
        {"r4", DataType::Single},
        {"float", DataType::Double},
        {"boolean", DataType::Boolean},
        {"uuid", DataType::Guid},
        {"bin.hex", DataType::Binary},
        {"string", DataType::WChar},
        {"string str", DataType::Char},
        {"number currency", DataType::Currency},
        {"number decimal", DataType::Decimal},
        {"number numeric", DataType::Numeric},
        {"number varnumeric", DataType::VarNumeric},
        {"dateTime timestamp", DataType::DBTimeStamp},
        {"dateTime variantdate", DataType::Date},
        {"dateTime filetime", DataType::FileTime}};
    const std::string kind = datatype.get("<xmlattr>.rs:dbtype", "");
    return types.at(datatype.get<std::string>("<xmlattr>.dt:type") +
                    (kind.empty() ? "" : " " + kind));
}

data::Field fieldOf(const ptree& column) {
    const ptree& datatype = column.get_child("s:datatype");
    data::Field field;
    field.Name = column.get("<xmlattr>.rs:name", column.get<std::string>("<xmlattr>.name"));
    field.Type = typeOf(datatype);
    field.DefinedSize = datatype.get<std::uint32_t>("<xmlattr>.dt:maxLength");
    if (field.Type == DataType::Date || field.Type == DataType::FileTime)
        field.DefinedSize = 8; // the XML tells that of a time stamp
    field.Precision = datatype.get<std::uint8_t>("<xmlattr>.rs:precision");
    field.NumericScale = datatype.get<std::uint8_t>("<xmlattr>.rs:scale", 0);
    field.nullable =
        column.get("<xmlattr>.rs:nullable", false) || datatype.get("<xmlattr>.rs:maybenull", true);
    field.fixedLength = datatype.get("<xmlattr>.rs:fixedlength", false);
    field.longValue = datatype.get("<xmlattr>.rs:long", false);
    return field;
}

/// Adds the rows below an element; those of an update begin as they were before it.
void addRows(const ptree& element, Row before, Xml& xml) {
    for (const auto& [name, child] : element) {
        if (name == "rs:original") {
            for (const auto& [attribute, value] : child.get_child("z:row.<xmlattr>"))
                before[attribute] = value.data();
        } else if (name == "z:row") {
            Row row = before;
            for (const auto& [attribute, value] : child.get_child("<xmlattr>"))
                row[attribute] = value.data();
            std::istringstream nulls(row["rs:forcenull"]);
            row.erase("rs:forcenull");
            for (std::string null; nulls >> null;)
                row.erase(null);
            xml.rows[row[xml.columns.at(0)]] = row;
        } else {
            xml.changed = true;
            if (name != "rs:delete")
                addRows(child, {}, xml);
        }
    }
}

Xml parse(const std::filesystem::path& file) {
    ptree tree;
    read_xml(file.string(), tree);
    Xml result;
    for (const auto& [name, column] : tree.get_child("xml.s:Schema.s:ElementType")) {
        if (name != "s:AttributeType")
            continue;
        result.columns.push_back(column.get<std::string>("<xmlattr>.name"));
        result.fields.push_back(fieldOf(column));
    }
    addRows(tree.get_child("xml.rs:data"), {}, result);
    return result;
}

/// Whether a cell is exactly what the XML says.
bool is(const data::Value& value, const data::Field& field, std::string expected) {
    switch (value.kind()) {
    case Kind::Single:
        return value.asDouble() == std::strtof(expected.c_str(), nullptr);
    case Kind::Double:
        return value.asDouble() == std::strtod(expected.c_str(), nullptr);
    case Kind::Decimal: // ".50" for 0.5
        if (expected.find('.') == 0)
            expected.insert(0, 1, '0');
        return value.toText() == data::Value::decimal(expected).toText();
    case Kind::DateTime: {
        const std::string seconds = expected.substr(0, expected.find('.'));
        const double fraction = std::strtod(expected.substr(seconds.size()).c_str(), nullptr);
        std::string text = value.toText();
        text[10] = 'T';
        return text == seconds && value.asDateTime().nanosecond == std::lround(fraction * 1e9);
    }
    case Kind::Binary:
        return boost::algorithm::hex_lower(std::string(value.bytes())) == expected;
    case Kind::Text:
        if (field.fixedLength) // the XML has the padding
            expected.resize(expected.find_last_not_of(' ') + 1);
        [[fallthrough]];
    default:
        return value.toText() == expected;
    }
}

void expectFields(const data::FieldList& fields, const data::FieldList& expected) {
    ASSERT_EQ(fields.size(), expected.size());
    for (std::size_t i = 0; i < fields.size(); ++i) {
        SCOPED_TRACE(expected[i].Name);
        EXPECT_EQ(fields[i].Name, expected[i].Name);
        EXPECT_EQ(fields[i].Type, expected[i].Type);
        EXPECT_EQ(fields[i].DefinedSize, expected[i].DefinedSize);
        EXPECT_EQ(fields[i].Precision, expected[i].Precision);
        EXPECT_EQ(fields[i].NumericScale, expected[i].NumericScale);
        EXPECT_EQ(fields[i].nullable, expected[i].nullable);
        EXPECT_EQ(fields[i].fixedLength, expected[i].fixedLength);
        EXPECT_EQ(fields[i].longValue, expected[i].longValue);
    }
}

/// What stands behind the last descriptor of a tablegram.
std::string rowsOf(const std::string& wire) {
    std::size_t at = 9;
    for (; std::string("\x02\x03\x10\x05\x06").find(wire[at]) != std::string::npos;
         at += 3 + static_cast<unsigned char>(wire[at + 1]) +
               256U * static_cast<unsigned char>(wire[at + 2])) {
    }
    return wire.substr(at);
}

/// The recordset as our own writer writes it.
std::string written(data::Recordset recordset) {
    rds::ByteWriter out;
    rds::encodeValue(
        rds::Variant(rds::Dispatch{std::make_shared<data::Recordset>(std::move(recordset))}), out);
    return std::string(out.view().substr(rds::recordsetHead().size()));
}

TEST(RecordedTablegrams, ReadAsTheirXmlSaysAndAreWrittenTheSame) {
    if (!std::filesystem::is_directory(folder()))
        GTEST_SKIP() << "no recorded tablegrams in " << folder();
    std::size_t files = 0, compared = 0, rewritten = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder())) {
        if (entry.path().extension() != ".adtg")
            continue;
        SCOPED_TRACE(entry.path().filename());
        ++files;
        const Xml xml = parse(std::filesystem::path(entry.path()).replace_extension("xml"));
        const std::string wire = tests::readFile(entry.path());
        rds::ByteReader in(wire);
        data::Recordset recordset = rds::readTablegram(in);
        EXPECT_EQ(in.remaining(), 0U);
        ASSERT_NO_FATAL_FAILURE(expectFields(recordset.Fields(), xml.fields));
        EXPECT_EQ(static_cast<std::size_t>(recordset.RecordCount()), xml.rows.size());
        for (; !recordset.Eof(); recordset.MoveNext()) {
            const auto row = xml.rows.find(recordset.Item(0).toText());
            ASSERT_NE(row, xml.rows.end()) << recordset.Item(0).toText();
            for (std::size_t i = 0; i < xml.fields.size(); ++i, ++compared) {
                const data::Field& field = xml.fields[i];
                const auto cell = row->second.find(xml.columns[i]);
                ASSERT_EQ(recordset.Item(i).isNull(), cell == row->second.end()) << field.Name;
                EXPECT_TRUE(cell == row->second.end() || is(recordset.Item(i), field, cell->second))
                    << field.Name << ": " << recordset.Item(i).toText() << ", not " << cell->second;
            }
        }
        if (xml.changed)
            continue;
        ++rewritten;
        EXPECT_EQ(tests::hex(rowsOf(written(std::move(recordset)))), tests::hex(rowsOf(wire)));
    }
    EXPECT_GT(rewritten, 0U);
    std::cout << files << " files, " << compared << " cells, rows of " << rewritten
              << " files rewritten\n";
}

} // namespace
