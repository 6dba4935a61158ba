#pragma once

#include "db/Paths.h"
#include "db/store/EmptyStore.h"
#include "sync/Run.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TestHeadOffice.h"

#include <gmock/gmock.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace quillet::tests {

/// Settings for as long as a test runs.
class MemorySettings : public sync::Settings {
public:
    std::string GetSetting(const std::string& application, const std::string& section,
                           const std::string& key, const std::string& byDefault) const override {
        const auto found = values_.find(application + '/' + section + '/' + key);
        return found != values_.end() ? found->second : byDefault;
    }
    void SaveSetting(const std::string& application, const std::string& section,
                     const std::string& key, const std::string& value) override {
        values_[application + '/' + section + '/' + key] = value;
    }

private:
    std::map<std::string, std::string> values_;
};

/// Receivers one at a time: server rows from a real database through the real protocol, statements
/// for a real store.
class ReceiverFixture : public testing::Test {
protected:
    using Receiver = bool (*)(sync::Run&);

    void SetUp() override {
        if (!TestHeadOffice::isAvailable())
            GTEST_SKIP() << "no head office database (scripts/test starts one)";
        headOffice_ = std::make_unique<TestHeadOffice>();
        std::filesystem::create_directory(folder_ / "log");
        db::createEmptyStore(db::textOf(folder_ / "food.MDB"));
        store_.DBOpen("Driver={Microsoft Access Driver (*.mdb)};Dbq=food.MDB;DefaultDir=" +
                      db::textOf(folder_.path()));
        settings_.SaveSetting("HALDREN", "Settings", "가맹점", "1000");
        run_.headOffice = {headOffice_->address(), "quorin.data", headOffice_->connectionString(),
                           "1000"};
    }

    /// Runs a statement at the head office.
    void sql(const std::string& statement) { headOffice_->sql(statement); }

    /// What a receiver queues.
    std::vector<std::string> statements(Receiver receiver) {
        run_.clearStatements();
        EXPECT_TRUE(receiver(run_)) << readOnlyFileIn(folder_ / "log");
        return {run_.statements.begin() + 1, run_.statements.end()};
    }

    /// Receives and writes.
    void receive(Receiver receiver) {
        statements(receiver);
        store_.PUT_DATA_DEL(run_.statements);
        EXPECT_EQ(store_.Status(), 1) << store_.errorText();
    }

    /// The download log of a receive that fails.
    std::string failure(Receiver receiver) {
        run_.clearStatements();
        EXPECT_FALSE(receiver(run_));
        std::string log = readOnlyFileIn(folder_ / "log");
        std::filesystem::remove_all(folder_ / "log");
        std::filesystem::create_directory(folder_ / "log");
        return log;
    }

    void store(const std::string& statement) {
        store_.PUT_DATA_DEL({"", statement});
        EXPECT_EQ(store_.Status(), 1) << store_.errorText();
    }

    /// Rows of the store, columns joined by "|".
    std::vector<std::string> rows(const std::string& query) {
        db::TextTable table;
        std::int32_t count = 0;
        std::int32_t columns = 0;
        store_.GET_DATA(query, table, count, columns);
        EXPECT_EQ(store_.Status(), 1) << store_.errorText();
        std::vector<std::string> result;
        for (std::size_t row = 1; row < table.size(); ++row) {
            result.emplace_back();
            for (const std::string& cell : table[row])
                result.back() += (&cell == &table[row].front() ? "" : "|") + cell;
        }
        return result;
    }

    std::string& stamp(sync::Group group) { return run_.stamps[static_cast<std::size_t>(group)]; }

    TempFolder folder_;
    std::unique_ptr<TestHeadOffice> headOffice_;
    MemorySettings settings_;
    db::VelkDBPro store_{db::DailyLog(folder_.path(), db::localNow), [] {}};
    sync::Run run_{store_, settings_, db::DownloadLog(folder_.path(), db::localNow)};
};

} // namespace quillet::tests
