#include "app/RunDriver.h"

#include "receivers/ReceiveCategories.h"
#include "sync/LeadingNumber.h"
#include "sync/SettingsFlags.h"
#include "sync/UpdateStamps.h"

namespace quillet::app {

namespace {

constexpr auto MenuGroup = static_cast<std::size_t>(sync::Group::Menu);

/// What the status line and the download log say when a group's first receiver fails, or a query
/// made on its behalf before it.
struct FirstStep {
    const char* failureText;
    const char* title;
};

constexpr FirstStep Categories{"분류자료 수신 실패했습니다", receivers::CategoriesTitle};

constexpr std::array<FirstStep, sync::Groups> FirstSteps{
    {Categories,
     {"회원자료 수신 실패했습니다", "회원 자료수신"},
     {"사용자자료 수신 실패했습니다", "사용자 자료수신"},
     {"설정자료 수신 실패했습니다", "설정 자료수신"},
     {"계정과목 수신 실패했습니다", "계정과목 자료수신"}}};

/// Business information is received whatever is ticked.
constexpr FirstStep BusinessInformation{"사업장정보 수신 실패했습니다", "사업장정보 자료수신"};

const FirstStep& firstStepOf(const sync::Ticks& ticks) {
    for (std::size_t group = 0; group < ticks.size(); ++group)
        if (ticks[group])
            return FirstSteps[group];
    return BusinessInformation;
}

std::int32_t sumBefore(const db::GroupCounts& counts, std::size_t group) {
    std::int32_t sum = 0;
    for (std::size_t i = 0; i < group; ++i)
        sum += counts[i];
    return sum;
}

} // namespace

bool RunDriver::fail(const char* text) {
    view_.lbl_MSG().SetCaption(text);
    view_.setHourglass(false);
    return false;
}

RunDriver::Result RunDriver::receive() {
    view_.PBar1(0).SetValue(0);
    view_.PBar1(1).SetValue(0);
    view_.setHourglass(true);
    run_.clearStatements();
    if (!collect())
        return Result::Failed;

    if (run_.upperBound() < 1) {
        view_.inform("기초자료 수신 자료가 없습니다\r\r\n이미 기초자료 업데이트 상태입니다",
                     "자료수신 완료");
        return Result::NothingToReceive; // the pointer stays; the window closes next
    }
    return execute();
}

bool RunDriver::collect() {
    const sync::Ticks ticks = view_.ticks();
    const FirstStep& first = firstStepOf(ticks);
    if (!sync::QueueStamps(run_, ticks, first.title))
        return fail(first.failureText);

    for (std::size_t group = 0; group < run_.groupCounts.size(); ++group) {
        if (group == MenuGroup && ticks[MenuGroup] && !receiveMenu())
            return false;
        run_.groupCounts[group] = run_.upperBound() - sumBefore(run_.groupCounts, group);
    }

    // Business information is deliberately outside the total.
    run_.RowTotal = sumBefore(run_.groupCounts, 5);
    return true;
}

bool RunDriver::receiveMenu() {
    if (!sync::ReadSettingsFlags(run_, Categories.title))
        return fail(Categories.failureText);
    if (!receivers::ReceiveCategories(run_))
        return fail(Categories.failureText);
    run_.setMenuSkipFlag =
        static_cast<std::int16_t>(sync::leadingNumber(sync::ReadSetMenuSetting(run_)));
    return true;
}

RunDriver::Result RunDriver::execute() {
    view_.Label3(0).SetCaption(std::to_string(run_.RowTotal));
    view_.PBar1(0).SetMin(0);
    view_.PBar1(0).SetMax(run_.RowTotal);
    run_.store().PUT_DATA(run_.statements, 1, view_.PBar1(0), view_.PBar1(1), view_.Label3(1),
                          view_.Label3(3), view_.Label3(2), view_.groupText(), run_.groupCounts);
    view_.setHourglass(false);
    if (run_.store().Status() != 1) {
        view_.PBar1(0).SetValue(0);
        view_.PBar1(1).SetValue(0);
        fail("기초자료 수신 실패했습니다");
        return Result::Failed;
    }
    view_.lbl_MSG().SetCaption("기초자료 수신 완료했습니다");
    return Result::Received;
}

} // namespace quillet::app
