#pragma once

#include "db/Controls.h"
#include "db/VelkDBPro.h"

#include <array>
#include <cstdint>

namespace quillet::db {

/// The display steps of a batch: which group a statement opens, and what moves after it.
class BatchProgress {
public:
    BatchProgress(ProgressBar& overallBar, ProgressBar& groupBar, Label& overallCounter,
                  Label& groupCounter, Label& groupTotal, Label& groupText,
                  const GroupCounts& counts);

    /// Shows the group that statement i opens, if it opens one, and moves the bars.
    /// @param i position in the batch, from 1.
    /// @throws Error 6 when the counts' sums leave 32 bits.
    void beforeYield(std::int32_t i);

    /// Moves the counters.
    void afterYield();

private:
    void openGroup(std::size_t group);

    ProgressBar& overallBar_;
    ProgressBar& groupBar_;
    Label& overallCounter_;
    Label& groupCounter_;
    Label& groupTotal_;
    Label& groupText_;
    const GroupCounts& counts_;
};

} // namespace quillet::db
