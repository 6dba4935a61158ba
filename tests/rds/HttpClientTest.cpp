#include "rds/http/HttpClient.h"

#include "rds/RemoteObject.h"
#include "tests/rds/Vectors.h"
#include "tests/support/Errors.h"
#include "tests/support/ScriptedServer.h"

#include <gmock/gmock.h>

#include <chrono>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace quillet;
using namespace std::chrono_literals;
using quillet::tests::ScriptedServer;
using quillet::tests::sendRaw;
using ::testing::AllOf;
using ::testing::HasSubstr;

constexpr const char* Path = "/msadc/msadcs.dll/some.object.Getsql";

rds::HttpClient impatientClient() {
    return rds::HttpClient({2s, 2s});
}

/// The description of the error 462 that a call must end with.
std::string failureOf(const std::string& server) {
    const db::Error error = tests::errorOf([&] { impatientClient().post(server, Path, "body"); });
    EXPECT_EQ(error.Number(), 462);
    return error.Description();
}

TEST(HttpClient, SendsThePublishedHeads) {
    EXPECT_EQ(rds::HttpClient::requestHead("bradrhod1",
                                           "/msadc/msadcs.dll/AdvancedDataFactory.Execute", 827),
              "POST /msadc/msadcs.dll/AdvancedDataFactory.Execute HTTP/1.1\r\n"
              "User-Agent: ACTIVEDATA\r\n"
              "Host: bradrhod1\r\n"
              "Content-Length: 827\r\n"
              "Connection: Keep-Alive\r\n"
              "Cache-Control: no-cache\r\n"
              "\r\n");
    ScriptedServer server("body", "HTTP/1.1 200 OK\r\n\r\n");
    rds::HttpClient().post(server.address(), Path, "the body");
    EXPECT_EQ(server.received(),
              rds::HttpClient::requestHead(server.address(), Path, 8) + "the body");
}

TEST(HttpClient, ReadsEveryFormOfReply) {
    std::string large(20'000'000, '\0');
    for (std::size_t i = 0; i < large.size(); ++i)
        large[i] = static_cast<char>(i * 31 + i / 4096);
    ScriptedServer largeServer("body", "HTTP/1.1 200 OK\r\n\r\n" + large);
    EXPECT_TRUE(rds::HttpClient().post(largeServer.address(), Path, "body") == large);

    const std::vector<std::pair<std::string, std::string>> replies{
        {"length", "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello"},
        {"bytes behind the length", "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhelloworld"},
        {"close", "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\nhello"},
        {"old version", "HTTP/1.0 200 Fine\r\n\r\nhello"},
        {"chunks", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                   "2;note=1\r\nhe\r\n3\r\nllo\r\n0\r\nTrailer: 1\r\n\r\n"},
        {"interim replies", "HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 100 Continue\r\nA: b\r\n\r\n"
                            "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello"}};
    for (const auto& [form, reply] : replies) {
        SCOPED_TRACE(form);
        ScriptedServer atOnce("body", reply);
        EXPECT_EQ(impatientClient().post(atOnce.address(), Path, "body"), "hello");
        ScriptedServer byteByByte([&reply = reply](tests::tcp::socket& socket) {
            tests::receiveUntil(socket, "body");
            socket.set_option(tests::tcp::no_delay(true));
            for (const char c : reply) {
                sendRaw(socket, std::string_view(&c, 1));
                std::this_thread::sleep_for(1ms);
            }
        });
        EXPECT_EQ(impatientClient().post(byteByByte.address(), Path, "body"), "hello");
    }
}

