// Receivers one at a time: server rows from a real database through the real protocol, statements
// for a real store. The cases are the text files of this folder; README.md says how to read them.

#include "data/AsciiText.h"
#include "db/store/EmptyStore.h"
#include "files/Paths.h"
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
#include "receivers/ReceiveProductsStorePrice.h"
#include "receivers/ReceiveSetMenus.h"
#include "receivers/ReceiveSettings.h"
#include "receivers/ReceiveTradePartners.h"
#include "receivers/ReceiveUsers.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TestHeadOffice.h"

#include <gmock/gmock.h>

#include <map>
#include <memory>
#include <sstream>

namespace quillet::receivers {
namespace {

using Lines = std::vector<std::string>;

/// One step of a case: what to do, with what, and the lines that belong to it.
struct Step {
    std::string where; ///< file and line
    std::string command;
    std::string argument;
    Lines lines;
};

struct Case {
    std::string name;
    std::vector<Step> steps;
};

void PrintTo(const Case& testCase, std::ostream* out) {
    *out << testCase.name;
}

std::vector<Case> casesOf(const std::string& file) {
    std::vector<Case> cases;
    std::ifstream stream(std::string(QUILLET_SOURCE_DIR "/tests/receivers/") + file);
    if (!stream)
        throw std::runtime_error("no cases in " + file);
    int number = 0;
    for (std::string line; std::getline(stream, line);) {
        ++number;
        if (line.empty() || line[0] == '#')
            continue;
        if (line.starts_with("  ") || line[0] == '|') {
            // Bars show where blanks begin and end.
            const bool barred = line[0] == '|';
            cases.back().steps.back().lines.push_back(barred ? line.substr(1, line.size() - 2)
                                                             : line.substr(2));
            continue;
        }
        const std::size_t blank = std::min(line.find(' '), line.size());
        const std::string command = line.substr(0, blank);
        const std::string argument = line.substr(std::min(blank + 1, line.size()));
        if (command == "case")
            cases.push_back({argument, {}});
        else
            cases.back().steps.push_back(
                {file + ":" + std::to_string(number), command, argument, {}});
    }
    return cases;
}

std::vector<Case> allCases() {
    std::vector<Case> all;
    for (const char* file : {"products.txt", "menus.txt", "people.txt", "settings.txt"})
        for (Case& testCase : casesOf(file))
            all.push_back(std::move(testCase));
    return all;
}

class MemorySettings : public sync::Settings {
public:
    std::string GetSetting(const std::string& /*application*/, const std::string& /*section*/,
                           const std::string& key, const std::string& byDefault) const override {
        const auto found = values_.find(key);
        return found != values_.end() ? found->second : byDefault;
    }
    void SaveSetting(const std::string& /*application*/, const std::string& /*section*/,
                     const std::string& key, const std::string& value) override {
        values_[key] = value;
    }

private:
    std::map<std::string, std::string> values_;
};

class ReceiversTest : public testing::TestWithParam<Case> {
protected:
    using Receiver = bool (*)(sync::Run&);

    void SetUp() override {
        if (!tests::TestHeadOffice::isAvailable())
            GTEST_SKIP() << "no head office database (scripts/test starts one)";
        headOffice_ = std::make_unique<tests::TestHeadOffice>();
        db::createEmptyStore(files::textOf(folder_ / "food.MDB"));
        store_.DBOpen("Driver={Microsoft Access Driver (*.mdb)};Dbq=food.MDB;DefaultDir=" +
                      files::textOf(folder_.path()));
        run_.menuNeverReceived = true;
        run_.headOffice = {headOffice_->address(), "quorin.data", headOffice_->connectionString(),
                           "1000"};
        settings_.SaveSetting("", "", "가맹점", "1000");
    }

