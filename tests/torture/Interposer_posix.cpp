// Stands between a program and the C library, by LD_PRELOAD, for the calls that change the files of
// one folder, for the statements that SQLite runs, for memory and the time of day: counts them,
// lets one of them go wrong (Fault) and writes down what they do (CallLog). scripts/torture puts it
// before the window.

#include "tests/torture/CallLog.h"
#include "tests/torture/Fault.h"

#include <sqlite3.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/uio.h>
#include <unistd.h>

using quillet::torture::Call;
using quillet::torture::CallLog;
using quillet::torture::Fault;

namespace {

template <typename Function>
Function* real(Function* /*ours*/, const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// The library's function of the same name.
#define REAL(name)                                                                                 \
    ([] {                                                                                          \
        static const auto function = real(&::name, #name);                                         \
        return function;                                                                           \
    }())

/// Descriptors of files in the folder.
std::array<std::atomic<bool>, 4096> followed{};

bool isFollowed(int descriptor) {
    return descriptor >= 0 && static_cast<std::size_t>(descriptor) < followed.size() &&
           followed[static_cast<std::size_t>(descriptor)];
}

void follow(int descriptor, bool is) {
    if (descriptor >= 0 && static_cast<std::size_t>(descriptor) < followed.size())
        followed[static_cast<std::size_t>(descriptor)] = is;
}

/// Whether a call goes wrong; errno says how.
bool goesWrong(Call call) {
    const int error = Fault::before(call);
    if (error != 0)
        errno = error;
    return error != 0;
}

bool exists(const char* path) {
    struct stat found {};
    return ::lstat(path, &found) == 0;
}

/// What an opening does to a file, as CallLog calls it.
const char* openingOf(const char* path, int flags) {
    if ((flags & O_TMPFILE) == O_TMPFILE)
        return "unnamed";
    if ((flags & O_CREAT) != 0 && !exists(path))
        return "create";
    return (flags & O_TRUNC) != 0 ? "empty" : "open";
}

/// @param opener opens the file. Reading is no matter of a disk that is full.
template <typename Opener>
int openFile(const char* path, int flags, Opener opener) {
    if (!CallLog::covers(path))
        return opener();
    if ((flags & O_ACCMODE) != O_RDONLY && goesWrong(Call::Open))
        return -1;
    const char* const how = openingOf(path, flags);
    const int descriptor = opener();
    follow(descriptor, descriptor >= 0);
    if (descriptor >= 0)
        CallLog::open(how, descriptor, path);
    return descriptor;
}

mode_t modeOf(int flags, va_list rest) {
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE ? va_arg(rest, mode_t) : 0;
}

int flagsOf(const char* mode) {
    const bool both = std::strchr(mode, '+') != nullptr;
    switch (mode[0]) {
    case 'r':
        return both ? O_RDWR : O_RDONLY;
    case 'w':
        return (both ? O_RDWR : O_WRONLY) | O_CREAT | O_TRUNC;
    default:
        return (both ? O_RDWR : O_WRONLY) | O_CREAT | O_APPEND;
    }
}

FILE* openStream(const char* path, const char* mode, FILE* (*opener)(const char*, const char*)) {
    FILE* stream = nullptr;
    openFile(path, flagsOf(mode), [&] {
        stream = opener(path, mode);
        return stream != nullptr ? fileno(stream) : -1;
    });
    return stream;
}

/// After a write at a descriptor's own place.
void noteWritten(int descriptor, const void* bytes, ssize_t written) {
    if (written > 0)
        CallLog::write(descriptor, lseek(descriptor, 0, SEEK_CUR) - written, bytes,
                       static_cast<std::size_t>(written));
}

int syncFile(int descriptor, int (*syncer)(int)) {
    if (!isFollowed(descriptor))
        return syncer(descriptor);
    if (goesWrong(Call::Sync))
        return -1;
    const int result = syncer(descriptor);
    if (result == 0)
        CallLog::sync(descriptor);
    return result;
}

int truncateFile(int descriptor, off_t length, int (*truncater)(int, off_t)) {
    if (!isFollowed(descriptor))
        return truncater(descriptor, length);
    if (goesWrong(Call::Truncate))
        return -1;
    const int result = truncater(descriptor, length);
    if (result == 0)
        CallLog::truncate(descriptor, length);
    return result;
}

/// SQLite's sqlite3_exec() may come back through sqlite3_step().
thread_local bool insideExec = false;

/// An ODBC driver's calls count like the program's own.
bool statementGoesWrong(const char* text) {
    return text != nullptr && !insideExec && Fault::isMeant(text) && goesWrong(Call::Statement);
}

__attribute__((constructor)) void prepare() {
    CallLog::prepare();
    Fault::prepare();
}

__attribute__((destructor)) void finish() {
    Fault::reportCounts();
}

} // namespace

extern "C" {

// The C library's own; malloc() and its like cannot be looked up, because looking up allocates.
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);

void* malloc(std::size_t size) noexcept {
    return goesWrong(Call::Memory) ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) noexcept {
    return goesWrong(Call::Memory) ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) noexcept {
    return goesWrong(Call::Memory) ? nullptr : __libc_realloc(memory, size);
}

int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = modeOf(flags, rest);
    va_end(rest);
    return openFile(path, flags, [&] { return REAL(open)(path, flags, mode); });
}

int open64(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = modeOf(flags, rest);
    va_end(rest);
    return openFile(path, flags, [&] { return REAL(open64)(path, flags, mode); });
}

int openat(int folder, const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = modeOf(flags, rest);
    va_end(rest);
    return openFile(path, flags, [&] { return REAL(openat)(folder, path, flags, mode); });
}

FILE* fopen(const char* path, const char* mode) {
    return openStream(path, mode, REAL(fopen));
}

FILE* fopen64(const char* path, const char* mode) {
    return openStream(path, mode, REAL(fopen64));
}

int close(int descriptor) {
    follow(descriptor, false);
    return REAL(close)(descriptor);
}

int fclose(FILE* stream) {
    follow(fileno(stream), false);
    return REAL(fclose)(stream);
}

ssize_t read(int descriptor, void* bytes, std::size_t length) {
    if (isFollowed(descriptor) && goesWrong(Call::Read))
        return -1;
    return REAL(read)(descriptor, bytes, length);
}

ssize_t pread64(int descriptor, void* bytes, std::size_t length, off64_t offset) {
    if (isFollowed(descriptor) && goesWrong(Call::Read))
        return -1;
    return REAL(pread64)(descriptor, bytes, length, offset);
}

ssize_t write(int descriptor, const void* bytes, std::size_t length) {
    if (!isFollowed(descriptor))
        return REAL(write)(descriptor, bytes, length);
    if (goesWrong(Call::Write))
        return -1;
    const ssize_t written = REAL(write)(descriptor, bytes, length);
    noteWritten(descriptor, bytes, written);
    return written;
}

ssize_t writev(int descriptor, const struct iovec* pieces, int count) {
    if (!isFollowed(descriptor))
        return REAL(writev)(descriptor, pieces, count);
    ssize_t total = 0;
    for (int i = 0; i < count; ++i) {
        const ssize_t written = write(descriptor, pieces[i].iov_base, pieces[i].iov_len);
        if (written < 0)
            return total > 0 ? total : written;
        total += written;
        if (static_cast<std::size_t>(written) < pieces[i].iov_len)
            break;
    }
    return total;
}

ssize_t pwrite64(int descriptor, const void* bytes, std::size_t length, off64_t offset) {
    if (!isFollowed(descriptor))
        return REAL(pwrite64)(descriptor, bytes, length, offset);
    if (goesWrong(Call::Write))
        return -1;
    const ssize_t written = REAL(pwrite64)(descriptor, bytes, length, offset);
    if (written > 0)
        CallLog::write(descriptor, offset, bytes, static_cast<std::size_t>(written));
    return written;
}

int fsync(int descriptor) {
    return syncFile(descriptor, REAL(fsync));
}

int fdatasync(int descriptor) {
    return syncFile(descriptor, REAL(fdatasync));
}

int ftruncate(int descriptor, off_t length) noexcept {
    return truncateFile(descriptor, length, REAL(ftruncate));
}

int ftruncate64(int descriptor, off64_t length) noexcept {
    return truncateFile(descriptor, length, REAL(ftruncate64));
}

int rename(const char* from, const char* to) noexcept {
    if (!CallLog::covers(from))
        return REAL(rename)(from, to);
    if (goesWrong(Call::Rename))
        return -1;
    const int result = REAL(rename)(from, to);
    if (result == 0)
        CallLog::rename(from, to);
    return result;
}

/// How a file that was opened without a name gets one: from its descriptor's name in /proc.
int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
    constexpr const char* Descriptors = "/proc/self/fd/";
    if (!CallLog::covers(to) || std::strncmp(from, Descriptors, std::strlen(Descriptors)) != 0)
        return REAL(linkat)(fromFolder, from, toFolder, to, flags);
    if (goesWrong(Call::Rename))
        return -1;
    const int result = REAL(linkat)(fromFolder, from, toFolder, to, flags);
    if (result == 0)
        CallLog::link(std::atoi(from + std::strlen(Descriptors)), to);
    return result;
}

