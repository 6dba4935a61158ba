#include "rds/tablegram/TablegramReader.h"
#include "tests/support/Hex.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

// Recordsets that ADO itself has saved, each as a tablegram and as XML: the XML says what reading
// the tablegram must give. They lie outside of the sources, see folder().

namespace {

using namespace quillet;
using Kind = db::Value::Kind;
using Row = std::map<std::string, std::string>; ///< without the columns that are Null

std::filesystem::path folder() {
    const char* given = std::getenv("QUILLET_ADTG_DIR");
    return given != nullptr ? given : QUILLET_SOURCE_DIR "/../shared/adtg";
}

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void appendUtf8(std::string& out, unsigned long character) {
    if (character < 0x80) {
        out += static_cast<char>(character);
    } else if (character < 0x800) {
        out += static_cast<char>(0xC0 | character >> 6U);
        out += static_cast<char>(0x80 | (character & 0x3FU));
    } else {
        out += static_cast<char>(0xE0 | character >> 12U);
        out += static_cast<char>(0x80 | (character >> 6U & 0x3FU));
        out += static_cast<char>(0x80 | (character & 0x3FU));
    }
}

std::string unescaped(const std::string& text) {
    static const std::map<std::string, unsigned long> names{
        {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '&') {
            result += text[i];
            continue;
        }
        const std::size_t end = text.find(';', i);
        const std::string name = text.substr(i + 1, end - i - 1);
        if (name.starts_with("#x"))
            appendUtf8(result, std::stoul(name.substr(2), nullptr, 16));
        else if (name.starts_with("#"))
            appendUtf8(result, std::stoul(name.substr(1)));
        else
            appendUtf8(result, names.at(name));
        i = end;
    }
    return result;
}

struct Xml {
    std::vector<std::string> columns; ///< the attributes' names
    std::vector<std::string> names;   ///< the columns' own
    std::map<std::string, Row> rows;  ///< as they are after the changes, by their key
};

/// Reads the little of XML that ADO writes.
Xml parse(const std::string& text) {
    Xml result;
    bool original = false, deleted = false;
    Row before;
    for (std::size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at)) {
        std::size_t end = at;
        for (bool quoted = false; quoted || text.at(end) != '>'; ++end)
            quoted ^= text.at(end) == '\'';
        const std::string tag = text.substr(at + 1, end - at - 1);
        at = end;
        const std::string element = tag.substr(0, tag.find_first_of(" \t\r\n/", 1));
        Row attributes;
        for (std::size_t equals = tag.find("='"); equals != std::string::npos;) {
            const std::size_t name = tag.find_last_of(" \t\r\n", equals) + 1;
            const std::size_t close = tag.find('\'', equals + 2);
            attributes[tag.substr(name, equals - name)] =
                unescaped(tag.substr(equals + 2, close - equals - 2));
            equals = tag.find("='", close);
        }
        if (element == "s:AttributeType") {
            result.columns.push_back(attributes.at("name"));
            result.names.push_back(attributes.count("rs:name") != 0 ? attributes["rs:name"]
                                                                    : attributes["name"]);
        } else if (element == "rs:original" || element == "/rs:original") {
            original = element[0] != '/';
        } else if (element == "rs:delete" || element == "/rs:delete") {
            deleted = element[0] != '/';
        } else if (element == "/rs:update") {
            before.clear();
        } else if (element == "z:row" && original) {
            before = attributes;
        } else if (element == "z:row" && !deleted) {
            std::istringstream nulls(attributes["rs:forcenull"]);
            attributes.erase("rs:forcenull");
            attributes.insert(before.begin(), before.end());
            for (std::string name; nulls >> name;)
                attributes.erase(name);
            result.rows[attributes[result.columns.at(0)]] = attributes;
        }
    }
    return result;
}

/// A cell in the form in which the XML has it.
std::string inXml(const db::Value& value, const std::string& expected) {
    switch (value.kind()) {
    case Kind::Single:
    case Kind::Double: // ADO writes seventeen digits
        return value.asDouble() == std::strtod(expected.c_str(), nullptr) ||
                       static_cast<float>(value.asDouble()) ==
                           std::strtof(expected.c_str(), nullptr)
                   ? expected
                   : value.toText();
    case Kind::Decimal: // ADO writes the zero of a column with two decimals as ".00"
        return expected.find_first_not_of(".0") == std::string::npos && value.toText() == "0"
                   ? expected
                   : value.toText();
    case Kind::DateTime: {
        std::string text = value.toText();
        text[10] = 'T';
        return expected.find('.') == std::string::npos ? text
                                                       : text + expected.substr(expected.find('.'));
    }
    case Kind::Binary: {
        std::string text = tests::hex(value.bytes());
        std::transform(text.begin(), text.end(), text.begin(), [](char c) {
            return c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c;
        });
        return text;
    }
    default:
        return value.toText();
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
        const Xml xml =
            parse(contentOf(std::filesystem::path(entry.path()).replace_extension("xml")));
        const std::string wire = contentOf(entry.path());
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
    RecordProperty("files", static_cast<int>(files));
    RecordProperty("cells", static_cast<int>(compared));
    std::cout << files << " files, " << compared << " cells\n";
}

} // namespace
