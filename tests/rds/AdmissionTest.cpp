#include "rds/http/Admission.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <gmock/gmock.h>

#include <future>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace {

using namespace quillet;
using Refusal = rds::HttpServer::Refusal;

/// A request that needs more than there is, or just waits.
class Task : public rds::ServerTask {
public:
    Task(bool fits, std::shared_future<void> until) : fits_(fits), until_(std::move(until)) {}

    const std::string& client() const override { return client_; }
    bool prepare() override { return fits_; }
    void run() noexcept override { until_.wait(); }
    void ended() override {}
    void refuse(Refusal reason) override { refused = reason; }

    std::optional<Refusal> refused;

private:
    std::string client_ = "client";
    bool fits_;
    std::shared_future<void> until_;
};

TEST(Admission, WaitsForMemoryOnlyWhileSomethingRunsThatCouldGiveItBack) {
    boost::asio::io_context context;
    auto work = boost::asio::make_work_guard(context);
    rds::Admission admission(context, 4, 4, [&] { work.reset(); });
    std::promise<void> end;
    const auto ended = end.get_future().share();
    const auto running = std::make_shared<Task>(true, ended);
    const auto large = std::make_shared<Task>(false, ended);
    const auto larger = std::make_shared<Task>(false, ended);
    admission.offer(running);
    admission.offer(large);
    EXPECT_EQ(admission.queued(), 1U);
    EXPECT_EQ(large->refused, std::nullopt);
    end.set_value();
    context.run();
    EXPECT_EQ(large->refused, Refusal::NoMemory);
    admission.offer(larger);
    EXPECT_EQ(larger->refused, Refusal::NoMemory);
    EXPECT_EQ(admission.queued() + admission.running(), 0U);
}

} // namespace
