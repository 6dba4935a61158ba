#include "data/Error.h"
#include "rds/http/HttpServer.h"
#include "tests/support/Errors.h"
#include "tests/support/Eventually.h"
#include "tests/support/Gate.h"
#include "tests/support/ScriptedServer.h"
#include "tests/support/WatchedServer.h"

#include <gmock/gmock.h>

#include <deque>
#include <future>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace quillet;
using namespace std::chrono_literals;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using tests::eventually;
using tests::RawClient;
using tests::WatchedServer;
using Options = rds::HttpServer::Options;
using Refusal = rds::HttpServer::Refusal;

constexpr const char* Get = "GET / HTTP/1.1\r\n\r\n";
constexpr const char* Other = "127.0.0.2"; ///< another client's address

std::string postOf(std::size_t size) {
    return "POST / HTTP/1.1\r\nContent-Length: " + std::to_string(size) + "\r\n\r\n" +
           std::string(size, 'x');
}

void sayDone(const rds::HttpRequest&, rds::HttpReply& reply) {
    reply.write("done");
}

/// Answers when a gate opens.
rds::HttpServer::Handler behind(tests::Gate& gate) {
    return [&gate](const rds::HttpRequest& request, rds::HttpReply& reply) {
        gate.pass(request);
        reply.write("done");
    };
}

TEST(HttpServerLimits, HalfARequestCostsNoWorker) {
    WatchedServer server(Options{.workers = 1}, sayDone);
    std::deque<RawClient> slow;
    for (int i = 0; i < 70; ++i) {
        slow.emplace_back(server.port())
            .send(i % 2 == 0 ? "POST / HT"
                             : "POST / HTTP/1.1\r\nContent-Length: "
                               "5\r\n\r\nhe");
    }
    EXPECT_TRUE(eventually([&] { return server.load().connections == 70; }));
    EXPECT_THAT(RawClient(server.port()).ask(Get), EndsWith("done"));
    slow.back().send("llo");
    EXPECT_THAT(slow.back().reply(), EndsWith("done")) << "and they are only waited for";
}

TEST(HttpServerLimits, TheOldestOfTheMostGivesWayToAnother) {
    tests::Gate gate;
    WatchedServer server(Options{.maxConnections = 4, .workers = 4}, behind(gate));
    std::deque<RawClient> waiting;
    for (int i = 0; i < 3; ++i)
        waiting.emplace_back(server.port());
    RawClient lonely(server.port(), Other);
    EXPECT_TRUE(eventually([&] { return server.load().connections == 4; }));

    RawClient next(server.port());
    EXPECT_EQ(waiting[0].reply(), "") << "closed";
    EXPECT_EQ(server.refused(Refusal::NoRoom), 1);
    // Three complete requests are all that one client gets of four connections.
    for (RawClient* client : {&waiting[1], &waiting[2], &next})
        client->send(Get);
    EXPECT_TRUE(eventually([&] { return gate.inside() == 3; }));
    lonely.send(Get);
    EXPECT_TRUE(eventually([&] { return gate.inside() == 4; }));
    EXPECT_THAT(RawClient(server.port(), Other).ask(Get),
                AllOf(StartsWith("HTTP/1.1 503 "), HasSubstr("\r\nRetry-After: ")));
    gate.open();
    for (RawClient* client : {&waiting[1], &waiting[2], &next, &lonely})
        EXPECT_THAT(client->reply(), EndsWith("done"));
}

TEST(HttpServerLimits, NoClientKeepsOthersFromTheWorkersAndTheQueue) {
    tests::Gate gate;
    std::mutex mutex;
    std::vector<std::string> order;
    WatchedServer server(Options{.workers = 1, .maxQueued = 3},
                         [&](const rds::HttpRequest& request, rds::HttpReply& reply) {
                             if (gate.pass(request)) {
                                 const std::lock_guard lock(mutex);
                                 order.push_back(request.target);
                             }
                             reply.write("done");
                         });
    std::deque<RawClient> clients;
    const auto ask = [&](const std::string& path, const char* from, std::size_t queued) {
        clients.emplace_back(server.port(), from).send("GET " + path + " HTTP/1.1\r\n\r\n");
        EXPECT_TRUE(eventually([&] { return server.load().queued == queued; })) << path;
    };
    ask("/running", "127.0.0.1", 0);
    EXPECT_TRUE(eventually([&] { return gate.inside() == 1; }));
    ask("/a1", "127.0.0.1", 1);
    ask("/a2", "127.0.0.1", 2);
    ask("/a3", "127.0.0.1", 3);
    EXPECT_THAT(RawClient(server.port()).ask(Get),
                AllOf(StartsWith("HTTP/1.1 503 "), HasSubstr("\r\nRetry-After: ")));
    ask("/b1", Other, 3);
    EXPECT_THAT(clients[3].reply(), StartsWith("HTTP/1.1 503 ")) << "it has made room";
    EXPECT_EQ(server.refused(Refusal::QueueFull), 2);
    gate.open();
    for (const int answered : {0, 1, 2, 4})
        EXPECT_THAT(clients[static_cast<std::size_t>(answered)].reply(), EndsWith("done"));
    EXPECT_THAT(order, ElementsAre("/running", "/a1", "/b1", "/a2"));
}

TEST(HttpServerLimits, OneWorkerInFourIsForOthers) {
    tests::Gate gate;
    WatchedServer server(Options{.workers = 4}, behind(gate));
    std::deque<RawClient> clients;
    for (int i = 0; i < 6; ++i)
        clients.emplace_back(server.port()).send(Get);
    EXPECT_TRUE(eventually([&] { return gate.inside() == 3 && server.load().queued == 3; }));
    clients.emplace_back(server.port(), Other).send(Get);
    EXPECT_TRUE(eventually([&] { return gate.inside() == 4; }));
    EXPECT_EQ(server.load().queued, 3U);
    gate.open();
    for (RawClient& client : clients)
        EXPECT_THAT(client.reply(), EndsWith("done"));
}

