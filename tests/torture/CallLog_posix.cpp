#include "tests/torture/CallLog.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace quillet::torture {

namespace {

const char* folder = nullptr;
std::size_t folderLength = 0;
long target = -1;

const char* below(const char* path) {
    return path[folderLength] == '\0' ? "." : path + folderLength + 1;
}

/// By system calls: the C library's functions come back to us.
void put(const void* bytes, std::size_t length) {
    if (target >= 0 && syscall(SYS_write, target, bytes, length) != static_cast<long>(length))
        std::abort(); // half a list would pass for what a program has done
}

template <typename... Values>
void line(const char* form, Values... values) {
    std::array<char, 4096> text{};
    const int length = std::snprintf(text.data(), text.size(), form, values...);
    put(text.data(), static_cast<std::size_t>(length));
}

} // namespace

void CallLog::prepare() noexcept {
    folder = std::getenv("TORTURE_FOLDER");
    folderLength = folder != nullptr ? std::strlen(folder) : 0;
    if (const char* const file = std::getenv("TORTURE_LOG"))
        target = syscall(SYS_openat, AT_FDCWD, file,
                         O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0600);
}

bool CallLog::covers(const char* path) noexcept {
    return folder != nullptr && std::strncmp(path, folder, folderLength) == 0 &&
           (path[folderLength] == '/' || path[folderLength] == '\0');
}

void CallLog::open(const char* how, int descriptor, const char* path) noexcept {
    line("%s %d %s\n", how, descriptor, below(path));
}

void CallLog::link(int descriptor, const char* path) noexcept {
    line("link %d %s\n", descriptor, below(path));
}

void CallLog::write(int descriptor, long offset, const void* bytes, std::size_t length) noexcept {
    line("write %d %ld %zu\n", descriptor, offset, length);
    put(bytes, length);
    put("\n", 1);
}

void CallLog::truncate(int descriptor, long length) noexcept {
    line("truncate %d %ld\n", descriptor, length);
}

void CallLog::sync(int descriptor) noexcept {
    line("sync %d\n", descriptor);
}

void CallLog::rename(const char* from, const char* to) noexcept {
    line("rename %s\t%s\n", below(from), below(to));
}

void CallLog::unlink(const char* path) noexcept {
    line("unlink %s\n", below(path));
}

void CallLog::mkdir(const char* path) noexcept {
    line("mkdir %s\n", below(path));
}

} // namespace quillet::torture
