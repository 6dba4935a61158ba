#pragma once

#include "tests/support/TempFolder.h"

#include <QProcess>

#include <cstdint>
#include <filesystem>
#include <string>

namespace quillet::bench {

/// A running `quillet-headoffice` on a free port of loopback.
class HeadOfficeProcess {
public:
    /// @throws std::runtime_error when it does not come up.
    explicit HeadOfficeProcess(const std::filesystem::path& program);
    ~HeadOfficeProcess();
    HeadOfficeProcess(const HeadOfficeProcess&) = delete;
    HeadOfficeProcess& operator=(const HeadOfficeProcess&) = delete;

    const std::string& address() const noexcept { return address_; } ///< "127.0.0.1:port"
    std::uint64_t peakMemory() const;                                ///< bytes

private:
    tests::TempFolder folder_;
    QProcess process_;
    std::string address_;
};

} // namespace quillet::bench
