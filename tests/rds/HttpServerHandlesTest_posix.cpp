#include "rds/http/HttpServer.h"
#include "tests/support/Eventually.h"
#include "tests/support/Gate.h"
#include "tests/support/ScriptedServer.h"
#include "tests/support/WatchedServer.h"

#include <gmock/gmock.h>

#include <deque>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace {

using namespace quillet;
using ::testing::EndsWith;
using tests::eventually;
using tests::tcp;
using tests::WatchedServer;
using Options = rds::HttpServer::Options;

constexpr const char* Get = "GET / HTTP/1.1\r\n\r\n";

void sayDone(const rds::HttpRequest&, rds::HttpReply& reply) {
    reply.write("done");
}

/// Takes the process's file handles away while it lives.
class FewHandles {
public:
    explicit FewHandles(rlim_t most) {
        getrlimit(RLIMIT_NOFILE, &before_);
        set(most);
    }
    ~FewHandles() {
        for (const int handle : taken_)
            close(handle);
        set(before_.rlim_cur);
    }
    FewHandles(const FewHandles&) = delete;
    FewHandles& operator=(const FewHandles&) = delete;

    void takeAll() {
        for (int handle = dup(0); handle >= 0; handle = dup(0))
            taken_.push_back(handle);
    }

private:
    void set(rlim_t most) const {
        const rlimit limit{most, before_.rlim_max};
        setrlimit(RLIMIT_NOFILE, &limit);
    }

    rlimit before_{};
    std::vector<int> taken_;
};

class HttpServerHandles : public ::testing::Test {
protected:
    /// A client; they share all handles but one each.
    tcp::socket& client() {
        clients_.emplace_back(context_).open(tcp::v4());
        return clients_.back();
    }

    static void connect(tcp::socket& client, const WatchedServer& server) {
        client.connect({boost::asio::ip::address_v4::loopback(), server.port()});
    }

    static std::string ask(tcp::socket& client, const WatchedServer& server) {
        connect(client, server);
        tests::sendRaw(client, Get);
        return tests::receiveRaw(client);
    }

private:
    boost::asio::io_context context_;
    std::deque<tcp::socket> clients_;
};

TEST_F(HttpServerHandles, OneIsEnoughForAConnection) {
    constexpr std::size_t Many = 300;
    const FewHandles few(1024);
    WatchedServer server(Options{}, sayDone);
    for (std::size_t i = 0; i < Many; ++i)
        connect(client(), server);
    EXPECT_TRUE(eventually([&] { return server.load().connections == Many; }));
    EXPECT_THAT(ask(client(), server), EndsWith("done"));
}

TEST_F(HttpServerHandles, HavingNoneIsSurvived) {
    // With handles first: the undefined behaviour sanitizer needs one to see a type for the first
    // time.
    const auto idleGivesWay = [this](Options options, bool withHandles) {
        tests::Gate gate;
        WatchedServer server(std::move(options),
                             [&](const rds::HttpRequest& request, rds::HttpReply& reply) {
                                 gate.pass(request);
                                 reply.write("done");
                             });
        tcp::socket& idle = client();
        tcp::socket& first = client();
        tcp::socket& second = client();
        connect(idle, server);
        EXPECT_TRUE(eventually([&] { return server.load().connections == 1; }));
        std::optional<FewHandles> few;
        if (!withHandles) {
            few.emplace(256);
            few->takeAll();
        }
        connect(first, server);
        tests::sendRaw(first, Get);
        EXPECT_EQ(tests::receiveRaw(idle), "") << "it gives way";
        EXPECT_TRUE(eventually([&] { return gate.inside() == 1; }));
        if (!withHandles) {
            // Nobody is left to do so: this one waits until the first is answered.
            connect(second, server);
            tests::sendRaw(second, Get);
        }
        gate.open();
        EXPECT_THAT(tests::receiveRaw(first), EndsWith("done"));
        if (!withHandles) {
            EXPECT_THAT(tests::receiveRaw(second), EndsWith("done"));
        }
    };
    idleGivesWay(Options{.maxConnections = 1}, true);
    idleGivesWay(Options{}, false);
}

TEST_F(HttpServerHandles, FewAreEnough) {
    const FewHandles few(64);
    WatchedServer server(Options{.maxConnections = 500}, sayDone);
    for (int i = 0; i < 20; ++i)
        connect(client(), server);
    for (int i = 0; i < 10; ++i)
        EXPECT_THAT(ask(client(), server), EndsWith("done"));
    EXPECT_LE(server.load().connections, 8U) << "the rest is for databases";
}

} // namespace
