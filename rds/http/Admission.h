#pragma once

// Internal to the server: it brings Boost with it.

#include "rds/http/HttpServer.h"

#include <boost/asio/io_context.hpp>

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace quillet::rds {

/// A complete request on its way to a worker and back. All but run() is called on the network
/// thread.
class ServerTask {
public:
    virtual ~ServerTask() = default;

    /// Whom it counts for.
    virtual const std::string& client() const = 0;

    /// Takes what running needs.
    /// @return false when that cannot be had now.
    virtual bool prepare() = 0;

    /// On a worker, after prepare().
    virtual void run() noexcept = 0;

    /// run() has returned, and the worker is free.
    virtual void ended() = 0;

    /// It is not going to run.
    virtual void refuse(HttpServer::Refusal reason) = 0;
};

/// The queue of requests, the workers, and who is next. It belongs to the network thread but for
/// the counts.
class Admission {
public:
    /// @param changed is called on the network thread whenever a task has ended.
    Admission(boost::asio::io_context& context, std::size_t workers, std::size_t maxQueued,
              std::function<void()> changed);
    ~Admission() { join(); }
    Admission(const Admission&) = delete;
    Admission& operator=(const Admission&) = delete;

    /// Starts the first worker; the others come when they are needed.
    /// @throws std::system_error when the system allows none.
    void start();

    /// Queues a task, or refuses it or another one.
    void offer(std::shared_ptr<ServerTask> task);

    /// Takes a task out of the queue.
    void withdraw(const ServerTask& task);

    /// Lets workers begin what can begin; to be called when something has come free.
    void dispatch();

    /// Waits for the workers to end.
    void join();

    std::size_t queued() const noexcept { return queued_; }
    std::size_t running() const noexcept { return running_; }

private:
    /// What one client has here.
    struct Line {
        std::deque<std::shared_ptr<ServerTask>> tasks; ///< that are queued
        std::size_t running = 0;
    };
    using Lines = std::map<std::string, Line>;

    Line* longestLine();
    std::shared_ptr<ServerTask> take(Line& line, std::size_t position);
    bool startNext();
    void addWorker();
    void refuseFront();
    void work();
    void ended(ServerTask& task);

    boost::asio::io_context& context_;
    const std::size_t maxQueued_;
    std::size_t workers_;
    const std::size_t perClient_; ///< workers
    std::function<void()> changed_;
    std::vector<std::thread> threads_;

    Lines lines_;
    std::list<Line*> turns_; ///< of those with queued tasks, the next one first
    bool dispatching_ = false;
    std::atomic<std::size_t> queued_ = 0;
    std::atomic<std::size_t> running_ = 0;

    std::mutex mutex_; ///< of what follows
    std::condition_variable handedOver_;
    std::deque<std::shared_ptr<ServerTask>> ready_;
    bool joining_ = false;
};

} // namespace quillet::rds
