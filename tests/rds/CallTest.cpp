#include "rds/Call.h"

#include "rds/MessageReader.h"
#include "tests/rds/Vectors.h"
#include "tests/support/Errors.h"
#include "tests/support/Hex.h"
#include "tests/support/RowsCursor.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

namespace {

using namespace quillet;
using namespace quillet::rds;
using quillet::tests::bytes;
using quillet::tests::hex;
using quillet::tests::RowsCursor;
namespace vectors = quillet::tests::vectors;

const std::string Boundary = "abcdefghij0123456789";
const Variant SqlId = Variant::string("SQL-ID-001");
const Variant Parameters = Variant::string("P1|한글");
const Variant Statements = Variant::strings({"insert A", "", "한글"});

std::string pathOf(const char* name) {
    return std::string("/msadc/msadcs.dll/") + name;
}

std::string written(const std::function<void(const ByteSink&)>& write) {
    std::string body;
    write([&body](std::string_view piece) { body += piece; });
    return body;
}

std::string replyOf(const std::string& boundary, const std::vector<Variant>& arguments,
                    const Variant& result) {
    return written([&](const ByteSink& sink) {
        writeReplyHead(sink, boundary, arguments);
        writeReplyResult(sink, boundary, result);
        writeReplyEnd(sink, boundary);
    });
}

std::string replaced(std::string body, const std::string& from, const std::string& to) {
    const std::size_t at = body.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return body.replace(at, from.size(), to);
}

long errorOf(const std::string& body, std::size_t arguments) {
    return tests::errorOf([&] { decodeReply(body, arguments); }).Number();
}

TEST(Call, RequestsAreReadAndWrittenByteForByte) {
    struct Case {
        const char* name;
        std::string body;
        std::size_t count;
        std::vector<Variant> arguments; ///< empty: not compared
    };
    const std::vector<Case> cases{
        {"RDSServer.DataFactory.Query", vectors::queryRequest(), 2, {}},
        {"AdvancedDataFactory.Execute", vectors::executeRequest(), 10, {}},
        {"some.object.Getsql",
         vectors::getsqlRequest(),
         5,
         {SqlId, std::int16_t{0}, std::int16_t{1}, Variant(), Parameters}},
        {"some.object.Getsql",
         vectors::getsqlRequestWithLongs(),
         5,
         {SqlId, std::int32_t{0}, std::int32_t{1}, Variant(), Parameters}},
        {"some.object.PUTSQL",
         vectors::putsqlRequest(),
         3,
         {Statements, Variant::string("DB1"), Variant::string("")}},
        {"some.object.Ping", vectors::pingRequest(), 0, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Call call = decodeCall(pathOf(c.name), c.body);
        EXPECT_EQ(call.arguments.size(), c.count);
        if (!c.arguments.empty()) {
            EXPECT_EQ(call.arguments, c.arguments);
        }
        EXPECT_EQ(callPath(call), pathOf(c.name));
        EXPECT_EQ(hex(encodeCall(call)), hex(c.body));
    }
    const Call query = decodeCall(pathOf("RDSServer.DataFactory.Query"), vectors::queryRequest());
    EXPECT_EQ(query.progId, "RDSServer.DataFactory");
    EXPECT_EQ(query.arguments[0].toText().substr(0, 18), "Provider='SQLOLEDB");
    const Call execute = decodeCall(pathOf("a.b"), vectors::executeRequest());
    EXPECT_EQ(execute.arguments[2], Variant::string("Select top 1 * from Publishers"));
    EXPECT_EQ(execute.arguments[8], Variant(std::int32_t{1033}));
    EXPECT_THROW(encodeCall({"some.object", "Ping", std::vector<Variant>(1024), Boundary}),
                 data::Error);
}

TEST(Call, MalformedRequestsAreRefusedAsSuch) {
    const std::string body = vectors::getsqlRequest();
    std::vector<std::pair<std::string, std::string>> requests{
        {"/", body},
        {"/msadc/msadcs.dll/", body},
        {"/msadc/msadcs.dll/Getsql", body},
        {"/msadc/msadcs.dll/some.object.", body},
        {"/elsewhere/some.object.Getsql", body},
        {pathOf("a.b"), replaced(body, "num-args=5", "num-args=4")},
        {pathOf("a.b"), replaced(body, "num-args=5", "num-args=1024")},
        {pathOf("a.b"), replaced(body, "boundary=", "boundary= ")},
        {pathOf("a.b"), ""},
    };
    for (std::size_t size = 0; size < body.size(); ++size)
        requests.emplace_back(pathOf("a.b"), body.substr(0, size));
    for (const auto& [path, content] : requests) {
        try {
            decodeCall(path, content);
            ADD_FAILURE() << path << ' ' << content.size();
        } catch (const CallError& error) {
            EXPECT_EQ(error.error().scode, scode::InvalidArgument);
        }
    }
}

TEST(Call, RepliesAreReadAndWrittenByteForByte) {
    struct Case {
        std::string body;
        std::vector<Variant> arguments;
        Variant result;
    };
    const Variant name = Variant::string("DB1");
    const std::vector<Case> cases{
        {vectors::nothingReply(), std::vector<Variant>(5), Dispatch{}},
        {vectors::putsqlReplyTrue(), {Variant(), name, Variant::string("OK")}, true},
        {vectors::putsqlReplyFalse(), {Statements, name, Variant::string("ERR 100")}, false},
        {vectors::pingReply(), {}, Variant::string("PONG")}};
    for (const Case& c : cases) {
        const Reply reply = decodeReply(c.body, c.arguments.size());
        EXPECT_EQ(reply.arguments, c.arguments);
        EXPECT_EQ(reply.result, c.result);
        EXPECT_EQ(hex(replyOf(Boundary, c.arguments, c.result)), hex(c.body));
    }

    // Recorded replies, written again from what has been read of them.
    const Reply synchronize = decodeReply(vectors::synchronizeReply(), 7);
    EXPECT_EQ(hex(replyOf("+valdu0:d=(-pr/van?2", synchronize.arguments, *synchronize.result)),
              hex(vectors::synchronizeReply()));
    const Reply execute = decodeReply(vectors::executeErrorReply(), 10);
    EXPECT_EQ(hex(replyOf("qa06besd06poz)906=:,", execute.arguments, *execute.result)),
              hex(vectors::executeErrorReply()));
    const auto& information = std::get<VariantArray>(synchronize.arguments[6]);
    const auto& errors = std::get<VariantArray>(information.elements[1]);
    EXPECT_EQ(std::get<VariantArray>(errors.elements[0]).elements[10],
              Variant::string("Microsoft Cursor Engine"));
    EXPECT_EQ(std::get<ScodeError>(*synchronize.result).scode, 0x00040EDAU);

    // A method without a result, and a result part that tells its length.
    const std::string head = "\r\n--" + Boundary + "\r\nContent-Type: application/x-varg\r\n";
    const std::string part = head + bytes("0D0A 0B00");
    EXPECT_EQ(decodeReply(replaced(vectors::putsqlReplyTrue(), part,
                                   head + "Content-Length: 4" + bytes("0D0A0D0A 0B00")),
                          3)
                  .result,
              Variant(true));
    const std::string none = replaced(vectors::putsqlReplyTrue(), part + bytes("FFFF"), "");
    EXPECT_FALSE(decodeReply(none, 3).result.has_value());
}

TEST(Call, FailedCallsRaiseTheServersError) {
    EXPECT_EQ(hex(encodeCallError(
                  {scode::Exception, 0x800A0E7A, BStr{"some.object"}, BStr{"실패"}, BStr{}})),
              hex(vectors::objectErrorReply()));
    const std::string recorded = vectors::providerErrorReply();
    EXPECT_EQ(hex(encodeCallError(readCallError(recorded))), hex(recorded));
    struct Case {
        std::string body;
        std::uint32_t number;
        const char* description;
    };
    const auto failed = [](std::uint32_t outer, std::uint32_t inner) {
        return encodeCallError({outer, inner, BStr{"x"}, BStr{}, BStr{}});
    };
    const std::vector<Case> cases{
        {vectors::providerErrorReply(), 3706,
         "Provider cannot be found. It may not be properly installed."},
        {vectors::objectErrorReply(), 3706, "실패"},
        {vectors::objectErrorReply() + "foreign", 3706, "실패"},
        {replaced(vectors::objectErrorReply(), "Length: 6", "Length: 10"), 3706, "실패"},
        {failed(0x80020009, 0x80040E37), 0x80040E37, "The remote call failed (0x80020009)."},
        {failed(0x80020009, 0x800A0000), 0x800A0000, "The remote call failed (0x80020009)."},
        {failed(0, 0), 0x80004005, "The remote call failed (0x00000000)."},
        {failed(0x80070057, 5), 0x80070057, "The remote call failed (0x80070057)."},
        {failed(0x80020009, 0), 0x80020009, "The remote call failed (0x80020009)."},
        {failed(0x00000001, 0), 0x00000001, "The remote call failed (0x00000001)."},
    };
    for (const Case& c : cases) {
        const data::Error error = tests::errorOf([&] { decodeReply(c.body, 5); });
        EXPECT_EQ(error.Number(), static_cast<std::int32_t>(c.number));
        EXPECT_EQ(error.Description(), c.description);
    }
}

TEST(Call, NoPartOfACutReplyIsUsed) {
    const std::vector<std::pair<std::string, std::size_t>> replies{
        {vectors::recordsetReply(), 5},   {vectors::recordsetReplyWithStrings(), 5},
        {vectors::putsqlReplyTrue(), 3},  {vectors::putsqlReplyFalse(), 3},
        {vectors::objectErrorReply(), 5}, {vectors::executeReply(), 10},
        {vectors::synchronizeReply(), 7}};
    for (const auto& [body, arguments] : replies) {
        for (std::size_t size = 0; size < body.size(); ++size)
            ASSERT_EQ(errorOf(body.substr(0, size), arguments), data::number::Unspecified)
                << size << " of " << body.size();
    }
}

TEST(Call, ItsFirstLineMayStandInTheHttpHead) {
    for (const std::string& body : {vectors::putsqlReplyFalse(), vectors::recordsetReply()}) {
        const std::size_t arguments = body.find("num-args=3") != std::string::npos ? 3 : 5;
        const std::string type = body.substr(14, body.find("\r\n") - 14);
        for (const std::size_t ends : {2U, 4U}) { // with the blank line or without
            const std::string parts = body.substr(body.find("\r\n") + ends);
            EXPECT_EQ(decodeReply(parts, arguments, type).arguments,
                      decodeReply(body, arguments).arguments);
            for (std::size_t size = 0; size < parts.size(); ++size)
                ASSERT_NE(tests::errorOf([&] {
                              decodeReply(parts.substr(0, size), arguments, type);
                          }).Number(),
                          0)
                    << size << " of " << parts.size();
        }
        EXPECT_EQ(errorOf(body.substr(body.find("--")), arguments), data::number::Unspecified);
        EXPECT_NO_THROW(decodeReply(body, arguments, "text/html")) << "what most servers say";
    }
}

TEST(Call, WhatIsNoReplyIsNamedByItsFirstBytes) {
    const std::vector<std::pair<std::string, std::string>> foreign{
        {"<html><head><title>Login</title>", "a web page"},
        {"\xEF\xBB\xBF\r\n<!DOCTYPE html>", "a web page"},
        {"<", "a web page"},
        {bytes("1F8B0800000000000003"), "compressed data"},
        {"Error \r\n" + std::string(100, 'x'), "\"Error " + std::string(54, 'x') + '"'},
        {"Content-Type: text/html\r\n\r\n<html>", "\"Content-Type: text/html<html>\""},
        {"--boundary", "\"--boundary\""},
        {bytes("00 01 FF"), "unknown data"}};
    for (const auto& [body, name] : foreign) {
        const std::string text = "The reply cannot be read: the server answered with " + name + '.';
        for (const std::string& rest : {std::string(), std::string(5000, '\0')}) {
            const std::string whole = body + rest;
            EXPECT_EQ(tests::errorOf([&] { decodeReply(whole, 5); }).Description(), text);
            EXPECT_EQ(tests::errorOf([&] { startsAsMessage(whole, ""); }).Description(), text);
        }
    }
    for (const std::string& body :
         {vectors::recordsetReply(), vectors::objectErrorReply(), vectors::getsqlRequest()}) {
        bool known = false;
        for (std::size_t size = 0; size <= body.size(); ++size) {
            const bool now = startsAsMessage(std::string_view(body).substr(0, size), "");
            EXPECT_TRUE(now || !known);
            known = now;
        }
        EXPECT_TRUE(known);
    }
}

TEST(Call, ContradictionsInAReplyAreErrors) {
    const std::string body = vectors::recordsetReplyWithStrings();
    const std::vector<std::string> wrong{
        replaced(body, "Content-Length: 48", "Content-Length: 47"),
        replaced(body, "Content-Length: 48", "Content-Length: 6"),
        replaced(body, "Content-Length: 48", "Content-Length: -48"),
        replaced(body, "Content-Length: 48", "Content-Length: 99999999999999999999999"),
        replaced(body, "num-args=5", "num-args=4"),
        replaced(body, "num-args=5", "num-args=six"),
        replaced(body, "num-args=5", "num-args="),
        replaced(body, "boundary=abc", "boundary=abd"),
        replaced(body, "multipart/mixed", "text/html"),
        replaced(body, "application/x-varg", "application/x-warg"),
        replaced(body, "6789--", "6789-+"),
        replaced(body, bytes("0F0D0A"), bytes("0F0F0D0A")),
        "<html>The page cannot be displayed</html>\r\n",
    };
    for (std::size_t i = 0; i < wrong.size(); ++i)
        EXPECT_EQ(errorOf(wrong[i], 5), data::number::Unspecified) << i;
    EXPECT_EQ(errorOf(body, 4), data::number::Unspecified) << "of another call";
    EXPECT_EQ(errorOf(replyOf(Boundary, {SqlId}, Variant(true)), 0), data::number::Unspecified);
    EXPECT_EQ(errorOf(body + "\r\n--behind", 5), 0);
}

TEST(Call, DataMayLookLikeADelimiter) {
    EXPECT_THAT(newBoundary(), ::testing::MatchesRegex("[a-z0-9]+"));
    EXPECT_EQ(newBoundary().size(), 20U);
    EXPECT_NE(newBoundary(), newBoundary());
    VariantArray array;
    array.elementType = VarType::UI1;
    for (const char c : "\r\n--" + Boundary + "--\r\n")
        array.elements.emplace_back(static_cast<std::uint8_t>(c));
    array.dimensions = {{static_cast<std::uint32_t>(array.elements.size()), 0}};
    const Reply reply =
        decodeReply(replyOf(Boundary, {Variant(array), SqlId, Variant(array)}, Variant(array)), 3);
    EXPECT_EQ(reply.arguments[2], Variant(array));
    EXPECT_EQ(reply.arguments[1], SqlId);
    EXPECT_EQ(reply.result, Variant(array));
}

using data::DataType;
using data::Value;

/// Adds a column of the only table.
void add(TablegramMetadata& metadata, const char* name, DataType type, std::uint32_t size,
         std::uint32_t flags, std::uint32_t precision = 0xFF, std::int32_t scale = 0xFF) {
    const auto ordinal = static_cast<std::uint16_t>(metadata.columns.size() + 1);
    const bool items = metadata.tables[0].updateName == "ITEM";
    metadata.columns.push_back({name, BaseColumn{1, ordinal, name}, items ? "DB1" : "pubs",
                                items ? std::optional<std::string>("dbo") : std::nullopt, type,
                                size, precision, scale, flags, true});
}

/// The recordset of vectors::recordsetReply() as the head office describes it.
TablegramMetadata itemMetadata() {
    TablegramMetadata metadata;
    metadata.rowCount = 3;
    metadata.tables = {{1, "\"DB1\".\"dbo\".\"ITEM\"", "ITEM", 6, {1}}};
    add(metadata, "CODE", DataType::Char, 3, 0x8018);
    add(metadata, "NAME", DataType::Char, 20, 0x68);
    add(metadata, "QTY", DataType::Integer, 4, 0x78, 10);
    add(metadata, "AMT", DataType::Numeric, 19, 0x78, 9, 2);
    add(metadata, "REGDT", DataType::DBTimeStamp, 16, 0x78, 23, 3);
    add(metadata, "MEMO", DataType::WChar, 200, 0x68);
    metadata.columns.push_back({"TOTAL", {}, {}, {}, DataType::Double, 8, 15, 0xFF, 0x70, true});
    return metadata;
}

const std::vector<RowsCursor::Row> ItemRows{
    {Value::text("A01"), Value::text("한글"), Value::integer(5), Value::decimal("12345.67"),
     Value::dateTime({2006, 7, 6, 22, 43, 7, 123000000}), Value::text("메모"), Value::real(1.5)},
    {Value::text("B02"), {}, {}, Value::decimal("-0.05"), {}, Value::text(""), {}},
    {Value::text("C03"),
     Value::text(""),
     Value::integer(-1),
     {},
     Value::dateTime({1999, 12, 31, 23, 59, 58, 0}),
     {},
     Value::real(-0.25)}};

/// The recordset of vectors::executeReply().
TablegramMetadata publisherMetadata() {
    TablegramMetadata metadata;
    metadata.rowCount = 1;
    metadata.tables = {{1, "\"pubs\"..\"Publishers\"", "Publishers", 5, {1}}};
    add(metadata, "pub_id", DataType::Char, 4, 0x8018);
    add(metadata, "pub_name", DataType::Char, 40, 0x68);
    add(metadata, "city", DataType::Char, 20, 0x68);
    add(metadata, "state", DataType::Char, 2, 0x78);
    add(metadata, "country", DataType::Char, 30, 0x68);
    return metadata;
}

const std::vector<RowsCursor::Row> PublisherRows{
    {Value::text("0736"), Value::text("New Moon Books"), Value::text("New York"), Value::text("MA"),
     Value::text("USA")}};

TEST(Call, RecordsetRepliesAreReadAndWrittenByteForByte) {
    struct Case {
        std::string body;
        std::string boundary;
        std::vector<Variant> arguments;
        TablegramMetadata metadata;
        const std::vector<RowsCursor::Row>& rows;
    };
    const std::vector<Case> cases{
        {vectors::recordsetReply(), Boundary, std::vector<Variant>(5), itemMetadata(), ItemRows},
        {vectors::recordsetReplyWithStrings(),
         Boundary,
         {SqlId, Variant(), Variant(), Variant(), Parameters},
         itemMetadata(),
         ItemRows},
        {vectors::executeReply(), "dd+dyynum0ud9:6oo?,g", std::vector<Variant>(10),
         publisherMetadata(), PublisherRows}};
    for (const Case& c : cases) {
        const Reply reply = decodeReply(c.body, c.arguments.size());
        EXPECT_EQ(reply.arguments, c.arguments);
        data::Recordset& rows = *std::get<Dispatch>(*reply.result).recordset;
        ASSERT_EQ(static_cast<std::size_t>(rows.RecordCount()), c.rows.size());
        for (const RowsCursor::Row& expected : c.rows) {
            for (std::size_t i = 0; i < expected.size(); ++i) {
                EXPECT_EQ(rows.Fields()[i].Name, c.metadata.columns[i].name);
                EXPECT_EQ(rows.Item(i).kind(), expected[i].kind()) << i;
                EXPECT_EQ(rows.Item(i).toText(), expected[i].toText()) << i;
                if (expected[i].kind() == Value::Kind::DateTime) {
                    EXPECT_EQ(rows.Item(i).asDateTime(), expected[i].asDateTime());
                }
            }
            rows.MoveNext();
        }
        RowsCursor cursor({}, c.rows);
        EXPECT_EQ(hex(written([&](const ByteSink& sink) {
                      writeReplyHead(sink, c.boundary, c.arguments);
                      writeReplyResult(sink, c.boundary, cursor, c.metadata);
                      writeReplyEnd(sink, c.boundary);
                  })),
                  hex(c.body));
    }
}

} // namespace
