#include "tests/torture/Fault.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace quillet::torture {

namespace {

constexpr std::array Names{"open",   "read",  "write",     "sync",   "truncate", "rename",
                           "unlink", "mkdir", "statement", "memory", "clock"};

struct Plan {
    enum class Action { None, Kill, Stop, Fail, Jump } action = Action::None;
    std::size_t call = Names.size();
    long number = 0;
    int error = 0;
    bool isLasting = false;
    long seconds = 0;
    const char* words = "";
    const char* report = nullptr;
};

Plan plan;
std::array<std::atomic<long>, Names.size()> counts{};
std::atomic<bool> hasJumped = false;

int errorCalled(const char* name) {
    struct Known {
        const char* name;
        int value;
    };
    for (const Known known : {Known{"ENOSPC", ENOSPC}, Known{"EIO", EIO}, Known{"EACCES", EACCES},
                              Known{"EROFS", EROFS}, Known{"ENOMEM", ENOMEM}})
        if (std::strcmp(name, known.name) == 0)
            return known.value;
    return 0;
}

/// By system calls: the C library's functions come back to us.
void report(const char* form, const char* name, long number) {
    if (plan.report == nullptr)
        return;
    std::array<char, 64> line{};
    const int length = std::snprintf(line.data(), line.size(), form, name, number);
    const long file =
        syscall(SYS_openat, AT_FDCWD, plan.report, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (file < 0)
        return;
    syscall(SYS_write, file, line.data(), length);
    syscall(SYS_close, file);
}

Plan::Action actionCalled(const char* name) {
    if (std::strcmp(name, "kill") == 0)
        return Plan::Action::Kill;
    if (std::strcmp(name, "stop") == 0)
        return Plan::Action::Stop;
    if (std::strcmp(name, "fail") == 0)
        return Plan::Action::Fail;
    return std::strcmp(name, "jump") == 0 ? Plan::Action::Jump : Plan::Action::None;
}

} // namespace

void Fault::prepare() noexcept {
    for (auto& count : counts) // what libraries did before does not count
        count = 0;
    plan.report = std::getenv("TORTURE_REPORT");
    if (const char* const words = std::getenv("TORTURE_WORDS"))
        plan.words = words;
    const char* const text = std::getenv("TORTURE_FAULT");
    if (text == nullptr)
        return;
    std::array<char, 16> action{};
    std::array<char, 16> call{};
    std::array<char, 16> detail{};
    std::array<char, 16> duration{};
    std::sscanf(text, "%15s %15s %ld %15s %15s", action.data(), call.data(), &plan.number,
                detail.data(), duration.data());
    plan.call = 0;
    while (plan.call < Names.size() && std::strcmp(Names[plan.call], call.data()) != 0)
        ++plan.call;
    plan.action = actionCalled(action.data());
    plan.error = errorCalled(detail.data());
    plan.seconds = std::atol(detail.data());
    plan.isLasting = std::strcmp(duration.data(), "lasting") == 0;
    const bool isWhole = plan.action != Plan::Action::None && plan.call < Names.size() &&
                         plan.number > 0 && (plan.action != Plan::Action::Fail || plan.error != 0);
    if (!isWhole) { // a fault that never comes would look like a program that withstands it
        std::fprintf(stderr, "TORTURE_FAULT: %s is no fault\n", text);
        std::abort();
    }
}

int Fault::before(Call call) noexcept {
    const auto index = static_cast<std::size_t>(call);
    const long number = ++counts[index];
    if (plan.action == Plan::Action::None || index != plan.call || number < plan.number ||
        (number > plan.number && !plan.isLasting))
        return 0;
    if (number == plan.number)
        report("hit %s %ld\n", Names[index], number);
    switch (plan.action) {
    case Plan::Action::Kill:
        syscall(SYS_kill, getpid(), SIGKILL);
        break;
    case Plan::Action::Stop:
        syscall(SYS_kill, getpid(), SIGSTOP);
        break;
    case Plan::Action::Jump:
        hasJumped = true;
        break;
    case Plan::Action::Fail:
        return plan.error;
    case Plan::Action::None:
        break;
    }
    return 0;
}

bool Fault::isMeant(const char* statement) noexcept {
    const char* const start = statement + std::strspn(statement, " ");
    return std::strncmp(start, plan.words, std::strlen(plan.words)) == 0;
}

long Fault::clockOffset() noexcept {
    return hasJumped ? plan.seconds : 0;
}

void Fault::reportCounts() noexcept {
    for (std::size_t i = 0; i < Names.size(); ++i)
        report("%s %ld\n", Names[i], counts[i]);
}

} // namespace quillet::torture
