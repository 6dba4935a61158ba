#include "rds/http/HttpClient.h"

#include "rds/RemoteObject.h"
#include "tests/rds/Vectors.h"
#include "tests/support/Errors.h"
#include "tests/support/ScriptedServer.h"

#include <boost/asio/buffer.hpp>
#include <gmock/gmock.h>

#include <chrono>
#include <functional>
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
    return rds::HttpClient({.connect = 2s, .quiet = 2s});
}

/// The description of the error 462 that a call must end with.
std::string failureOf(const std::string& server, rds::HttpClient client = impatientClient(),
                      const std::string& body = "body") {
    const data::Error error = tests::errorOf([&] { client.post(server, Path, body); });
    EXPECT_EQ(error.Number(), 462);
    return error.Description();
}

std::chrono::milliseconds timeOf(const std::function<void()>& action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                 start);
}

/// Sends so many bytes again and again until the client goes away.
void trickle(tests::tcp::socket& socket, std::size_t bytes) {
    boost::system::error_code error;
    while (!error) {
        boost::asio::write(socket, boost::asio::buffer(std::string(bytes, 'x')), error);
        std::this_thread::sleep_for(20ms);
    }
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
    EXPECT_TRUE(rds::HttpClient().post(largeServer.address(), Path, "body").body == large);

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
        EXPECT_EQ(impatientClient().post(atOnce.address(), Path, "body").body, "hello");
        ScriptedServer byteByByte([&reply = reply](tests::tcp::socket& socket) {
            tests::receiveUntil(socket, "body");
            socket.set_option(tests::tcp::no_delay(true));
            for (const char c : reply) {
                sendRaw(socket, std::string_view(&c, 1));
                std::this_thread::sleep_for(1ms);
            }
        });
        EXPECT_EQ(impatientClient().post(byteByByte.address(), Path, "body").body, "hello");
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
        "HTTP/1.1 200 OK\r\n" + body, // its first line is in the head
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
    EXPECT_EQ(impatientClient().post("localhost:" + named.port(), Path, "body").body, "hello");
}

