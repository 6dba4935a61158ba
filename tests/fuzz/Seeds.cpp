#include "rds/Call.h"
#include "rds/VariantCodec.h"
#include "rds/tablegram/TablegramWriter.h"
#include "tests/rds/Vectors.h"
#include "tests/support/RowsCursor.h"

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

// Writes what the fuzzers start from: messages and tablegrams of our own writer.

namespace {

using namespace quillet;
using data::DataType;
using data::Value;
using tests::RowsCursor;
namespace vectors = tests::vectors;

class Folder {
public:
    explicit Folder(std::filesystem::path path) : path_(std::move(path)) {
        std::filesystem::create_directories(path_);
    }

    void add(const std::string& bytes) {
        std::ofstream file(path_ / std::to_string(++files_), std::ios::binary);
        if (!(file << bytes).flush())
            throw std::runtime_error("cannot write to " + path_.string());
    }

private:
    std::filesystem::path path_;
    int files_ = 0;
};

/// A value that a column of the type can hold.
Value valueFor(DataType type) {
    switch (type) {
    case DataType::Date:
    case DataType::FileTime:
    case DataType::DBDate:
    case DataType::DBTime:
    case DataType::DBTimeStamp:
        return Value::dateTime({2024, 2, 29, 23, 59, 58, 500'000'000});
    case DataType::Guid:
        return Value::guid("0123456789ABCDEF");
    case DataType::Char:
    case DataType::WChar:
        return Value::text("밥류");
    case DataType::Binary:
        return Value::binary("\x01\x02");
    default:
        return Value::decimal("12.5");
    }
}

constexpr std::array Types{DataType::SmallInt,
                           DataType::Integer,
                           DataType::Single,
                           DataType::Double,
                           DataType::Currency,
                           DataType::Date,
                           DataType::Boolean,
                           DataType::Variant,
                           DataType::Decimal,
                           DataType::TinyInt,
                           DataType::UnsignedTinyInt,
                           DataType::UnsignedSmallInt,
                           DataType::UnsignedInt,
                           DataType::BigInt,
                           DataType::UnsignedBigInt,
                           DataType::FileTime,
                           DataType::Guid,
                           DataType::Binary,
                           DataType::Char,
                           DataType::WChar,
                           DataType::Numeric,
                           DataType::VarNumeric,
                           DataType::DBDate,
                           DataType::DBTime,
                           DataType::DBTimeStamp};

data::Field field(DataType type, std::uint32_t size, bool nullable, bool fixedLength) {
    data::Field result;
    result.Name = "C";
    result.Type = type;
    result.DefinedSize = size;
    result.nullable = nullable;
    result.fixedLength = fixedLength;
    return result;
}

std::string tablegram(const data::FieldList& fields, std::vector<RowsCursor::Row> rows) {
    std::string bytes;
    rds::TablegramWriter writer([&bytes](std::string_view piece) { bytes += piece; },
                                rds::describe(fields));
    RowsCursor cursor(fields, std::move(rows));
    while (cursor.next())
        writer.writeRow(cursor);
    writer.finish();
    return bytes;
}

std::vector<std::string> tablegrams() {
    std::vector<std::string> result;
    for (const bool nullable : {false, true}) {
        data::FieldList all;
        RowsCursor::Row full;
        for (const DataType type : Types) {
            for (const std::uint32_t size : {20U, 300U}) {
                const data::Field one = field(type, size, nullable, size == 20);
                const Value value = valueFor(type);
                RowsCursor::Row other{nullable ? Value() : value};
                result.push_back(tablegram({one}, {{value}, other}));
                all.push_back(one);
                full.push_back(value);
            }
        }
        result.push_back(tablegram(all, {full, nullable ? RowsCursor::Row(all.size()) : full}));
    }
    // Rows that are as small as they can be, so that memory is mostly what is kept about them.
    const data::Field byte = field(DataType::UnsignedTinyInt, 1, false, true);
    const data::Field none = field(DataType::UnsignedTinyInt, 1, true, true);
    result.push_back(tablegram({byte}, std::vector<RowsCursor::Row>(8000, {Value::integer(1)})));
    result.push_back(tablegram({none}, std::vector<RowsCursor::Row>(8000, {Value()})));
    return result;
}

/// Arrays of every element type, arrays in arrays, objects in arrays.
std::vector<rds::Variant> arrays() {
    using namespace rds;
    VariantArray nested{VarType::Variant, false, {{3, 0}}, {}};
    nested.elements = {Variant::strings({"한", ""}), Variant(Dispatch{}), Variant(1.5)};
    const VariantArray bytes{
        VarType::UI1, false, {{2, 0}, {1, 1}}, {std::uint8_t{1}, std::uint8_t{2}}};
    const VariantArray objects{VarType::Dispatch, false, {{1, 0}}, {Variant(Dispatch{})}};
    return {Variant(nested),    Variant(bytes),
            Variant(objects),   Variant(ScodeError{0x80020009, 1, BStr{"a"}, BStr{""}, BStr{}}),
            Variant(Null{}),    Variant(Currency{1}),
            Variant(Date{2.5}), Variant(Decimal{1, true, 0, 15, 0})};
}

std::string replyWith(const std::string& recordset) {
    const std::string reply = vectors::nothingReply();
    const std::string nothing("\x09\x00\x01", 3);
    const std::size_t at = reply.rfind(nothing);
    return reply.substr(0, at) + std::string(rds::recordsetHead()) + recordset +
           reply.substr(at + nothing.size());
}

void writeSeeds(const std::filesystem::path& folder) {
    Folder tables(folder / "tablegram");
    Folder replies(folder / "reply");
    Folder requests(folder / "request");
    for (const std::string& bytes : tablegrams()) {
        tables.add(bytes);
        replies.add('\x05' + replyWith(bytes));
    }
    const std::vector<std::pair<char, std::string>> recorded{
        {'\x05', vectors::recordsetReplyWithStrings()},
        {'\x03', vectors::putsqlReplyTrue()},
        {'\x03', vectors::putsqlReplyFalse()},
        {'\x05', vectors::objectErrorReply()},
        {'\x05', vectors::nothingReply()},
        {'\x0A', vectors::executeReply()},
        {'\x07', vectors::synchronizeReply()},
        {'\x0A', vectors::executeErrorReply()},
        {'\x00', vectors::pingReply()}};
    for (const auto& [arguments, body] : recorded)
        replies.add(arguments + body);
    const std::string path = "/msadc/msadcs.dll/some.object.Getsql\n";
    for (const std::string& body :
         {vectors::getsqlRequest(), vectors::putsqlRequest(), vectors::executeRequest(),
          vectors::pingRequest(), rds::encodeCall({"a", "b", arrays(), rds::newBoundary()})})
        requests.add(path + body);
}

} // namespace

int main(int argc, char** argv) try {
    if (argc != 2) {
        std::cerr << "usage: fuzz_seeds FOLDER\n";
        return 2;
    }
    writeSeeds(argv[1]);
} catch (const std::exception& error) {
    std::cerr << "fuzz_seeds: " << error.what() << '\n';
    return 1;
}
