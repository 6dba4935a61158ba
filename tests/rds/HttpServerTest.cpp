#include "rds/http/HttpServer.h"

#include "db/Error.h"
#include "rds/http/HttpClient.h"
#include "tests/support/RunningServer.h"
#include "tests/support/ScriptedServer.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace quillet;
using namespace std::chrono_literals;
using quillet::tests::RawClient;
using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

using RunningServer = tests::Running<rds::HttpServer>;
using Options = rds::HttpServer::Options;

void echo(const rds::HttpRequest& request, rds::HttpReply& reply) {
    reply.write(request.method + ' ' + request.target + ' ' + request.header("x-NOTE") + ' ');
    reply.write(request.body);
}

/// The reply's body, or the error.
std::string post(const std::string& server, const std::string& path = "/") {
    try {
        return rds::HttpClient({.connect = 2s, .quiet = 5s}).post(server, path, "body").body;
    } catch (const db::Error& error) {
        return std::to_string(error.Number()) + ' ' + error.Description();
    }
}

TEST(HttpServer, AnswersClientsOfEveryKind) {
    RunningServer server(Options{}, echo);
    EXPECT_EQ(post(server.address(), "/a.b"), "POST /a.b  body");

    EXPECT_THAT(RawClient(server.port()).ask("GET /x?y HTTP/1.0\r\nX-Note: n\r\n\r\n"),
                AllOf(StartsWith("HTTP/1.1 200 OK\r\n"), HasSubstr("\r\nDate: "),
                      HasSubstr("\r\nConnection: close\r\n"), EndsWith("\r\n\r\nGET /x?y n ")));
    EXPECT_THAT(RawClient(server.port())
                    .ask("POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n"
                         "2\r\nhe\r\n3\r\nllo\r\n0\r\n\r\n"),
                EndsWith("POST /  hello"));
    // Some clients send a line end behind the body; it must not cost them the reply.
    EXPECT_THAT(RawClient(server.port())
                    .ask("POST / HTTP/1.1\r\nContent-Length: 2\r\nExpect: 100-continue\r\n\r\n"
                         "hi\r\n"),
                AllOf(StartsWith("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200 OK\r\n"),
                      EndsWith("POST /  hi")));
}

TEST(HttpServer, RefusesWhatItCannotTake) {
    RunningServer server(Options{.maxBody = 10, .patience = 500ms}, echo);
    const std::vector<std::pair<const char*, const char*>> requests{
        {"POST / HTTP/1.1\r\n\r\n", "HTTP/1.1 411 "},
        {"POST / HTTP/1.1\r\nContent-Length: 11\r\n\r\n12345678901", "HTTP/1.1 413 "},
        {"POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n6\r\n123456\r\n6\r\n123456\r\n",
         "HTTP/1.1 413 "},
        {"hello?\r\n\r\n", "HTTP/1.1 400 "},
        {"POST / HTTP/1.1\r\nContent-Length: -1\r\n\r\n", "HTTP/1.1 400 "}};
    for (const auto& [request, status] : requests)
        EXPECT_THAT(RawClient(server.port()).ask(request), StartsWith(status)) << request;
    // Too slow: dropped without an answer.
    for (const char* request : {"", "POST / HT", "POST / HTTP/1.1\r\nContent-Length: 5\r\n\r\nhe"})
        EXPECT_EQ(RawClient(server.port()).ask(request), "") << request;
    EXPECT_THAT(RawClient(server.port()).ask("GET / HTTP/1.1\r\n\r\n"), HasSubstr("200 OK"));

    EXPECT_THROW(rds::HttpServer({.address = "127.0.0.1", .port = server.port()}, echo), db::Error);
}

TEST(HttpServer, ServesOnlySoManyAtOnce) {
    std::promise<void> open;
    const std::shared_future<void> gate = open.get_future().share();
    std::atomic<int> inside = 0;
    RunningServer server(Options{.maxConnections = 3},
                         [&](const rds::HttpRequest&, rds::HttpReply& reply) {
                             ++inside;
                             gate.wait();
                             reply.write("done");
                         });
    std::vector<std::future<std::string>> calls;
    for (int i = 0; i < 3; ++i)
        calls.push_back(std::async(std::launch::async, [&] { return post(server.address()); }));
    while (inside < 3)
        std::this_thread::sleep_for(1ms);
    EXPECT_THAT(post(server.address()), HasSubstr("503"));
    open.set_value();
    for (auto& call : calls)
        EXPECT_EQ(call.get(), "done");
    EXPECT_EQ(post(server.address()), "done");
}

TEST(HttpServer, FailingHandlersGiveNoShortReply) {
    RunningServer server(Options{}, [](const rds::HttpRequest& request, rds::HttpReply& reply) {
        if (request.target == "/late") {
            reply.write("the first part");
            std::this_thread::sleep_for(50ms); // so that the client has it
        }
        throw std::runtime_error("secret");
    });
    EXPECT_THAT(RawClient(server.port()).ask("GET /early HTTP/1.1\r\n\r\n"),
                AllOf(StartsWith("HTTP/1.1 500 "), Not(HasSubstr("secret"))));
    EXPECT_THAT(post(server.address(), "/late"),
                AllOf(StartsWith("462 "), HasSubstr("connection reset")));
}

TEST(HttpServer, OutlivesClientsThatGoAway) {
    std::promise<long> number;
    RunningServer server(Options{}, [&](const rds::HttpRequest& request, rds::HttpReply& reply) {
        reply.write("well");
        if (request.target == "/")
            return;
        try {
            const std::string piece(1'000'000, 'x');
            for (;;)
                reply.write(piece);
        } catch (const db::Error& error) {
            number.set_value(error.Number());
            throw;
        }
    });
    {
        RawClient client(server.port());
        tests::sendRaw(client.socket(), "GET /endless HTTP/1.1\r\n\r\n");
        tests::receiveRaw(client.socket(), 1000);
    }
    EXPECT_EQ(number.get_future().get(), 462);
    EXPECT_EQ(post(server.address()), "well");
}

TEST(HttpServer, StopsAfterTheRequestsUnderWay) {
    std::promise<void> entered;
    RunningServer server(Options{}, [&](const rds::HttpRequest&, rds::HttpReply& reply) {
        entered.set_value();
        std::this_thread::sleep_for(200ms);
        reply.write("answered");
    });
    RawClient idle(server.port());
    auto call = std::async(std::launch::async, [&] { return post(server.address()); });
    entered.get_future().wait();
    const auto start = std::chrono::steady_clock::now();
    server.stop();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
    EXPECT_EQ(call.get(), "answered");
    EXPECT_EQ(tests::receiveRaw(idle.socket()), "");
    EXPECT_THAT(post(server.address()), HasSubstr("refused"));
}

} // namespace
