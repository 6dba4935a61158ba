#pragma once

#include "tests/support/Counter.h"
#include "tests/support/TestHeadOffice.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>

namespace quillet::tests {

/// A counter and its head office: MariaDB, HTTP, window, store file.
class ReceiveFixture : public testing::Test {
protected:
    void SetUp() override {
        if (!TestHeadOffice::isAvailable())
            GTEST_SKIP() << "no head office database (scripts/test starts one)";
        headOffice_ = std::make_unique<TestHeadOffice>();
        counter_.use(*headOffice_);
    }

    /// Runs a statement at the head office.
    void sql(const std::string& statement) { headOffice_->sql(statement); }

    /// A category of the head office; kind and shown flag as SQL literals.
    void category(const std::string& id, const std::string& name, const std::string& shown,
                  const std::string& kind, int level = 1) {
        sql("INSERT INTO KIND (KD_ID,KD_NAME,KD_ORDER,KD_CKSD,KD_CKGU,KD_LVL) VALUES ('" + id +
            "','" + name + "',9," + shown + "," + kind + "," + std::to_string(level) + ")");
    }

    /// A store that has been received before.
    void receivedBefore() {
        counter_.store("INSERT INTO UPD VALUES ('2026-01-01 00:00:00','','','','')");
    }

    /// A fresh folder for the next download log.
    void clearDownloadLog() const {
        std::filesystem::remove_all(counter_.folder / "log");
        std::filesystem::create_directory(counter_.folder / "log");
    }

    std::unique_ptr<TestHeadOffice> headOffice_;
    Counter counter_;
};

} // namespace quillet::tests
