#include "bench/receive/PeakMemory.h"

#include <fstream>
#include <string>

namespace quillet::bench {

std::uint64_t peakMemory(std::int64_t processId) {
    // "VmHWM:  12345 kB", proc_pid_status(5)
    std::ifstream status("/proc/" + std::to_string(processId) + "/status");
    for (std::string name; status >> name;) {
        std::uint64_t kibibytes = 0;
        if (name == "VmHWM:" && status >> kibibytes)
            return kibibytes * 1024;
    }
    return 0;
}

} // namespace quillet::bench
