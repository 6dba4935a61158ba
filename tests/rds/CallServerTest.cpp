#include "rds/CallServer.h"

#include "rds/DataSpace.h"
#include "rds/http/HttpServer.h"
#include "tests/support/Errors.h"
#include "tests/support/RunningServer.h"
#include "tests/support/ScriptedServer.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace quillet;
using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

/// Rows of 1,000 characters until it fails.
class FailingCursor : public data::Cursor {
public:
    explicit FailingCursor(int rows) : left_(rows) { fields_[0].DefinedSize = 1000; }

    const data::FieldList& fields() const override { return fields_; }
    data::Value value(std::size_t) const override { return data::Value::text(text_); }
    bool next() override {
        return left_-- > 0 ? true : throw data::providerError("42S02", "the table went away");
    }

private:
    data::FieldList fields_{1};
    std::string text_ = std::string(1000, 'x');
    int left_;
};

/// Rows of 1,000 characters that counts how many have been taken.
class CountedCursor : public data::Cursor {
public:
    CountedCursor(int rows, std::atomic<int>& taken) : rows_(rows), taken_(taken) {
        fields_[0].DefinedSize = 1000;
        fields_[0].Type = data::DataType::Char;
    }

    const data::FieldList& fields() const override { return fields_; }
    data::Value value(std::size_t) const override { return data::Value::text(text_); }
    bool next() override { return ++taken_ <= rows_; }

private:
    data::FieldList fields_{1};
    std::string text_ = std::string(1000, 'x');
    int rows_;
    std::atomic<int>& taken_;
};

/// Returns many rows.
class LargeObject : public rds::ServerObject {
public:
    explicit LargeObject(int rows) : rows_(rows) {}

    std::vector<Method> methods() override {
        return {{"Rows", {}, [this](Arguments&, rds::CallResult& result) {
                     CountedCursor cursor(rows_, taken);
                     result.rows(cursor);
                 }}};
    }

    std::atomic<int> taken = 0;

private:
    int rows_;
};

/// Getsql does what its first argument says.
class OddObject : public rds::ServerObject {
public:
    std::vector<Method> methods() override {
        return {{"Getsql", {true, false, false, true, true}, getsql},
                {"PUTSQL", {true, true, true}, putsql}};
    }

private:
    static void getsql(Arguments& arguments, rds::CallResult& result) {
        const std::string what = arguments[0].toText();
        if (what == "few rows" || what == "many rows") {
            FailingCursor cursor(what == "few rows" ? 10 : 5000);
            result.rows(cursor);
        } else if (what == "nothing")
            result.value(rds::Dispatch{});
        else if (what == "text")
            result.value(rds::Variant::string("text"));
        else if (what == "internal")
            throw std::runtime_error("an odd thing");
    }

    /// Turns its arguments round.
    static void putsql(Arguments& arguments, rds::CallResult& result) {
        arguments[0] = rds::Variant::strings({"", "changed", "longer"});
        const std::string what = arguments[1].toText();
        arguments[1] = rds::Variant::string(what + "!");
        arguments[2] = rds::Empty{};
        if (what == "no array")
            arguments[0] = rds::Variant::string("text");
        if (what == "long")
            result.value(std::int32_t{0});
        else if (what == "empty")
            result.value(rds::Empty{});
        else if (what == "object")
            result.value(rds::Dispatch{});
        else if (what != "procedure")
            result.value(std::int16_t{-1});
    }
};

class CallServerTest : public ::testing::Test {
protected:
    CallServerTest() { calls_.add("odd.Object", object_); }

    rds::RemoteObject remote(const std::string& progId) const {
        return rds::DataSpace().CreateObject(progId, "http://" + server_.address());
    }

    /// What Getsql ends with.
    std::string failureOf(const std::string& what, const std::string& progId = "odd.object") const {
        return tests::errorTextOf([&] {
            std::string sql = what, connection = "c";
            rds::Variant information;
            remote(progId).Getsql(sql, 0, 1, information, connection);
        });
    }

    OddObject object_;
    rds::CallServer calls_{{.returnArguments = true}};
    tests::Running<rds::HttpServer> server_{
        rds::HttpServer::Options{},
        [this](const auto& request, auto& reply) { calls_.handle(request, reply); }};
};

TEST_F(CallServerTest, FailedCallsCarryTheirNumber) {
    EXPECT_EQ(failureOf("few rows"), "-2147217865 the table went away");
    EXPECT_EQ(failureOf("internal"), "-2147467259 an odd thing");
    EXPECT_THAT(failureOf("x", "no.object"), StartsWith("-2147024809 "));
    EXPECT_THAT(failureOf("nothing"), StartsWith("91 "));
    EXPECT_THAT(failureOf("text"), StartsWith("13 "));
    EXPECT_THAT(failureOf("procedure"), StartsWith("13 "));
    EXPECT_THAT(failureOf("many rows"), AllOf(StartsWith("462 "), HasSubstr("reset")));

    const auto errorOf = [&](rds::Call call) {
        call.boundary = rds::newBoundary();
        const std::string reply =
            rds::HttpClient()
                .post(server_.address(), rds::callPath(call), rds::encodeCall(call))
                .body;
        const auto decode = [&] { rds::decodeReply(reply, call.arguments.size()); };
        return static_cast<std::uint32_t>(tests::errorOf(decode).Number());
    };
    EXPECT_EQ(errorOf({"ODD.object", "getSQL", std::vector<rds::Variant>(5), ""}), 0U);
    EXPECT_EQ(errorOf({"odd.object", "Other", {}, ""}), rds::scode::UnknownMethod);
    EXPECT_EQ(errorOf({"odd.object", "Getsql", {}, ""}), rds::scode::InvalidArgument);
}