TEST(HttpClient, RefusesCutAndWrongReplies) {
    const std::vector<std::pair<std::string, std::string>> replies{
        {"HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\nhello", "cut short"},
        {"HTTP/1.1 200 OK\r\nContent-Length: 999999999999\r\n\r\nhello", "too large"},
        {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n", "cut short"},
        {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nx\r\nhello\r\n", "not HTTP"},
        {"HTTP/1.1 200 OK\r\nConten", "cut short"},
        {"HTTP/1.1 100 Continue\r\n\r\n", "closed without a reply"},
        {"HTTP/1.1 404 Object Not Found\r\n\r\n<html>", "404 Object Not Found"},
        {"HTTP/1.1 302 Found\r\nLocation: http://elsewhere/\r\n\r\n", "302 Found"},
        {"HTTP/1.1 200 OK\r\nLarge: " + std::string(100'000, 'x') + "\r\n\r\n", "not HTTP"},
        {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5;" + std::string(300'000, 'x'),
         "not HTTP"},
        {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n0\r\nTrailer: " +
             std::string(300'000, 'x'),
         "not HTTP"},
        {"SSH-2.0-server\r\n", "not HTTP"},
        {"", "closed without a reply"}};
    for (const auto& [reply, reason] : replies) {
        SCOPED_TRACE(reply.substr(0, 80));
        ScriptedServer server("body", reply);
        EXPECT_THAT(failureOf(server.address()),
                    AllOf(HasSubstr(server.address()), HasSubstr(reason)));
    }
    ScriptedServer unwilling([](tests::tcp::socket& socket) { // reads none of the body
        tests::receiveRaw(socket, 1);
        sendRaw(socket, "HTTP/1.1 403 Forbidden\r\nContent-Length: 0\r\n\r\n");
        tests::receiveRaw(socket);
    });
    EXPECT_THAT(failureOf(unwilling.address()), HasSubstr("403 Forbidden"));
}

TEST(HttpClient, NoCallSucceedsWithACutReplyWhateverItsForm) {
    const std::string body = tests::vectors::putsqlReplyTrue();
    std::ostringstream chunked;
    chunked << "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n64\r\n"
            << body.substr(0, 100) << "\r\n"
            << std::hex << body.size() - 100 << "\r\n"
            << body.substr(100) << "\r\n0\r\n\r\n";
    const std::vector<std::string> replies{
        "HTTP/1.1 200 OK\r\n\r\n" + body,
        "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body,
        chunked.str()};
    for (const std::string& reply : replies) {
        for (std::size_t size = 0; size <= reply.size(); ++size) {
            ScriptedServer server("--\r\n", reply.substr(0, size));
            std::vector<std::string> statements{"", "s"};
            std::string errorText = "kept", connection;
            const auto call = [&] {
                rds::RemoteObject("a.b", server.address(), impatientClient())
                    .PUTSQL(statements, errorText, connection);
            };
            ASSERT_EQ(tests::errorOf(call).Number() == 0, size == reply.size())
                << size << " of " << reply;
            ASSERT_EQ(errorText, size == reply.size() ? "DB1" : "kept");
        }
    }
}

TEST(HttpClient, NamesWhatKeepsItFromTheServer) {
    std::string unused;
    { unused = ScriptedServer("", "").address(); }
    EXPECT_THAT(failureOf(unused), AllOf(HasSubstr(unused), HasSubstr("connection refused")));
    EXPECT_THAT(failureOf("no-such-host.invalid"), HasSubstr("no-such-host.invalid"));
    for (const char* wrong : {"", "host:", "host:0", "host:65536", "host:8x", "[::1", "[::1]80",
                              "two words", "host/path", "line\r\nbreak"})
        EXPECT_THAT(failureOf(wrong), HasSubstr("not a server address")) << wrong;

    // Every address of a name is tried: "localhost" may be ::1 first.
    ScriptedServer named("body", "HTTP/1.1 200 OK\r\n\r\nhello");
    EXPECT_EQ(impatientClient().post("localhost:" + named.port(), Path, "body"), "hello");
}

TEST(HttpClient, WaitsForBytesNotForTheWhole) {
    ScriptedServer silent([](tests::tcp::socket& socket) {
        sendRaw(socket, "HTTP/1.1 200 OK\r\n\r\nhel");
        tests::receiveRaw(socket);
    });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THAT(failureOf(silent.address()), HasSubstr("no answer in time"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 20s);

    ScriptedServer slow([](tests::tcp::socket& socket) {
        tests::receiveUntil(socket, "body");
        sendRaw(socket, "HTTP/1.1 200 OK\r\n\r\n");
        for (int i = 0; i < 5; ++i) {
            std::this_thread::sleep_for(500ms);
            sendRaw(socket, "x");
        }
    });
    EXPECT_EQ(impatientClient().post(slow.address(), Path, "body"), "xxxxx");
}

} // namespace
