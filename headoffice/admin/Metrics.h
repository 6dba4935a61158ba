#pragma once

#include "headoffice/admin/Load.h"
#include "rds/CallServer.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace quillet::headoffice::admin {

/// Counts for a monitoring system, in the Prometheus text format 0.0.4, as described in
/// https://prometheus.io/docs/instrumenting/exposition_formats; names and units follow
/// https://prometheus.io/docs/practices/naming. Labels take known values only, so that nobody
/// outside can make new series. Any thread may call.
///
/// Written by hand: the usual client library is a compiled one, and the Windows build has none.
class Metrics {
public:
    static constexpr std::string_view ContentType = "text/plain; version=0.0.4; charset=utf-8";

    /// @param version of this program.
    explicit Metrics(std::string version);

    void callFinished(const rds::CallRecord& record);

    /// @param reason a label of RefusalReasons.
    void refused(std::string_view reason);

    /// Everything counted since the start, and the load now.
    std::string text(const Load& load) const;

private:
    /// Upper bounds of the histogram, in milliseconds; what is longer is in none of them.
    static constexpr std::array<std::int64_t, 14> Bounds = {
        5, 10, 25, 50, 100, 250, 500, 1'000, 2'500, 5'000, 10'000, 30'000, 60'000, 120'000};

    struct Method {
        std::uint64_t ok = 0;
        std::uint64_t failed = 0;
        std::uint64_t milliseconds = 0;
        std::uint64_t rows = 0;
        std::uint64_t bytes = 0;
        std::array<std::uint64_t, Bounds.size()> within{}; ///< not cumulative
    };

    std::string version_;
    mutable std::mutex mutex_;
    std::map<std::string, Method> methods_; ///< has every known method from the start
    std::map<std::string, std::uint64_t> refused_;
};

} // namespace quillet::headoffice::admin
