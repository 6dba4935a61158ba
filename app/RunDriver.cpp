#include "app/RunDriver.h"

#include "receivers/ReceiveAccountTitles.h"
#include "receivers/ReceiveAvailability.h"
#include "receivers/ReceiveBusinessInformation.h"
#include "receivers/ReceiveCategories.h"
#include "receivers/ReceiveCourseMenus.h"
#include "receivers/ReceiveMembers.h"
#include "receivers/ReceiveOptionMenus.h"
#include "receivers/ReceiveOptionNames.h"
#include "receivers/ReceiveProductsBase.h"
#include "receivers/ReceiveProductsPriceOption.h"
#include "receivers/ReceiveSetMenus.h"
#include "receivers/ReceiveSettings.h"
#include "receivers/ReceiveTradePartners.h"
#include "receivers/ReceiveUsers.h"
#include "receivers/Titles.h"
#include "sync/LeadingNumber.h"
#include "sync/ReceivedRowFlags.h"
#include "sync/Receiver.h"
#include "sync/SettingsFlags.h"
#include "sync/UpdateStamps.h"

#include <array>
#include <span>

namespace quillet::app {

namespace {

/// One step of a group, and what the status line says when it fails.
struct Step {
    bool (*receive)(sync::Run&);
    const char* failureText;
};

/// A group's steps, each taken only if the one before it succeeded.
struct GroupSteps {
    std::span<const Step> steps;
    const char* title; ///< under which the download log has a query made for the whole group
    const char* name;  ///< for people
};

bool readSettingsFlags(sync::Run& run) {
    return sync::ReadSettingsFlags(run, receivers::CategoriesTitle);
}

bool receiveProducts(sync::Run& run) {
    return run.priceOptionFlag == "Y" ? receivers::ReceiveProductsPriceOption(run)
                                      : receivers::ReceiveProductsBase(run);
}

bool receiveSetMenusUnlessSkipped(sync::Run& run) {
    const bool known = sync::guardReceiver(run, receivers::SetMenusTitle, [&](std::size_t&) {
        run.setMenuSkipFlag = sync::leadingInteger(sync::ReadSetMenuSetting(run));
    });
    return known && (run.setMenuSkipFlag != 0 || receivers::ReceiveSetMenus(run));
}

/// Of a run as a whole.
constexpr const char* RunFailed = "기초자료 수신 실패했습니다";

constexpr std::array Menu{
    Step{readSettingsFlags, "분류자료 수신 실패했습니다"},
    Step{receivers::ReceiveCategories, "분류자료 수신 실패했습니다"},
    Step{receiveProducts, "메뉴자료 수신 실패했습니다"},
    Step{receivers::ReceiveAvailability, "메뉴취급여부 수신 실패했습니다"},
    Step{receivers::ReceiveOptionNames, "옵션자료 수신 실패했습니다"},
    Step{receivers::ReceiveCourseMenus, "코스메뉴 수신 실패했습니다"},
    Step{receivers::ReceiveOptionMenus, "옵션메뉴 수신 실패했습니다"},
    Step{receiveSetMenusUnlessSkipped, "세트메뉴 수신 실패했습니다"},
};
constexpr std::array Members{
    Step{receivers::ReceiveMembers, "회원자료 수신 실패했습니다"},
    Step{receivers::ReceiveTradePartners, "거래처자료 수신 실패했습니다"},
};
constexpr std::array Users{Step{receivers::ReceiveUsers, "사용자자료 수신 실패했습니다"}};
constexpr std::array Settings{Step{receivers::ReceiveGlobalSettings, "설정자료 수신 실패했습니다"}};
constexpr std::array AccountTitles{
    Step{receivers::ReceiveAccountTitles, "계정과목 수신 실패했습니다"}};
constexpr std::array BusinessInformation{
    Step{receivers::ReceiveBusinessInformation, "사업장정보 수신 실패했습니다"}};

/// In the order in which the groups are received. The last one has no checkbox.
constexpr std::array<GroupSteps, sync::Groups + 1> AllGroups{
    {{Menu, receivers::CategoriesTitle, "품목"},
     {Members, receivers::MembersTitle, "회원"},
     {Users, receivers::UsersTitle, "사용자"},
     {Settings, receivers::GlobalSettingsTitle, "설정"},
     {AccountTitles, receivers::AccountTitlesTitle, "계정과목"},
     {BusinessInformation, receivers::BusinessInformationTitle, "사업자"}}};

/// Business information is received whatever is ticked.
bool isReceived(const sync::Ticks& ticks, std::size_t group) {
    return group >= ticks.size() || ticks[group];
}

const GroupSteps& firstReceived(const sync::Ticks& ticks) {
    std::size_t group = 0;
    while (!isReceived(ticks, group))
        ++group;
    return AllGroups[group];
}

std::int32_t sumBefore(const db::GroupCounts& counts, std::size_t group) {
    std::int32_t sum = 0;
    for (std::size_t i = 0; i < group; ++i)
        sum += counts[i];
    return sum;
}

} // namespace

RunDriver::RunDriver(sync::Run& run, ReceiveView& view)
    : run_(run), view_(view), safeguard_(run), owedSettings_(run.store().file()) {}

bool RunDriver::fail(const char* text) {
    if (!run_.isEnding()) { // then nothing has failed
        view_.lbl_MSG().SetCaption(text);
        view_.showPhase(RunPhase::Failed);
    }
    view_.setHourglass(false);
    return false;
}

RunDriver::Result RunDriver::receive() {
    view_.PBar1(0).SetValue(0);
    view_.PBar1(1).SetValue(0);
    view_.setHourglass(true);
    view_.showPhase(RunPhase::Collecting);
    run_.clearStatements();
    run_.DelList.assign(1, std::string());
    run_.failure.reset();
    run_.mustFinish = false;
    run_.oldMenuRemains = false;
    if (!knowStamps())
        return Result::Failed;
    safeguard_.begin();
    if (!collect()) {
        safeguard_.abandon();
        return Result::Failed;
    }

    if (run_.upperBound() < 1) {
        view_.inform("기초자료 수신 자료가 없습니다\r\r\n이미 기초자료 업데이트 상태입니다",
                     "자료수신 완료");
        return Result::NothingToReceive; // the pointer stays; the window closes next
    }
    return execute();
}

/// They are read once. A store that could not be read before is read again.
bool RunDriver::knowStamps() {
    if (!run_.stampsRead) {
        if (!sync::ReadStamps(run_))
            return fail(RunFailed);
        safeguard_.recoverStamps();
    }
    run_.storeSettingsSince = owedSettings_.since(run_.stamp(sync::Group::Settings));
    return true;
}

bool RunDriver::collect() {
    const sync::Ticks ticks = view_.ticks();
    const GroupSteps& first = firstReceived(ticks);
    if (!sync::QueueStamps(run_, ticks, first.title))
        return fail(first.steps.front().failureText);

    for (std::size_t group = 0; group < AllGroups.size(); ++group) {
        if (isReceived(ticks, group)) {
            view_.groupText().SetCaption(AllGroups[group].name + std::string(" 자료 확인 중"));
            view_.showPhase(RunPhase::Collecting);
            for (const Step& step : AllGroups[group].steps)
                if (!step.receive(run_))
                    return fail(step.failureText);
        }
        run_.groupCounts[group] = run_.upperBound() - sumBefore(run_.groupCounts, group);
    }

    if (run_.oldMenuRemains)
        sync::LeaveMenuStampBlank(run_, ticks);
    // Business information is deliberately outside the total.
    run_.RowTotal = sumBefore(run_.groupCounts, sync::Groups);
    return true;
}

bool RunDriver::prepareBatch() {
    return sync::guardReceiver(run_, sync::StoreTitle, [&](std::size_t& /*handledRows*/) {
        safeguard_.expectRows();
        owedSettings_.note(run_.storeSettingsSince);
        run_.yieldOrEnd(); // the last moment for it
    });
}

RunDriver::Result RunDriver::execute() {
    if (!prepareBatch()) {
        owedSettings_.withdraw();
        safeguard_.abandon();
        fail(RunFailed);
        return Result::Failed;
    }
    run_.mustFinish = true;
    view_.showPhase(RunPhase::Writing);
    view_.Label3(0).SetCaption(std::to_string(run_.RowTotal));
    view_.PBar1(0).SetMin(0);
    view_.PBar1(0).SetMax(run_.RowTotal);
    run_.observer().batchBegins(run_.statements);
    run_.store().PUT_DATA(run_.statements, 1, view_.PBar1(0), view_.PBar1(1), view_.Label3(1),
                          view_.Label3(3), view_.Label3(2), view_.groupText(), run_.groupCounts);
    run_.observer().batchEnded();
    const bool committed = run_.store().Status() == 1;
    if (!committed)
        takeFailureDown();
    const bool whole = safeguard_.verify(committed);
    view_.setHourglass(false);
    // A commit that was refused may have happened all the same; a statement's failure comes before
    // it.
    if (!committed && whole && run_.store().failedIndex() < run_.statements.size())
        owedSettings_.withdraw();
    if (!committed || !whole) {
        view_.PBar1(0).SetValue(0);
        view_.PBar1(1).SetValue(0);
        fail(RunFailed);
        return Result::Failed;
    }
    view_.lbl_MSG().SetCaption("기초자료 수신 완료했습니다");
    view_.showPhase(RunPhase::Committed);
    sync::SweepReceivedRows(run_);
    run_.mustFinish = false; // what is left is owed, and noted as that
    receiveStoreSettings();
    return Result::Received;
}

void RunDriver::takeFailureDown() {
    const std::size_t index = run_.store().failedIndex();
    const bool refused = index > 0 && index < run_.statements.size();
    const auto position = static_cast<std::int32_t>(index);
    std::size_t group = 0;
    while (group < sync::Groups && sumBefore(run_.groupCounts, group + 1) < position)
        ++group;
    run_.takeRefusalDown(refused ? AllGroups[group].name + std::string(" 저장") : "저장",
                         refused ? run_.statements[index] : std::string());
}

/// Outside the run's transaction: the base data is in the store, whatever comes of this.
void RunDriver::receiveStoreSettings() {
    constexpr const char* SettingsFailed = "매장별설정자료 수신 실패했습니다";
    if (!receivers::ReceiveStoreSettings(run_)) {
        fail(SettingsFailed);
        return;
    }
    run_.store().PUT_DATA_DEL(run_.statements);
    if (run_.store().Status() != 1) {
        run_.logBatchFailure(receivers::StoreSettingsTitle);
        return;
    }
    const bool settled =
        sync::guardReceiver(run_, sync::StoreTitle, [&](std::size_t& /*handledRows*/) {
            safeguard_.confirm();
            owedSettings_.settle();
        });
    if (!settled)
        fail(SettingsFailed);
}

} // namespace quillet::app