TEST(HttpServerLimits, ClientsThatLeaveGiveTheirPlaceBack) {
    tests::Gate gate;
    WatchedServer server(Options{.workers = 8}, behind(gate));
    std::deque<RawClient> clients;
    for (int i = 0; i < 64; ++i)
        clients.emplace_back(server.port()).send(Get);
    EXPECT_TRUE(eventually([&] { return gate.inside() == 6 && server.load().queued == 58; }));
    clients.clear();
    EXPECT_TRUE(eventually([&] { return server.load().answering == 0; }));
    EXPECT_EQ(server.load().queued, 0U);
    // Those that were still queued have not been run; each that runs may let one more in before
    // the news of its end has come.
    EXPECT_EQ(server.refused(Refusal::Gone) + gate.inside(), 64);
    EXPECT_EQ(server.load().memory, 0U);
    gate.open();
    EXPECT_THAT(RawClient(server.port()).ask(Get), EndsWith("done"));
}

TEST(HttpServerLimits, RepliesThatAreNotTakenHaveAnEnd) {
    std::promise<std::string> stuck, dripping;
    WatchedServer server(Options{.replyTime = 3s, .patience = 1s},
                         [&](const rds::HttpRequest& request, rds::HttpReply& reply) {
                             const std::string piece(100'000, 'x');
                             try {
                                 for (;;)
                                     reply.write(piece);
                             } catch (const data::Error& error) {
                                 (request.target == "/stuck" ? stuck : dripping)
                                     .set_value(std::to_string(error.Number()) + ' ' +
                                                error.Description());
                                 throw;
                             }
                         });
    RawClient quiet(server.port());
    quiet.send("GET /stuck HTTP/1.1\r\n\r\n");
    RawClient slow(server.port());
    slow.send("GET /dripping HTTP/1.1\r\n\r\n");
    auto ended = dripping.get_future();
    // Reads enough for the server to see it, and never all.
    while (ended.wait_for(10ms) != std::future_status::ready)
        tests::receiveRaw(slow.socket(), 300'000);
    EXPECT_THAT(ended.get(), AllOf(StartsWith("462 "), HasSubstr("time")));
    EXPECT_THAT(stuck.get_future().get(), AllOf(StartsWith("462 "), HasSubstr("does not take")));
    EXPECT_TRUE(eventually([&] { return server.load().memory == 0; }));
}

TEST(HttpServerLimits, MemoryIsBoundedForBodiesAndTheirDecoding) {
    constexpr std::size_t Body = 100'000;
    tests::Gate gate;
    // One can be decoded at a time; beside it others can wait.
    const Options options{
        .workers = 8, .maxBody = Body, .memory = 1'300'000, .decodeFactor = 8, .replyBuffer = 4096};
    WatchedServer server(options, behind(gate));
    std::deque<RawClient> clients;
    clients.emplace_back(server.port()).send(postOf(Body));
    EXPECT_TRUE(eventually([&] { return gate.inside() == 1; }));
    clients.emplace_back(server.port(), Other).send(postOf(Body));
    EXPECT_TRUE(eventually([&] { return server.load().queued == 1; }));
    EXPECT_GT(server.load().memory, 9 * Body);
    clients.emplace_back(server.port(), "127.0.0.3").send(Get);
    EXPECT_TRUE(eventually([&] { return gate.inside() == 2; })) << "it fits beside them";
    EXPECT_EQ(server.load().queued, 1U);
    gate.open();
    for (RawClient& client : clients)
        EXPECT_THAT(client.reply(), EndsWith("done"));
    EXPECT_TRUE(eventually([&] { return server.load().memory == 0; }));
}

TEST(HttpServerLimits, BodiesThatFindNoMemoryAreRefused) {
    constexpr std::size_t Body = 100'000;
    WatchedServer server(
        Options{.maxBody = Body, .memory = 400'000, .decodeFactor = 1, .replyBuffer = 4096},
        sayDone);
    const std::string half = postOf(Body).substr(0, Body - 10'000);
    RawClient holding(server.port());
    holding.send(half);
    EXPECT_TRUE(eventually([&] { return server.load().memory > Body / 2; }));
    RawClient second(server.port());
    second.send(half);
    EXPECT_THAT(second.reply(), AllOf(StartsWith("HTTP/1.1 503 "), HasSubstr("\r\nRetry-After: ")));
    EXPECT_EQ(server.refused(Refusal::NoMemory), 1);
    EXPECT_THAT(RawClient(server.port(), Other).ask(postOf(50'000)), EndsWith("done"))
        << "one client does not take all of it";
    holding.send(postOf(Body).substr(half.size()));
    EXPECT_THAT(holding.reply(), EndsWith("done"));
}

TEST(HttpServerLimits, OptionsThatCannotWorkTogetherAreRefused) {
    const auto errorOf = [](Options options) {
        return tests::errorTextOf([&] { rds::HttpServer(std::move(options), sayDone); });
    };
    EXPECT_THAT(errorOf({.maxBody = 8U << 20U}), AllOf(StartsWith("3001 "), HasSubstr("memory")));
    EXPECT_THAT(errorOf({.decodeFactor = std::string::npos}), StartsWith("3001 "));
    EXPECT_THAT(errorOf({.workers = 0}), AllOf(StartsWith("3001 "), HasSubstr("worker")));
    EXPECT_THAT(errorOf({.headTime = 0ms}), StartsWith("3001 "));
    EXPECT_THAT(errorOf({}), StartsWith("0 "));
}

} // namespace
