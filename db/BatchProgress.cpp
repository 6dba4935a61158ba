#include "db/BatchProgress.h"

#include "data/Error.h"

#include <cstdlib>
#include <limits>
#include <string>

namespace quillet::db {

namespace {

constexpr std::array<const char*, 6> GroupTexts{"품목 정보 수신 중",     "회원 정보 수신 중",
                                                "사용자 정보 수신 중",   "설정 정보 수신 중",
                                                "계정과목 정보 수신 중", "사업자 정보 수신 중"};

/// The first group that is not part of the overall bar.
constexpr std::size_t OutsideTotal = 5;

std::int32_t checkedSum(std::int32_t a, std::int32_t b) {
    const std::int64_t sum = std::int64_t{a} + b;
    if (sum > std::numeric_limits<std::int32_t>::max() ||
        sum < std::numeric_limits<std::int32_t>::min())
        throw data::Error(data::number::Overflow, "Overflow");
    return static_cast<std::int32_t>(sum);
}

void increment(Label& label) {
    label.SetCaption(std::to_string(std::atoi(label.Caption().c_str()) + 1));
}

} // namespace

BatchProgress::BatchProgress(ProgressBar& overallBar, ProgressBar& groupBar, Label& overallCounter,
                             Label& groupCounter, Label& groupTotal, Label& groupText,
                             const GroupCounts& counts)
    : overallBar_(overallBar), groupBar_(groupBar), overallCounter_(overallCounter),
      groupCounter_(groupCounter), groupTotal_(groupTotal), groupText_(groupText), counts_(counts) {
}

void BatchProgress::openGroup(std::size_t group) {
    // Only the menu group resets the overall counter.
    if (group == 0)
        overallCounter_.SetCaption("0");
    groupText_.SetCaption(GroupTexts[group]);
    groupCounter_.SetCaption("0");
    groupTotal_.SetCaption(std::to_string(counts_[group]));
    groupBar_.SetValue(0);
    groupBar_.SetMin(0);
    groupBar_.SetMax(counts_[group]);
}

void BatchProgress::beforeYield(std::int32_t i) {
    std::int32_t before = 0; // statements of the groups before this one
    bool opened = false;
    for (std::size_t group = 0; group <= OutsideTotal; ++group) {
        if (!opened && counts_[group] != 0 && i == checkedSum(before, 1)) {
            openGroup(group);
            opened = true;
        }
        if (group < OutsideTotal)
            before = checkedSum(before, counts_[group]);
    }
    groupBar_.SetValue(groupBar_.Value() + 1);
    if (i <= before)
        overallBar_.SetValue(overallBar_.Value() + 1);
}

void BatchProgress::afterYield() {
    increment(groupCounter_);
    increment(overallCounter_);
}

} // namespace quillet::db
