#pragma once

#include <cstddef>
#include <string_view>

namespace quillet::torture {

/// A list of everything that a program does to the files of a folder, in the order in which it does
/// it; what a power cut leaves of them is made from it (PowerCut). One line each, numbers are
/// descriptors, offsets and lengths in bytes:
///
///   open D PATH           and whether it was made (`create`), emptied (`empty`), or has no name
///   yet create D PATH         (`unnamed`) empty D PATH unnamed D FOLDER link D PATH           an
///   unnamed file gets a name write D OFFSET LENGTH followed by the bytes and a line end truncate D
///   LENGTH sync D rename FROM TO        apart by a tab unlink PATH mkdir PATH
///
/// Paths are below the folder. The environment names it, and the list:
///   TORTURE_FOLDER=FOLDER  TORTURE_LOG=FILE
class CallLog {
public:
    /// Reads the environment.
    static void prepare() noexcept;

    /// Whether a path is in the folder.
    static bool covers(const char* path) noexcept;

    static void open(const char* how, int descriptor, const char* path) noexcept;
    static void link(int descriptor, const char* path) noexcept;
    static void write(int descriptor, long offset, const void* bytes, std::size_t length) noexcept;
    static void truncate(int descriptor, long length) noexcept;
    static void sync(int descriptor) noexcept;
    static void rename(const char* from, const char* to) noexcept;
    static void unlink(const char* path) noexcept;
    static void mkdir(const char* path) noexcept;
};

} // namespace quillet::torture