    static Receiver receiver(const std::string& name) {
        static const std::map<std::string, Receiver> receivers{
            {"AccountTitles", ReceiveAccountTitles},
            {"Availability", ReceiveAvailability},
            {"BusinessInformation", ReceiveBusinessInformation},
            {"Categories", ReceiveCategories},
            {"CourseMenus", ReceiveCourseMenus},
            {"GlobalSettings", ReceiveGlobalSettings},
            {"Members", ReceiveMembers},
            {"OptionMenus", ReceiveOptionMenus},
            {"OptionNames", ReceiveOptionNames},
            {"ProductsBase", ReceiveProductsBase},
            {"ProductsPriceOption", ReceiveProductsPriceOption},
            {"ProductsStorePrice", ReceiveProductsStorePrice},
            {"SetMenus", ReceiveSetMenus},
            {"StoreSettings", ReceiveStoreSettings},
            {"TradePartners", ReceiveTradePartners},
            {"Users", ReceiveUsers}};
        return receivers.at(name);
    }

    Lines queue(const std::string& name, bool succeeds) {
        run_.clearStatements();
        std::filesystem::remove_all(folder_ / "log");
        std::filesystem::create_directory(folder_ / "log");
        EXPECT_EQ(receiver(name)(run_), succeeds) << tests::readOnlyFileIn(folder_ / "log");
        return {run_.statements.begin() + 1, run_.statements.end()};
    }

    void write(const db::StatementArray& statements) {
        store_.PUT_DATA_DEL(statements);
        EXPECT_EQ(store_.Status(), 1) << store_.errorText();
    }

    /// The first lines of the download log.
    Lines downloadLog(std::size_t count) const {
        std::istringstream log(tests::readOnlyFileIn(folder_ / "log"));
        Lines lines;
        for (std::string line; lines.size() < count && std::getline(log, line);)
            lines.push_back(line.substr(0, line.find('\r')));
        return lines;
    }

    Lines rows(const std::string& query) {
        db::TextTable table;
        std::int32_t count = 0;
        std::int32_t columns = 0;
        store_.GET_DATA(query, table, count, columns);
        EXPECT_EQ(store_.Status(), 1) << store_.errorText();
        Lines result;
        for (std::size_t row = 1; row < table.size(); ++row) {
            result.emplace_back();
            for (const std::string& cell : table[row])
                result.back() += (&cell == &table[row].front() ? "" : "|") + cell;
        }
        return result;
    }

    void take(const Step& step) {
        const auto& [where, command, argument, lines] = step;
        if (command == "server") {
            for (const std::string& statement : lines)
                headOffice_->sql(statement);
        } else if (command == "store") {
            for (const std::string& statement : lines)
                write({"", statement});
        } else if (command == "stamps") {
            run_.stamps.fill(argument);
            run_.storeSettingsSince = argument;
            run_.menuNeverReceived = data::isBlank(argument);
        } else if (command == "storecode") {
            settings_.SaveSetting("", "", "가맹점", argument);
            run_.headOffice.storeCode = argument;
        } else if (command == "option") {
            run_.priceOptionFlag = argument.substr(0, 1);
            run_.priceOptionMode = argument.substr(2);
        } else if (command == "queues") {
            EXPECT_EQ(queue(argument, true), lines);
        } else if (command == "receive") {
            queue(argument, true);
            write(run_.statements);
        } else if (command == "fails") {
            queue(argument, false);
            EXPECT_EQ(downloadLog(lines.size()), lines);
        } else if (command == "rows") {
            EXPECT_EQ(rows(argument), lines);
        } else if (command == "total") {
            EXPECT_EQ(std::to_string(run_.RowTotal), argument);
        } else {
            FAIL() << "unknown command " << command;
        }
    }

    tests::TempFolder folder_;
    std::unique_ptr<tests::TestHeadOffice> headOffice_;
    MemorySettings settings_;
    db::VelkDBPro store_{logs::DailyLog(folder_.path(), logs::localNow), [] {}};
    sync::Run run_{store_, settings_, logs::DownloadLog(folder_.path(), logs::localNow)};
};

TEST_P(ReceiversTest, FollowsItsRules) {
    for (const Step& step : GetParam().steps) {
        SCOPED_TRACE(step.where + ": " + step.command + " " + step.argument);
        take(step);
    }
}

INSTANTIATE_TEST_SUITE_P(All, ReceiversTest, testing::ValuesIn(allCases()),
                         testing::PrintToStringParamName());

} // namespace
} // namespace quillet::receivers
