#pragma once

#include <cstddef>
#include <string_view>

namespace quillet::torture {

/// What a program asks of its machine.
enum class Call {
    Open,
    Read,
    Write,
    Sync,
    Truncate,
    Rename,
    Unlink,
    Mkdir,
    Statement,
    Memory,
    Clock
};

/// The one thing that goes wrong with a program's calls, as the environment names it:
///
///   TORTURE_FAULT="kill CALL N"                 end the process before the n-th such call
///                 "stop CALL N"                 stop it there, until somebody lets it go on
///                 "fail CALL N ERROR"           the n-th such call fails with ENOSPC, EIO, ...
///                 "fail CALL N ERROR lasting"   it and all after it
///                 "jump clock N SECONDS"        the time of day jumps at the n-th look at it
///   TORTURE_WORDS="COMMIT"                      only statements that begin with these words count
///   TORTURE_REPORT=FILE                         gets "hit CALL N" when it has happened, and "CALL
///   N"
///                                               for each kind of call when the process ends by
///                                               itself
///
/// CALL is open, read, write, sync, truncate, rename, unlink, mkdir, statement, memory or clock.
/// Allocates nothing: it is asked while memory is.
class Fault {
public:
    /// Reads the environment.
    static void prepare() noexcept;

    /// Counts a call, before it is made. @return the error that it fails with, or 0.
    static int before(Call call) noexcept;

    /// Whether a statement counts.
    static bool isMeant(const char* statement) noexcept;

    /// What the time of day is off by, in seconds.
    static long clockOffset() noexcept;

    static void reportCounts() noexcept;
};

} // namespace quillet::torture
