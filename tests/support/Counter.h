#pragma once

#include "app/IniSettings.h"
#include "app/frm_Quillet.h"
#include "tests/support/TempFolder.h"

#include <QString>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quillet::tests {

class TestHeadOffice;

/// A counter of a test's own: a program folder with an empty store, a settings file, and the real
/// window on them.
class Counter : private sync::RunObserver {
public:
    Counter();
    ~Counter() override;

    /// Points the settings at a head office.
    void use(const TestHeadOffice& headOffice);

    /// Opens the window.
    void open();

    /// Opens the window and waits until its automatic receive has ended, one way or the other.
    void start();

    /// Waits until the window is closed or its start button can be pressed again.
    void waitForEndOfRun();

    bool isWindowOpen() const;

    std::string text(const char* name) const; ///< of a label
    bool isEnabled(const char* name) const;
    void tick(std::size_t index, bool on);
    void click(const char* name);

    /// Answers message boxes with OK from now on, and writes them down as "title: text".
    void answerMessageBoxes();
    std::vector<std::string> messageBoxes;

    /// Rows of a store query, columns joined by "|".
    std::vector<std::string> rows(const std::string& query) const;
    void store(const std::string& statement) const;

    std::string downloadLog() const { return readOnlyFileIn(folder / "log"); }
    std::string dailyLog() const { return readOnlyFileIn(folder / "ZELMARO_LOG"); }

    std::string storeFile() const;

    TempFolder folder;
    app::IniSettings settings;
    std::unique_ptr<app::frm_Quillet> window;
    std::function<void()> afterStatement;
    std::function<void(const std::string& ServerSql)> beforeQuery;

private:
    void queryBegins(const std::string& ServerSql) override {
        if (beforeQuery)
            beforeQuery(ServerSql);
    }
    void statementDone() override {
        if (afterStatement)
            afterStatement();
    }

    template <typename Widget>
    Widget& widget(const char* name) const;
};

} // namespace quillet::tests
