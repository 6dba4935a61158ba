#pragma once

#include <functional>
#include <memory>

namespace quillet::app {

/// Hears the operating system ask the program to end, and passes it on to the event loop: SIGTERM,
/// SIGINT and SIGHUP, where there are signals. (The end of a user's session comes through the
/// toolkit, everywhere.)
class EndRequests {
public:
    /// @param handler called from the event loop of this thread.
    explicit EndRequests(std::function<void()> handler);
    ~EndRequests();
    EndRequests(const EndRequests&) = delete;
    EndRequests& operator=(const EndRequests&) = delete;

private:
    struct Source;

    std::unique_ptr<Source> source_;
};

} // namespace quillet::app