TEST(HttpClient, GivesAServerTimeThatHasAnEnd) {
    const std::string head = "HTTP/1.1 200 OK\r\n\r\n";
    const rds::HttpClient client({.connect = 2s,
                                  .quiet = 600ms,
                                  .rateWindow = 400ms,
                                  .leastBytesPerWindow = 2000,
                                  .largestBody = 3'000'000});
    struct Case {
        std::string start;
        std::size_t bytes; ///< that come behind it every 20 ms; 0: none
        std::chrono::milliseconds least;
    };
    const std::vector<Case> cases{
        {"", 0, 600ms},
        {"HTTP/1.1 100 Continue\r\n\r\n", 0, 600ms},
        {"HTTP/1.1 200 OK\r\nA: ", 10, 400ms},
        {head, 10, 400ms},
        {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5;", 10, 400ms},
        {head + std::string(1'000'000, 'x'), 10, 400ms}, // no credit is left of what came fast
        {head, 200'000, 0ms}};                           // endless
    for (const Case& c : cases) {
        SCOPED_TRACE(c.start.substr(0, 80) + std::to_string(c.bytes));
        ScriptedServer server([&c](tests::tcp::socket& socket) {
            tests::receiveUntil(socket, "body");
            sendRaw(socket, c.start);
            if (c.bytes == 0)
                tests::receiveRaw(socket);
            else
                trickle(socket, c.bytes);
        });
        const char* const reason = c.bytes > 1000 ? "too large" : "no answer in time";
        const auto time =
            timeOf([&] { EXPECT_THAT(failureOf(server.address(), client), HasSubstr(reason)); });
        EXPECT_GE(time, c.least);
        EXPECT_LT(time, c.least + 4s);
    }

    ScriptedServer deaf([](tests::tcp::socket&) { std::this_thread::sleep_for(2s); });
    EXPECT_THAT(failureOf(deaf.address(), client, std::string(50'000'000, 'x')),
                HasSubstr("no answer in time"));

    ScriptedServer fast([&](tests::tcp::socket& socket) { // for longer than the window
        tests::receiveUntil(socket, "body");
        sendRaw(socket, head);
        for (int i = 0; i < 25; ++i) {
            sendRaw(socket, std::string(1000, 'x'));
            std::this_thread::sleep_for(100ms);
        }
    });
    rds::HttpClient patient(
        {.connect = 2s, .quiet = 2s, .rateWindow = 1s, .leastBytesPerWindow = 2000});
    EXPECT_EQ(patient.post(fast.address(), Path, "body").body.size(), 25'000U);
}

TEST(HttpClient, EndsACallAtOnceWhenItsCallerSaysSo) {
    const std::string large(50'000'000, 'x');
    struct Case {
        const char* step;
        std::string host;
        std::string reply;
        int questions; ///< after which the answer is no
    };
    const std::string head = "HTTP/1.1 200 OK\r\n\r\n";
    const std::vector<Case> cases{
        {"looking the name up", "no-such-host.invalid:", "", 0},
        {"connecting", "127.0.0.1:", "", 0},
        {"sending", "127.0.0.1:", "", 5},
        {"waiting", "127.0.0.1:", "", 5},
        {"receiving little", "127.0.0.1:", head + 'x', 5},
        {"receiving much", "127.0.0.1:", head + std::string(100'000'000, 'x'), 20}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.step);
        const bool sending = c.step == std::string("sending");
        ScriptedServer server([&](tests::tcp::socket& socket) {
            if (!sending) {
                tests::receiveUntil(socket, "body");
                sendRaw(socket, c.reply);
                tests::receiveRaw(socket); // until the client closes
            } else {
                std::this_thread::sleep_for(1s);
            }
        });
        int left = c.questions;
        rds::HttpClient client({}, [&left] { return left-- > 0; });
        data::Error error(0, "");
        const auto time = timeOf([&] {
            error = tests::errorOf(
                [&] { client.post(c.host + server.port(), Path, sending ? large : "body"); });
        });
        EXPECT_EQ(error.Number(), data::number::Canceled);
        EXPECT_EQ(error.Description(), "The call was ended.");
        EXPECT_LT(time, 1s);
        EXPECT_EQ(left, -1) << "asked again after the end";
    }
}

TEST(HttpClient, TimeThatItsCallerTakesIsNotTheServers) {
    ScriptedServer server([](tests::tcp::socket& socket) {
        tests::receiveUntil(socket, "body");
        for (const char* piece : {"HTTP/1.1 200 OK\r\n\r\nhel", "lo"}) {
            std::this_thread::sleep_for(60ms);
            sendRaw(socket, piece);
        }
    });
    rds::HttpClient client({.connect = 2s, .quiet = 200ms, .rateWindow = 200ms}, [] {
        std::this_thread::sleep_for(400ms);
        return true;
    });
    EXPECT_EQ(client.post(server.address(), Path, "body").body, "hello");
}

TEST(HttpClient, LetsItsCallerRefuseAReplyByItsBeginning) {
    ScriptedServer server([](tests::tcp::socket& socket) {
        tests::receiveUntil(socket, "body");
        sendRaw(socket, "HTTP/1.1 200 OK\r\nContent-Type: text/odd\r\n\r\n1");
        std::this_thread::sleep_for(50ms);
        trickle(socket, 100'000);
    });
    std::vector<std::string> seen;
    const auto check = [&seen](const rds::HttpAnswer& soFar) {
        seen.push_back(soFar.contentType + ' ' + soFar.body.substr(0, 2));
        if (soFar.body.size() > 1)
            throw data::Error(5, "odd");
        return false;
    };
    EXPECT_EQ(
        tests::errorTextOf([&] { impatientClient().post(server.address(), Path, "body", check); }),
        "5 odd");
    EXPECT_THAT(seen, ::testing::ElementsAre("text/odd 1", "text/odd 1x"));
}

} // namespace
