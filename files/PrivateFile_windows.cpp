#include "files/PrivateFile.h"

#include <memory>

// The second needs the first.
// clang-format off
#include <windows.h>
#include <sddl.h>
// clang-format on

namespace quillet::files {

namespace {

/// Everything to the owner, to administrators and to the system; nothing is inherited.
constexpr const wchar_t* OwnerOnly = L"D:P(A;;FA;;;OW)(A;;FA;;;BA)(A;;FA;;;SY)";

struct FreeLocal {
    void operator()(void* memory) const noexcept { LocalFree(memory); }
};

} // namespace

bool makePrivateFile(const std::filesystem::path& file) noexcept {
    PSECURITY_DESCRIPTOR made = nullptr;
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(OwnerOnly, SDDL_REVISION_1, &made,
                                                              nullptr))
        return false;
    const std::unique_ptr<void, FreeLocal> descriptor(made);
    SECURITY_ATTRIBUTES attributes{sizeof attributes, made, FALSE};
    // The descriptor counts for a file that this makes, and for no other.
    const HANDLE handle =
        CreateFileW(file.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, &attributes,
                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return false;
    CloseHandle(handle);
    return true;
}

} // namespace quillet::files
