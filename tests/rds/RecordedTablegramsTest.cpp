#include "rds/tablegram/TablegramReader.h"
#include "tests/support/TempFolder.h"

#include <boost/algorithm/hex.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

// Recordsets that ADO itself has saved, each as a tablegram and as XML: the XML says what reading
// the tablegram must give. They lie outside of the sources, see folder().

namespace {

using namespace quillet;
using boost::property_tree::ptree;
using Kind = db::Value::Kind;
using Row = std::map<std::string, std::string>; ///< without the columns that are Null

std::filesystem::path folder() {
    const char* given = std::getenv("QUILLET_ADTG_DIR");
    return given != nullptr ? given : QUILLET_SOURCE_DIR "/../shared/adtg";
}

struct Xml {
    std::vector<std::string> columns; ///< the attributes' names
    std::vector<std::string> names;   ///< the columns' own
    std::map<std::string, Row> rows;  ///< as they are after the changes, by their key
};

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
        } else if (name != "rs:delete") {
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
        result.names.push_back(column.get("<xmlattr>.rs:name", result.columns.back()));
    }
    addRows(tree.get_child("xml.rs:data"), {}, result);
    return result;
}

/// A cell in the form in which the XML has it.
std::string inXml(const db::Value& value, const std::string& expected) {
    const std::string text = value.toText();
    switch (value.kind()) {
    case Kind::Single:
    case Kind::Double: { // ADO writes seventeen digits
        const double number = std::strtod(expected.c_str(), nullptr);
        const bool same = value.asDouble() == number ||
                          static_cast<float>(value.asDouble()) == static_cast<float>(number);
        return same ? expected : text;
    }
    case Kind::Decimal: // ADO writes the zero of a column with two decimals as ".00"
        return expected.find_first_not_of(".0") == std::string::npos && text == "0" ? expected
                                                                                    : text;
    case Kind::DateTime:
        return text.substr(0, 10) + 'T' + text.substr(11) +
               expected.substr(std::min(expected.find('.'), expected.size()));
    case Kind::Binary:
        return boost::algorithm::hex_lower(std::string(value.bytes()));
    default:
        return text;
    }
}

TEST(RecordedTablegrams, ReadAsTheirXmlSays) {
    if (!std::filesystem::is_directory(folder()))
        GTEST_SKIP() << "no recorded tablegrams in " << folder();
    std::size_t files = 0, compared = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder())) {
        if (entry.path().extension() != ".adtg")
            continue;
        SCOPED_TRACE(entry.path().filename());
        ++files;
        const Xml xml = parse(std::filesystem::path(entry.path()).replace_extension("xml"));
        const std::string wire = tests::readFile(entry.path());
        rds::ByteReader in(wire);
        db::Recordset recordset = rds::readTablegram(in);
        EXPECT_EQ(in.remaining(), 0U);
        std::vector<std::string> names;
        for (const db::Field& field : recordset.Fields())
            names.push_back(field.Name);
        EXPECT_EQ(names, xml.names);
        EXPECT_EQ(static_cast<std::size_t>(recordset.RecordCount()), xml.rows.size());
        for (; !recordset.Eof(); recordset.MoveNext()) {
            const auto row = xml.rows.find(recordset.Item(0).toText());
            ASSERT_NE(row, xml.rows.end()) << recordset.Item(0).toText();
            for (std::size_t i = 0; i < names.size(); ++i, ++compared) {
                const auto cell = row->second.find(xml.columns[i]);
                ASSERT_EQ(recordset.Item(i).isNull(), cell == row->second.end()) << names[i];
                if (cell == row->second.end())
                    continue;
                std::string expected = cell->second;
                if (recordset.Item(i).kind() == Kind::Text && recordset.Fields()[i].fixedLength)
                    expected.resize(expected.find_last_not_of(' ') + 1); // the wire's padding
                EXPECT_EQ(inXml(recordset.Item(i), expected), expected) << names[i];
            }
        }
    }
    EXPECT_GT(files, 0U);
    std::cout << files << " files, " << compared << " cells\n";
}

} // namespace
