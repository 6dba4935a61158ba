#include "rds/CallServer.h"

#include "db/Error.h"
#include "rds/DataSpace.h"
#include "rds/http/HttpServer.h"
#include "tests/support/ScriptedServer.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <stdexcept>
#include <string>
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
class FailingCursor : public db::Cursor {
public:
    explicit FailingCursor(int rows) : left_(rows) {
        fields_[0].Name = "A";
        fields_[0].DefinedSize = 1000;
    }

    const db::FieldList& fields() const override { return fields_; }
    db::Value value(std::size_t) const override { return db::Value::text(text_); }
    bool next() override {
        if (left_-- == 0)
            throw db::providerError("42S02", "the table went away");
        return true;
    }

private:
    db::FieldList fields_{1};
    std::string text_ = std::string(1000, 'x');
    int left_;
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
        arguments[1] = rds::Variant::string(arguments[1].toText() + "!");
        arguments[2] = rds::Empty{};
        result.value(std::int16_t{-1});
    }
};

class CallServerTest : public ::testing::Test {
protected:
    ~CallServerTest() override {
        http_.stop();
        thread_.join();
    }

    std::string address() const { return "127.0.0.1:" + std::to_string(http_.port()); }

    rds::RemoteObject remote(const std::string& progId) const {
        return rds::DataSpace().CreateObject(progId, "http://" + address());
    }

    /// Number and description of what Getsql ends with.
    std::pair<long, std::string> failureOf(const std::string& what,
                                           const std::string& progId = "odd.object") const {
        std::string sql = what;
        std::string connection = "c";
        rds::Variant information;
        try {
            remote(progId).Getsql(sql, 0, 1, information, connection);
        } catch (const db::Error& error) {
            EXPECT_EQ(sql, what);
            return {error.Number(), error.Description()};
        }
        return {0, "no error"};
    }

    std::string rawCall(rds::Call call, const std::string& path) const {
        call.boundary = rds::newBoundary();
        return rds::HttpClient().post(address(), path, rds::encodeCall(call));
    }

    OddObject object_;
    rds::CallServer calls_{{.returnArguments = true}};
    rds::HttpServer http_{{}, [this](const rds::HttpRequest& request, rds::HttpReply& reply) {
                              calls_.handle(request, reply);
                          }};
    std::thread thread_{[this] {
        calls_.add("odd.Object", object_);
        http_.run();
    }};
};

TEST_F(CallServerTest, FailedCallsCarryTheirNumber) {
    EXPECT_EQ(failureOf("few rows"), std::pair(-2147217865L, std::string("the table went away")));
    EXPECT_EQ(failureOf("internal"), std::pair(-2147467259L, std::string("an odd thing")));
    EXPECT_EQ(failureOf("x", "no.object").first, static_cast<std::int32_t>(0x80070057));
    EXPECT_EQ(failureOf("nothing").first, 91);
    EXPECT_EQ(failureOf("text").first, 13);
    EXPECT_EQ(failureOf("procedure").first, 13);

    const auto errorOf = [&](const rds::Call& call) {
        try {
            rds::decodeReply(rawCall(call, rds::callPath(call)), call.arguments.size());
        } catch (const db::Error& error) {
            return static_cast<std::uint32_t>(error.Number());
        }
        return 0U;
    };
    EXPECT_EQ(errorOf({"ODD.object", "getSQL", std::vector<rds::Variant>(5), ""}), 0U);
    EXPECT_EQ(errorOf({"odd.object", "Other", {}, ""}), rds::scode::UnknownMethod);
    EXPECT_EQ(errorOf({"odd.object", "Getsql", {}, ""}), rds::scode::InvalidArgument);
}

TEST_F(CallServerTest, ResetsAReplyThatFailsOnTheWay) {
    const auto [number, description] = failureOf("many rows");
    EXPECT_EQ(number, 462);
    EXPECT_THAT(description, HasSubstr("reset"));
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

TEST_F(CallServerTest, RefusesWhatIsNoCall) {
    const auto ask = [&](const char* request) {
        return tests::RawClient(http_.port()).ask(request);
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
    const std::vector<std::pair<const char*, const char*>> wrong{{"", "http://server"},
                                                                 {"  ", "http://server"},
                                                                 {"some.object", ""},
                                                                 {"some.object", "http://"},
                                                                 {"some.object", "http:// "},
                                                                 {"some.object", "server"},
                                                                 {"some.object", "https://server"},
                                                                 {"some object", "http://server"}};
    for (const auto& [progId, connection] : wrong) {
        try {
            space.CreateObject(progId, connection);
            ADD_FAILURE() << progId << ' ' << connection;
        } catch (const db::Error& error) {
            EXPECT_EQ(error.Number(), 429);
            EXPECT_EQ(error.Description(), "ActiveX component can't create object");
        }
    }
}

} // namespace
