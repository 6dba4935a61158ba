#include "rds/http/Admission.h"

#include <boost/asio/post.hpp>

#include <algorithm>
#include <system_error>
#include <utility>

namespace quillet::rds {

using Refusal = HttpServer::Refusal;

Admission::Admission(boost::asio::io_context& context, std::size_t workers, std::size_t maxQueued,
                     std::function<void()> changed)
    : context_(context), maxQueued_(maxQueued), workers_(workers),
      perClient_(std::max<std::size_t>(1, workers - (workers + 3) / 4)),
      changed_(std::move(changed)) {}

void Admission::start() {
    threads_.emplace_back([this] { work(); });
}

void Admission::addWorker() {
    try {
        threads_.emplace_back([this] { work(); });
    } catch (const std::system_error&) {
        workers_ = threads_.size(); // as many as the system allows
    }
}

void Admission::offer(std::shared_ptr<ServerTask> task) {
    Line& line = lines_[task->client()];
    if (queued_ >= maxQueued_) {
        // Nobody fills the queue alone: the one with most in it makes room for one with less.
        Line& longest = *longestLine();
        if (longest.tasks.size() <= line.tasks.size() + 1) {
            if (line.tasks.empty() && line.running == 0)
                lines_.erase(task->client());
            task->refuse(Refusal::QueueFull);
            return;
        }
        take(longest, longest.tasks.size() - 1)->refuse(Refusal::QueueFull);
    }
    line.tasks.push_back(std::move(task));
    ++queued_;
    if (line.tasks.size() == 1)
        turns_.push_back(&line);
    dispatch();
}

void Admission::withdraw(const ServerTask& task) {
    const auto found = lines_.find(task.client());
    if (found == lines_.end())
        return;
    Line& line = found->second;
    const auto queued = std::ranges::find(line.tasks, &task, &std::shared_ptr<ServerTask>::get);
    if (queued == line.tasks.end())
        return;
    take(line, static_cast<std::size_t>(queued - line.tasks.begin()));
    if (line.tasks.empty() && line.running == 0)
        lines_.erase(found);
}

Admission::Line* Admission::longestLine() {
    return *std::ranges::max_element(turns_, {},
                                     [](const Line* line) { return line->tasks.size(); });
}

std::shared_ptr<ServerTask> Admission::take(Line& line, std::size_t position) {
    const auto from = line.tasks.begin() + static_cast<std::ptrdiff_t>(position);
    auto task = std::move(*from);
    line.tasks.erase(from);
    --queued_;
    if (line.tasks.empty())
        turns_.remove(&line);
    return task;
}

void Admission::dispatch() {
    if (dispatching_)
        return; // by a task that is refused below, where the loop goes on
    dispatching_ = true;
    const struct Done {
        bool& dispatching;
        ~Done() { dispatching = false; }
    } done{dispatching_};
    do {
        while (running_ < workers_ && startNext()) {
        }
        // Where nothing runs, nothing will end and make room either: what is in the way are
        // replies that are not taken, and nobody should wait for those.
        if (running_ > 0 || turns_.empty())
            return;
        refuseFront();
    } while (true);
}

bool Admission::startNext() {
    for (std::size_t left = turns_.size(); left > 0; --left) {
        Line& line = *turns_.front();
        turns_.splice(turns_.end(), turns_, turns_.begin());
        if (line.running >= perClient_ || !line.tasks.front()->prepare())
            continue;
        ++line.running;
        ++running_;
        if (running_ > threads_.size())
            addWorker();
        auto task = take(line, 0);
        {
            const std::lock_guard lock(mutex_);
            ready_.push_back(std::move(task));
        }
        handedOver_.notify_one();
        return true;
    }
    return false;
}

void Admission::refuseFront() {
    Line& line = *turns_.front();
    const auto task = take(line, 0);
    if (line.tasks.empty())
        lines_.erase(task->client());
    task->refuse(Refusal::NoMemory);
}

void Admission::work() {
    for (;;) {
        std::shared_ptr<ServerTask> task;
        {
            std::unique_lock lock(mutex_);
            handedOver_.wait(lock, [this] { return joining_ || !ready_.empty(); });
            if (ready_.empty())
                return;
            task = std::move(ready_.front());
            ready_.pop_front();
        }
        task->run();
        boost::asio::post(context_, [this, task = std::move(task)] { ended(*task); });
    }
}

void Admission::ended(ServerTask& task) {
    --running_;
    const auto line = lines_.find(task.client());
    --line->second.running;
    if (line->second.tasks.empty() && line->second.running == 0)
        lines_.erase(line);
    task.ended();
    dispatch();
    changed_();
}

void Admission::join() {
    {
        const std::lock_guard lock(mutex_);
        joining_ = true;
    }
    handedOver_.notify_all();
    for (std::thread& thread : threads_)
        thread.join();
    threads_.clear();
}

} // namespace quillet::rds
