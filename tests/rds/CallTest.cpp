#include "rds/Call.h"

#include "db/Error.h"
#include "rds/VariantCodec.h"
#include "tests/rds/Vectors.h"
#include "tests/support/Hex.h"
#include "tests/support/RowsCursor.h"

#include <gmock/gmock.h>

#include <functional>
#include <random>
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
    try {
        decodeReply(body, arguments);
    } catch (const db::Error& error) {
        return error.Number();
    }
    return 0;
}

TEST(Call, RequestsHaveTheBytesOfTheProtocol) {
    const Call getsql{"some.object",
                      "Getsql",
                      {SqlId, std::int16_t{0}, std::int16_t{1}, Variant(), Parameters},
                      Boundary};
    EXPECT_EQ(callPath(getsql), "/msadc/msadcs.dll/some.object.Getsql");
    EXPECT_EQ(hex(encodeCall(getsql)), hex(vectors::getsqlRequest()));

    const Call putsql{"some.object",
                      "PUTSQL",
                      {Statements, Variant::string("DB1"), Variant::string("")},
                      Boundary};
    EXPECT_EQ(hex(encodeCall(putsql)), hex(vectors::putsqlRequest()));
    EXPECT_EQ(hex(encodeCall({"some.object", "Ping", {}, Boundary})), hex(vectors::pingRequest()));
    EXPECT_THROW(encodeCall({"some.object", "Ping", std::vector<Variant>(1024), Boundary}),
                 db::Error);
}