int unlink(const char* path) noexcept {
    if (!CallLog::covers(path))
        return REAL(unlink)(path);
    if (goesWrong(Call::Unlink))
        return -1;
    const int result = REAL(unlink)(path);
    if (result == 0)
        CallLog::unlink(path);
    return result;
}

int remove(const char* path) noexcept {
    return CallLog::covers(path) ? unlink(path) : REAL(remove)(path);
}

int mkdir(const char* path, mode_t mode) noexcept {
    if (!CallLog::covers(path))
        return REAL(mkdir)(path, mode);
    if (goesWrong(Call::Mkdir))
        return -1;
    const int result = REAL(mkdir)(path, mode);
    if (result == 0)
        CallLog::mkdir(path);
    return result;
}

int clock_gettime(clockid_t clock, struct timespec* now) noexcept {
    const int result = REAL(clock_gettime)(clock, now);
    if (clock == CLOCK_REALTIME && result == 0) {
        goesWrong(Call::Clock);
        now->tv_sec += Fault::clockOffset();
    }
    return result;
}

time_t time(time_t* now) noexcept {
    struct timespec seen {};
    clock_gettime(CLOCK_REALTIME, &seen);
    if (now != nullptr)
        *now = seen.tv_sec;
    return seen.tv_sec;
}

int gettimeofday(struct timeval* now, void* zone) noexcept {
    const int result = REAL(gettimeofday)(now, zone);
    if (result == 0) {
        goesWrong(Call::Clock);
        now->tv_sec += Fault::clockOffset();
    }
    return result;
}

/// A statement that begins, not one that goes on to its next row.
int sqlite3_step(sqlite3_stmt* statement) {
    if (sqlite3_stmt_busy(statement) == 0 && statementGoesWrong(sqlite3_sql(statement)))
        return SQLITE_IOERR;
    return REAL(sqlite3_step)(statement);
}

int sqlite3_exec(sqlite3* database, const char* text, int (*row)(void*, int, char**, char**),
                 void* context, char** message) {
    if (statementGoesWrong(text))
        return SQLITE_IOERR;
    const bool outer = insideExec;
    insideExec = true;
    const int result = REAL(sqlite3_exec)(database, text, row, context, message);
    insideExec = outer;
    return result;
}

} // extern "C"
