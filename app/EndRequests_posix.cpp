#include "app/EndRequests.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace quillet::app {

namespace {

constexpr std::array Signals{SIGTERM, SIGINT, SIGHUP};

int writeEnd = -1;

/// A signal may come anywhere; all it may do is write.
void passOn(int /*signal*/) {
    const int error = errno;
    const char byte = 0;
    [[maybe_unused]] const ssize_t unimportant = ::write(writeEnd, &byte, 1);
    errno = error;
}

void handleSignals(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int signal : Signals)
        ::sigaction(signal, &action, nullptr);
}

} // namespace

struct EndRequests::Source {
    explicit Source(std::function<void()> handler) {
        if (::pipe(ends.data()) != 0)
            return;
        for (const int end : ends) {
            ::fcntl(end, F_SETFD, FD_CLOEXEC);
            ::fcntl(end, F_SETFL, O_NONBLOCK);
        }
        notifier = std::make_unique<QSocketNotifier>(ends[0], QSocketNotifier::Read);
        QObject::connect(notifier.get(), &QSocketNotifier::activated,
                         [this, handler = std::move(handler)] {
                             std::array<char, 16> bytes{};
                             while (::read(ends[0], bytes.data(), bytes.size()) > 0) {
                             }
                             handler();
                         });
        writeEnd = ends[1];
        handleSignals(passOn);
    }

    ~Source() {
        if (notifier == nullptr)
            return;
        handleSignals(SIG_DFL);
        notifier.reset();
        for (const int end : ends)
            ::close(end);
    }

    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    std::array<int, 2> ends{-1, -1};
    std::unique_ptr<QSocketNotifier> notifier;
};

EndRequests::EndRequests(std::function<void()> handler)
    : source_(std::make_unique<Source>(std::move(handler))) {}

EndRequests::~EndRequests() = default;

} // namespace quillet::app
