#include "rds/http/HttpServer.h"

#include "data/Error.h"
#include "rds/http/HttpClient.h"
#include "tests/support/Eventually.h"
#include "tests/support/Gate.h"
#include "tests/support/RunningServer.h"
#include "tests/support/ScriptedServer.h"
#include "tests/support/WatchedServer.h"

#include <gmock/gmock.h>

#include <chrono>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace quillet;
using namespace std::chrono_literals;
using quillet::tests::eventually;
using quillet::tests::RawClient;
using quillet::tests::WatchedServer;
using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

using RunningServer = tests::Running<rds::HttpServer>;
using Options = rds::HttpServer::Options;
using Refusal = rds::HttpServer::Refusal;

void echo(const rds::HttpRequest& request, rds::HttpReply& reply) {
    reply.write(request.method + ' ' + request.target + ' ' + request.header("x-NOTE") + ' ');
    reply.write(request.body);
}

/// The reply's body, or the error.
std::string post(const std::string& server, const std::string& path = "/") {
    try {
        return rds::HttpClient({.connect = 2s, .quiet = 5s}).post(server, path, "body").body;
    } catch (const data::Error& error) {
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

TEST(HttpServer, SendsWholePagesToo) {
    RunningServer server(Options{}, [](const rds::HttpRequest& request, rds::HttpReply& reply) {
        if (request.target == "/split")
            reply.page(200, "text/plain", "", {{"X-Note", "a\r\nSet-Cookie: b"}});
        else
            reply.page(404, "text/html", std::string(300'000, 'x'), {{"Allow", "GET"}, {"X", ""}});
    });
    const std::string page = RawClient(server.port()).ask("GET / HTTP/1.1\r\n\r\n");
    EXPECT_THAT(page, AllOf(StartsWith("HTTP/1.1 404 Not Found\r\n"),
                            HasSubstr("\r\nContent-Type: text/html\r\nContent-Length: 300000\r\n"
                                      "Cache-Control: no-store\r\nAllow: GET\r\nX: \r\n"),
                            EndsWith("xxx")));
    EXPECT_EQ(page.size() - page.find("\r\n\r\n"), 300'004U);
    EXPECT_THAT(RawClient(server.port()).ask("GET /split HTTP/1.1\r\n\r\n"),
                AllOf(StartsWith("HTTP/1.1 500 "), Not(HasSubstr("Cookie"))));
}

TEST(HttpServer, RefusesWhatItCannotTake) {
    WatchedServer server(Options{.maxBody = 10, .headTime = 500ms, .bodyTime = 500ms}, echo);
    // Where another could see another end of the body, it is refused.
    const std::string chunk = "1\r\na\r\n0\r\n\r\n";
    const std::vector<std::pair<std::string, const char*>> requests{
        {"POST / HTTP/1.1\r\n\r\n", "HTTP/1.1 411 "},
        {"POST / HTTP/1.1\r\nContent-Length: 11\r\n\r\n", "HTTP/1.1 413 "},
        {"POST / HTTP/1.1\r\nContent-Length: 18446744073709551615\r\n\r\n", "HTTP/1.1 413 "},
        {"POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n6\r\n123456\r\n6\r\n123456\r\n",
         "HTTP/1.1 413 "},
        {"hello?\r\n\r\n", "HTTP/1.1 400 "},
        {"GET / HTTP/2.0\r\n\r\n", "HTTP/1.1 400 "},
        {"GET / HTTP/1.9\r\n\r\n", "HTTP/1.1 400 "},
        {"POST / HTTP/1.1\r\nContent-Length: -1\r\n\r\n", "HTTP/1.1 400 "},
        {"POST / HTTP/1.1\r\nContent-Length: 1\r\nContent-Length: 1\r\n\r\na", "HTTP/1.1 400 "},
        {"POST / HTTP/1.1\r\nContent-Length: 1, 1\r\n\r\na", "HTTP/1.1 400 "},
        {"POST / HTTP/1.1\r\nContent-Length: 1\r\nTransfer-Encoding: chunked\r\n\r\n" + chunk,
         "HTTP/1.1 400 "},
        {"POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\nContent-Length: 1\r\n\r\n" + chunk,
         "HTTP/1.1 400 "},
        {"POST / HTTP/1.1\r\nTransfer-Encoding: gzip, chunked\r\n\r\n" + chunk, "HTTP/1.1 400 "},
        {"GET / HTTP/1.1\r\nTransfer-Encoding: identity\r\n\r\n", "HTTP/1.1 400 "},
        {"GET / HTTP/1.1\r\nX: " + std::string(70'000, 'x') + "\r\n\r\n", "HTTP/1.1 400 "}};
    for (const auto& [request, status] : requests)
        EXPECT_THAT(RawClient(server.port()).ask(request), StartsWith(status))
            << request.substr(0, 100);
    EXPECT_EQ(server.refused(Refusal::BadRequest) + server.refused(Refusal::TooLarge),
              static_cast<std::ptrdiff_t>(requests.size()));
    EXPECT_THAT(RawClient(server.port()).ask("GET / HTTP/1.1\r\nX-Note: a\r\n b\r\n\r\n"),
                EndsWith("GET / a b "));
    // What stands behind a chunked body is no header.
    EXPECT_THAT(RawClient(server.port())
                    .ask("POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n"
                         "1\r\na\r\n0\r\nX-Note: late\r\n\r\n"),
                EndsWith("POST /  a"));
    // Too slow: dropped without an answer.
    for (const char* request : {"", "POST / HT", "POST / HTTP/1.1\r\nContent-Length: 5\r\n\r\nhe"})
        EXPECT_EQ(RawClient(server.port()).ask(request), "") << request;
    EXPECT_EQ(server.refused(Refusal::TooSlow), 3);
    EXPECT_THAT(RawClient(server.port()).ask("GET / HTTP/1.1\r\n\r\n"), HasSubstr("200 OK"));

    EXPECT_THROW(rds::HttpServer({.address = "127.0.0.1", .port = server.port()}, echo),
                 data::Error);
}

TEST(HttpServer, ServesOnlyWhomItAdmits) {
    WatchedServer server(Options{.admits = rds::AddressList::parse("127.0.0.1, 10.0.0.0/8")}, echo);
    EXPECT_EQ(post(server.address()), "POST /  body");
    // The body need not come for this, nor is it asked for.
    EXPECT_THAT(RawClient(server.port(), "127.0.0.2")
                    .ask("POST / HTTP/1.1\r\nContent-Length: 99999999\r\n"
                         "Expect: 100-continue\r\n\r\n"),
                StartsWith("HTTP/1.1 403 "));
    EXPECT_EQ(server.refused(Refusal::NotAllowed), 1);
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
        } catch (const data::Error& error) {
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
    tests::Gate gate;
    WatchedServer server(Options{.workers = 1},
                         [&](const rds::HttpRequest& request, rds::HttpReply& reply) {
                             gate.pass(request);
                             reply.write("answered");
                         });
    RawClient idle(server.port());
    RawClient half(server.port());
    half.send("POST / HTTP/1.1\r\nContent-Length: 9\r\n\r\n");
    auto running = std::async(std::launch::async, [&] { return post(server.address()); });
    EXPECT_TRUE(eventually([&] { return gate.inside() == 1; }));
    auto queued = std::async(std::launch::async, [&] { return post(server.address()); });
    EXPECT_TRUE(eventually([&] { return server.load().queued == 1; }));
    auto stopped = std::async(std::launch::async, [&] { server.stop(); });
    EXPECT_EQ(idle.reply() + half.reply(), "");
    EXPECT_THAT(post(server.address()), HasSubstr("refused"));
    gate.open();
    EXPECT_EQ(running.get(), "answered");
    EXPECT_EQ(queued.get(), "answered");
    stopped.get();
}

TEST(HttpServer, WaitsForRequestsOnlySoLong) {
    tests::Gate closed;
    WatchedServer server(Options{.workers = 1, .drain = 200ms},
                         [&](const rds::HttpRequest& request, rds::HttpReply& reply) {
                             reply.write("the first part");
                             EXPECT_FALSE(closed.pass(request));
                             EXPECT_THROW(reply.write("more"), data::Error);
                         });
    auto running = std::async(std::launch::async, [&] { return post(server.address()); });
    EXPECT_TRUE(eventually([&] { return closed.inside() == 1; }));
    auto queued = std::async(std::launch::async, [&] { return post(server.address()); });
    EXPECT_TRUE(eventually([&] { return server.load().queued == 1; }));
    server.stop();
    EXPECT_THAT(running.get(), AllOf(StartsWith("462 "), HasSubstr("connection reset")));
    EXPECT_THAT(queued.get(), AllOf(StartsWith("462 "), HasSubstr("connection reset")));
    EXPECT_EQ(closed.inside(), 1) << "the one in the queue has not been run";
}

} // namespace