TEST_F(CallServerTest, ChangesOnlyTheArgumentsThatComeBack) {
    std::vector<std::string> statements{"", "first"};
    std::string errorText = "text";
    std::string connection = "kept";
    EXPECT_TRUE(remote("odd.object").PUTSQL(statements, errorText, connection));
    EXPECT_THAT(statements, ::testing::ElementsAre("", "changed", "longer"));
    EXPECT_EQ(errorText, "text!");
    EXPECT_EQ(connection, "kept");
}

TEST_F(CallServerTest, TakesWhatOldObjectsReturnForABoolean) {
    std::vector<std::string> statements;
    std::string connection;
    for (std::string what : {"long", "empty"})
        EXPECT_FALSE(remote("odd.object").PUTSQL(statements, what, connection));
    statements = {"kept"};
    std::string noArray = "no array";
    EXPECT_TRUE(remote("odd.object").PUTSQL(statements, noArray, connection));
    EXPECT_EQ(noArray + statements.front(), "no array!kept") << "the call has been made";
    for (const char* wrong : {"object", "procedure"}) {
        std::string what = wrong;
        const auto call = [&] { remote("odd.object").PUTSQL(statements, what, connection); };
        EXPECT_EQ(tests::errorOf(call).Number(), 13) << wrong;
        EXPECT_EQ(what + statements.front(), std::string(wrong) + "kept");
    }
}

TEST_F(CallServerTest, TakesNoMoreRowsThanItsClientReads) {
    constexpr int Rows = 60'000;
    LargeObject large(Rows);
    calls_.add("large", large);
    const rds::Call call{"large", "Rows", {}, rds::newBoundary()};
    const std::string body = rds::encodeCall(call);
    tests::RawClient client(server_.port());
    tests::sendRaw(client.socket(),
                   rds::HttpClient::requestHead("x", rds::callPath(call), body.size()) + body);
    // Until the connection can hold no more: what is not sent by then has not been asked for.
    for (int before = -1; before != large.taken || before == 0;) {
        before = large.taken;
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
    }
    EXPECT_LT(large.taken, Rows / 2) << "of 60 MB";
    const std::string reply = tests::receiveRaw(client.socket());
    const std::size_t head = reply.find("\r\n\r\n") + 4;
    const rds::Reply read = rds::decodeReply(std::string_view(reply).substr(head), 0);
    EXPECT_EQ(std::get<rds::Dispatch>(*read.result).recordset->RecordCount(), Rows);
}

TEST_F(CallServerTest, ReadsMessagesThatBeginInTheHttpHead) {
    const rds::Call call{"odd.object",
                         "PUTSQL",
                         {rds::Empty{}, rds::Variant::string("e"), rds::Empty{}},
                         "b0undary"};
    const std::string body = rds::encodeCall(call);
    const std::size_t type = body.find("Content-Type: ");
    const std::size_t parts = body.find("\r\n", type) + 2;
    for (const std::size_t from : {parts, parts + 2}) { // with a blank line or without
        const std::string reply =
            tests::RawClient(server_.port())
                .ask("POST " + rds::callPath(call) + " HTTP/1.1\r\n" + body.substr(0, parts) +
                     "Content-Length: " + std::to_string(body.size() - from) + "\r\n\r\n" +
                     body.substr(from));
        EXPECT_THAT(reply, HasSubstr("boundary=b0undary; num-args=3\r\n"));
        EXPECT_THAT(reply, Not(HasSubstr("Content-Length: 6\r\n"))) << "no error";
    }
}

TEST_F(CallServerTest, RefusesWhatIsNoCall) {
    const auto ask = [&](const char* request) {
        return tests::RawClient(server_.port()).ask(request);
    };
    EXPECT_THAT(ask("GET /msadc/msadcs.dll/odd.object.Getsql HTTP/1.1\r\n\r\n"),
                StartsWith("HTTP/1.1 405 "));
    EXPECT_THAT(ask("GET / HTTP/1.1\r\n\r\n"), StartsWith("HTTP/1.1 404 "));
    EXPECT_THAT(ask("POST /MSADC/msadcs.dll/odd.object.Getsql HTTP/1.1\r\n"
                    "Content-Length: 4\r\n\r\nwhat"),
                AllOf(StartsWith("HTTP/1.1 200 "), Not(HasSubstr("multipart")),
                      HasSubstr("\r\n\r\nContent-Type: application/x-varg\r\n"
                                "Content-Length: 6\r\n\r\n")));
}

TEST(DataSpace, MakesProxiesOfHttpAddressesOnly) {
    const rds::DataSpace space;
    EXPECT_NO_THROW(space.CreateObject("some.object", "HTTP://no-such-host.invalid/"));
    const std::vector<std::pair<const char*, const char*>> wrong{
        {"  ", "http://server"},   {"some object", "http://server"},
        {"some.object", ""},       {"some.object", "http:// "},
        {"some.object", "server"}, {"some.object", "https://server"}};
    for (const auto& [progId, connection] : wrong) {
        EXPECT_EQ(tests::errorTextOf([&, p = progId, c = connection] { space.CreateObject(p, c); }),
                  "429 ActiveX component can't create object")
            << progId << ' ' << connection;
    }
}

} // namespace