TEST(Call, RequestsAreReadBackWhole) {
    struct Case {
        const char* name;
        std::string body;
        std::size_t arguments;
    };
    const std::vector<Case> cases{
        {"RDSServer.DataFactory.Query", vectors::queryRequest(), 2},
        {"AdvancedDataFactory.Execute", vectors::executeRequest(), 10},
        {"some.object.Getsql", vectors::getsqlRequest(), 5},
        {"some.object.Getsql", vectors::getsqlRequestWithLongs(), 5},
        {"some.object.PUTSQL", vectors::putsqlRequest(), 3},
        {"some.object.Ping", vectors::pingRequest(), 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Call call = decodeCall(pathOf(c.name), c.body);
        EXPECT_EQ(call.arguments.size(), c.arguments);
        EXPECT_EQ(callPath(call), pathOf(c.name));
        EXPECT_EQ(hex(encodeCall(call)), hex(c.body));
    }
    const Call query = decodeCall(pathOf("RDSServer.DataFactory.Query"), vectors::queryRequest());
    EXPECT_EQ(query.progId, "RDSServer.DataFactory");
    EXPECT_EQ(query.arguments[0].toText().substr(0, 18), "Provider='SQLOLEDB");
    const Call execute = decodeCall(pathOf("a.b"), vectors::executeRequest());
    EXPECT_EQ(execute.arguments[1], Variant::string(""));
    EXPECT_EQ(execute.arguments[2], Variant::string("Select top 1 * from Publishers"));
    EXPECT_EQ(execute.arguments[8], Variant(std::int32_t{1033}));
    EXPECT_TRUE(execute.arguments[9].isEmpty());
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

TEST(Call, RepliesHaveTheBytesOfTheProtocol) {
    EXPECT_EQ(hex(replyOf(Boundary, std::vector<Variant>(5), Variant(Dispatch{}))),
              hex(vectors::nothingReply()));
    EXPECT_EQ(hex(replyOf(Boundary, {Variant(), Variant::string("DB1"), Variant::string("OK")},
                          Variant(true))),
              hex(vectors::putsqlReplyTrue()));
    EXPECT_EQ(
        hex(replyOf(Boundary, {Statements, Variant::string("DB1"), Variant::string("ERR 100")},
                    Variant(false))),
        hex(vectors::putsqlReplyFalse()));
    EXPECT_EQ(hex(replyOf(Boundary, {}, Variant::string("PONG"))), hex(vectors::pingReply()));
    ScodeError error{scode::Exception, 0x800A0E7A, BStr{"some.object"}, BStr{"실패"}, BStr{}};
    EXPECT_EQ(hex(encodeCallError(error)), hex(vectors::objectErrorReply()));

    // Recorded replies, written again from what has been read of them.
    const Reply synchronize = decodeReply(vectors::synchronizeReply(), 7);
    EXPECT_EQ(hex(replyOf("+valdu0:d=(-pr/van?2", synchronize.arguments, *synchronize.result)),
              hex(vectors::synchronizeReply()));
    const Reply execute = decodeReply(vectors::executeErrorReply(), 10);
    EXPECT_EQ(hex(replyOf("qa06besd06poz)906=:,", execute.arguments, *execute.result)),
              hex(vectors::executeErrorReply()));
}

TEST(Call, RepliesGiveResultAndReturnedArguments) {
    Reply reply = decodeReply(vectors::putsqlReplyFalse(), 3);
    EXPECT_EQ(reply.arguments, (std::vector<Variant>{Statements, Variant::string("DB1"),
                                                     Variant::string("ERR 100")}));
    EXPECT_EQ(reply.result, Variant(false));
    reply = decodeReply(vectors::putsqlReplyTrue(), 3);
    EXPECT_TRUE(reply.arguments[0].isEmpty());
    EXPECT_EQ(reply.result, Variant(true));
    EXPECT_EQ(decodeReply(vectors::nothingReply(), 5).result, Variant(Dispatch{}));
    EXPECT_EQ(decodeReply(vectors::pingReply(), 0).result, Variant::string("PONG"));

    const Reply synchronize = decodeReply(vectors::synchronizeReply(), 7);
    const auto& states = std::get<VariantArray>(synchronize.arguments[4]);
    EXPECT_EQ(states.elements, (std::vector<Variant>{std::int32_t{7}, std::int32_t{4}}));
    const auto& information = std::get<VariantArray>(synchronize.arguments[6]);
    const auto& errors = std::get<VariantArray>(information.elements[1]);
    EXPECT_EQ(std::get<VariantArray>(errors.elements[0]).elements[10],
              Variant::string("Microsoft Cursor Engine"));
    EXPECT_EQ(std::get<ScodeError>(*synchronize.result).scode, 0x00040EDAU);

    // A method without a result, and a result part that tells its length.
    const std::string part = bytes("0D0A '--abcdefghij0123456789' 0D0A"
                                   "'Content-Type: application/x-varg' 0D0A0D0A 0B00");
    const std::string counted = bytes("0D0A '--abcdefghij0123456789' 0D0A"
                                      "'Content-Type: application/x-varg' 0D0A"
                                      "'Content-Length: 4' 0D0A0D0A 0B00");
    EXPECT_EQ(decodeReply(replaced(vectors::putsqlReplyTrue(), part, counted), 3).result,
              Variant(true));
    const std::string none = replaced(vectors::putsqlReplyTrue(), part + bytes("FFFF"), "");
    EXPECT_FALSE(decodeReply(none, 3).result.has_value());
}

TEST(Call, FailedCallsRaiseTheServersError) {
    struct Case {
        std::string body;
        std::uint32_t number;
        const char* description;
    };
    const auto failed = [](std::uint32_t outer, std::uint32_t inner) {
        return encodeCallError({outer, inner, BStr{"x"}, BStr{}, BStr{}});
    };
    const std::vector<Case> cases{
        {vectors::providerErrorReply(), 0x800A0E7A,
         "Provider cannot be found. It may not be properly installed."},
        {vectors::objectErrorReply(), 0x800A0E7A, "실패"},
        {vectors::objectErrorReply() + "foreign", 0x800A0E7A, "실패"},
        {failed(0x80070057, 5), 0x80070057, "The remote call failed (0x80070057)."},
        {failed(0x80020009, 0), 0x80020009, "The remote call failed (0x80020009)."},
        {failed(0x00000001, 0), 0x00000001, "The remote call failed (0x00000001)."},
    };
    for (const Case& c : cases) {
        try {
            decodeReply(c.body, 5);
            ADD_FAILURE() << c.description;
        } catch (const db::Error& error) {
            EXPECT_EQ(error.Number(), static_cast<long>(static_cast<std::int32_t>(c.number)));
            EXPECT_EQ(error.Description(), c.description);
        }
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
            ASSERT_EQ(errorOf(body.substr(0, size), arguments), db::number::Unspecified)
                << size << " of " << body.size();
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
        EXPECT_EQ(errorOf(wrong[i], 5), db::number::Unspecified) << i;
    EXPECT_EQ(errorOf(body, 4), db::number::Unspecified) << "of another call";
    EXPECT_EQ(errorOf(replyOf(Boundary, {SqlId}, Variant(true)), 0), db::number::Unspecified);
    EXPECT_EQ(errorOf(body + "\r\n--behind", 5), 0);
}

TEST(Call, DataMayLookLikeADelimiter) {
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

TEST(Call, DamagedRepliesNeverDoMoreThanFail) {
    std::mt19937 random(20060706); // the same damage in every run
    const std::vector<std::string> bodies{vectors::recordsetReplyWithStrings(),
                                          vectors::synchronizeReply(), vectors::executeReply()};
    std::size_t failed = 0;
    for (int round = 0; round < 6000; ++round) {
        std::string body = bodies[random() % bodies.size()];
        for (std::size_t hits = 1 + random() % 3; hits > 0; --hits) {
            const std::size_t at = random() % body.size();
            switch (random() % 3) {
            case 0:
                body[at] = static_cast<char>(random());
                break;
            case 1:
                body.erase(at, 1 + random() % 4);
                break;
            default:
                body.insert(at, 1 + random() % 4, static_cast<char>(random()));
            }
        }
        const std::size_t arguments = body.find("num-args=5") != std::string::npos ? 5
                                      : body.find("=7\r") != std::string::npos     ? 7
                                                                                   : 10;
        failed += errorOf(body, arguments) != 0 ? 1 : 0;
    }
    EXPECT_GT(failed, 3000U);
}

TEST(Call, BoundariesAreFreshAndOfTheProtocolsForm) {
    const std::string boundary = newBoundary();
    EXPECT_THAT(boundary, ::testing::MatchesRegex("[a-z0-9]+"));
    EXPECT_EQ(boundary.size(), 20U);
    EXPECT_NE(boundary, newBoundary());
}

/// The recordset of vectors::recordsetReply() as the head office describes it.
TablegramMetadata itemMetadata() {
    using db::DataType;
    TablegramMetadata metadata;
    metadata.rowCount = 3;
    metadata.tables = {{1, "\"DB1\".\"dbo\".\"ITEM\"", "ITEM", 6, {1}}};
    const auto add = [&](const char* name, DataType type, std::uint32_t size,
                         std::uint32_t precision, std::int32_t scale, std::uint32_t flags) {
        const auto ordinal = static_cast<std::uint16_t>(metadata.columns.size() + 1);
        metadata.columns.push_back({name, BaseColumn{1, ordinal, name}, "DB1", "dbo", type, size,
                                    precision, scale, flags, true});
    };
    add("CODE", DataType::Char, 3, 0xFF, 0xFF, 0x8018);
    add("NAME", DataType::Char, 20, 0xFF, 0xFF, 0x68);
    add("QTY", DataType::Integer, 4, 10, 0xFF, 0x78);
    add("AMT", DataType::Numeric, 19, 9, 2, 0x78);
    add("REGDT", DataType::DBTimeStamp, 16, 23, 3, 0x78);
    add("MEMO", DataType::WChar, 200, 0xFF, 0xFF, 0x68);
    metadata.columns.push_back({"TOTAL", {}, {}, {}, DataType::Double, 8, 15, 0xFF, 0x70, true});
    return metadata;
}

std::vector<RowsCursor::Row> itemRows() {
    using db::Value;
    return {{Value::text("A01"), Value::text("한글"), Value::integer(5), Value::decimal("12345.67"),
             Value::dateTime({2006, 7, 6, 22, 43, 7, 123000000}), Value::text("메모"),
             Value::real(1.5)},
            {Value::text("B02"), {}, {}, Value::decimal("-0.05"), {}, Value::text(""), {}},
            {Value::text("C03"),
             Value::text(""),
             Value::integer(-1),
             {},
             Value::dateTime({1999, 12, 31, 23, 59, 58, 0}),
             {},
             Value::real(-0.25)}};
}

TEST(Call, RecordsetRepliesAreReadAndWrittenByteForByte) {
    for (const bool returned : {false, true}) {
        const std::string body =
            returned ? vectors::recordsetReplyWithStrings() : vectors::recordsetReply();
        const Reply reply = decodeReply(body, 5);
        EXPECT_EQ(reply.arguments[0], returned ? SqlId : Variant());
        EXPECT_EQ(reply.arguments[4], returned ? Parameters : Variant());
        db::Recordset& rows = *std::get<Dispatch>(*reply.result).recordset;
        ASSERT_EQ(rows.RecordCount(), 3);
        for (const RowsCursor::Row& expected : itemRows()) {
            for (std::size_t i = 0; i < expected.size(); ++i) {
                EXPECT_EQ(rows.Item(i).kind(), expected[i].kind()) << i;
                EXPECT_EQ(rows.Item(i).toText(), expected[i].toText()) << i;
            }
            rows.MoveNext();
        }
        rows.MoveFirst();
        EXPECT_EQ(rows.Item(4).asDateTime().nanosecond, 123000000U);

        RowsCursor cursor({}, itemRows());
        EXPECT_EQ(hex(written([&](const ByteSink& sink) {
                      writeReplyHead(sink, Boundary, reply.arguments);
                      writeReplyResult(sink, Boundary, cursor, itemMetadata());
                      writeReplyEnd(sink, Boundary);
                  })),
                  hex(body));
    }
}

TEST(Call, TheRecordedRecordsetIsWrittenByteForByte) {
    using db::DataType;
    using db::Value;
    TablegramMetadata metadata;
    metadata.rowCount = 1;
    metadata.tables = {{1, "\"pubs\"..\"Publishers\"", "Publishers", 5, {1}}};
    struct {
        const char* name;
        std::uint32_t size, flags;
    } const columns[] = {{"pub_id", 4, 0x8018},
                         {"pub_name", 40, 0x68},
                         {"city", 20, 0x68},
                         {"state", 2, 0x78},
                         {"country", 30, 0x68}};
    for (const auto& column : columns) {
        const auto ordinal = static_cast<std::uint16_t>(metadata.columns.size() + 1);
        metadata.columns.push_back({column.name,
                                    BaseColumn{1, ordinal, column.name},
                                    "pubs",
                                    {},
                                    DataType::Char,
                                    column.size,
                                    0xFF,
                                    0xFF,
                                    column.flags,
                                    true});
    }
    const std::vector<const char*> texts{"0736", "New Moon Books", "New York", "MA", "USA"};
    RowsCursor::Row row;
    for (const char* text : texts)
        row.push_back(Value::text(text));

    const Reply reply = decodeReply(vectors::executeReply(), 10);
    const db::Recordset& recorded = *std::get<Dispatch>(*reply.result).recordset;
    ASSERT_EQ(recorded.RecordCount(), 1);
    for (std::size_t i = 0; i < texts.size(); ++i) {
        EXPECT_EQ(recorded.Fields()[i].Name, columns[i].name);
        EXPECT_EQ(recorded.Fields()[i].DefinedSize, columns[i].size);
        EXPECT_EQ(recorded.Item(i).toText(), texts[i]);
    }
    RowsCursor cursor({}, {row});
    EXPECT_EQ(hex(written([&](const ByteSink& sink) {
                  writeReplyHead(sink, "dd+dyynum0ud9:6oo?,g", std::vector<Variant>(10));
                  writeReplyResult(sink, "dd+dyynum0ud9:6oo?,g", cursor, metadata);
                  writeReplyEnd(sink, "dd+dyynum0ud9:6oo?,g");
              })),
              hex(vectors::executeReply()));
}

} // namespace
