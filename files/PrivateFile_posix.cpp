#include "files/PrivateFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillet::files {

bool makePrivateFile(const std::filesystem::path& file) noexcept {
    constexpr mode_t OwnerOnly = S_IRUSR | S_IWUSR;
    const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, OwnerOnly);
    if (descriptor < 0)
        return false;
    struct stat found {};
    if (fstat(descriptor, &found) == 0 && (found.st_mode & (S_IRWXG | S_IRWXO)) != 0)
        (void)fchmod(descriptor, OwnerOnly); // refused where it is somebody else's
    close(descriptor);
    return true;
}

} // namespace quillet::files
