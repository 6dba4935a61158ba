// The window under a person's hands: keys and clicks that go through the window system.

#include "app/widgets/StatusLine.h"
#include "tests/app/ReceiveFixture.h"
#include "tests/support/TamperingProxy.h"

#include <QAccessible>
#include <QApplication>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QWindow>

namespace quillet {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

class WindowTest : public tests::ReceiveFixture {
protected:
    /// A window that waits for a person: its automatic receive has failed.
    void startAndFail() {
        sql("RENAME TABLE KIND TO ELSEWHERE");
        counter_.start();
        ASSERT_TRUE(counter_.isWindowOpen());
        sql("RENAME TABLE ELSEWHERE TO KIND");
        counter_.window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(counter_.window.get()));
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(counter_.window->windowHandle(), key, modifiers);
    }

    static std::string focused() {
        const QWidget* widget = QApplication::focusWidget();
        return widget != nullptr ? widget->objectName().toStdString() : "nothing";
    }

    template <typename Widget>
    Widget& find(const char* name) {
        return *counter_.window->findChild<Widget*>(QString::fromUtf8(name));
    }

    std::string reason() {
        auto& text = find<QPlainTextEdit>("reason");
        return text.isVisible() ? text.toPlainText().toStdString() : "not shown";
    }
};

TEST_F(WindowTest, KeysDoWhatThePointerDoes) {
    startAndFail();
    std::vector<std::string> order{focused()};
    for (int i = 0; i < 8; ++i) {
        press(Qt::Key_Tab);
        order.push_back(focused());
    }
    EXPECT_THAT(order, ElementsAre("Cmd1(0)", "Cmd1(1)", "Check1(0)", "Check1(1)", "Check1(2)",
                                   "Check1(3)", "Check1(4)", "reason", "Cmd1(0)"));
    const auto& items = find<QCheckBox>("Check1(0)");
    press(Qt::Key_1, Qt::AltModifier);
    EXPECT_FALSE(items.isChecked());
    find<QCheckBox>("Check1(0)").setFocus();
    press(Qt::Key_Space);
    EXPECT_TRUE(items.isChecked());

    // Nothing but settings and account titles is ticked; the message is answered with a key, too.
    for (const Qt::Key key : {Qt::Key_1, Qt::Key_2, Qt::Key_3})
        press(key, Qt::AltModifier);
    std::string message;
    QTimer::singleShot(100, counter_.window.get(), [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        message = (box->windowTitle() + ": " + box->text()).toStdString();
        EXPECT_EQ(box->icon(), QMessageBox::Information);
        QTimer::singleShot(5000, box, &QWidget::close); // whatever becomes of the key
        EXPECT_TRUE(QTest::qWaitForWindowActive(box));
        QTest::keyClick(box->windowHandle(), Qt::Key_Return);
    });
    press(Qt::Key_Return); // with the focus on a check box
    EXPECT_EQ(message, "기초자료 선택: 기초자료 수신 정보를 선택하세요");
    EXPECT_TRUE(counter_.isWindowOpen());

    find<QPushButton>("Cmd1(1)").setFocus();
    press(Qt::Key_Enter);
    EXPECT_FALSE(counter_.isWindowOpen());
}

// A mnemonic shows the button being pressed first: what it does comes a moment later.
TEST_F(WindowTest, EnterStartsAndEscapeClosesWhenNothingRuns) {
    category("101000000000000", "밥류", "'Y'", "'A402'");
    for (const bool mnemonic : {false, true}) {
        startAndFail();
        bool wasOpen = false;
        counter_.afterStatement = [&] {
            press(Qt::Key_Escape);
            press(Qt::Key_1, Qt::AltModifier);
            wasOpen = counter_.isWindowOpen() && find<QCheckBox>("Check1(0)").isChecked();
        };
        mnemonic ? press(Qt::Key_S, Qt::AltModifier) : press(Qt::Key_Return);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !counter_.isWindowOpen(); })) << "received";
        EXPECT_TRUE(wasOpen);
        counter_.afterStatement = nullptr;
    }
    for (const bool mnemonic : {false, true}) {
        startAndFail();
        mnemonic ? press(Qt::Key_C, Qt::AltModifier) : press(Qt::Key_Escape);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !counter_.isWindowOpen(); }));
    }
}

TEST_F(WindowTest, WhoListensHearsTheSame) {
    startAndFail();
    const auto name = [&](const char* control) {
        return QAccessible::queryAccessibleInterface(&find<QWidget>(control))
            ->text(QAccessible::Name)
            .toStdString();
    };
    for (const char* control : {"Check1(0)", "Check1(4)", "Cmd1(0)", "Cmd1(1)", "reason"})
        EXPECT_NE(name(control), "") << control;
    EXPECT_EQ(name("lbl_MSG"), "분류자료 수신 실패했습니다");
    EXPECT_EQ(name("PBar1(0)"), "전체 진행");
    EXPECT_EQ(name("PBar1(1)"), "항목별 진행");
    auto* bar = QAccessible::queryAccessibleInterface(&find<QWidget>("PBar1(0)"));
    EXPECT_EQ(bar->role(), QAccessible::ProgressBar);
    EXPECT_NE(bar->text(QAccessible::Description), QString());
}

TEST_F(WindowTest, TheOverallBarIsFullOnlyAfterTheCommit) {
    for (int i = 100; i < 140; ++i)
        category(std::to_string(i) + "000000000000", "분류", "'Y'", "'A402'");
    sql("INSERT INTO RCT (RCT_CODE,RCT_NAME) VALUES ('1000','느티점')"); // outside the total
    auto* bar = static_cast<QProgressBar*>(nullptr);
    int busyQueries = 0, statements = 0, fullQueries = 0;
    counter_.beforeQuery = [&](const std::string& query) {
        bar = &find<QProgressBar>("PBar1(0)");
        if (query.find("RCTBAS") != query.npos)
            fullQueries += bar->value() == bar->maximum() ? 1 : 0;
        else
            busyQueries += bar->maximum() == bar->minimum() ? 1 : 0;
    };
    counter_.afterStatement = [&] {
        QThread::msleep(35); // each is repainted
        ++statements;
        EXPECT_LT(bar->value(), bar->maximum()) << statements;
        EXPECT_LT(bar->minimum(), bar->maximum());
    };
    counter_.start();
    EXPECT_FALSE(counter_.isWindowOpen());
    EXPECT_GT(statements, 41);
    EXPECT_GT(busyQueries, 10);
    EXPECT_EQ(fullQueries, 1);
}

TEST_F(WindowTest, AFailedRunSaysWhyUntilTheNextOne) {
    sql("INSERT INTO ST (ST_CODE,RCT_CODE,ST_NAME,ST_SECT,ST_POSPWD,ST_ASPLVL) VALUES "
        "('0012','1000','Kim''s','1','4821','9')");
    startAndFail();
    EXPECT_THAT(reason(), HasSubstr("구분  품목분류 자료수신\n오류  -2147217865 : "));
    press(Qt::Key_Return);
    counter_.waitForEndOfRun();
    EXPECT_EQ(counter_.text("lbl_MSG"), "기초자료 수신 실패했습니다");
    EXPECT_EQ(reason(), "구분  사용자 저장\n오류  -2147217900 : Syntax error in string in query "
                        "expression ….\n자료  USR  USR_CODE = '0012'");
    EXPECT_THAT(counter_.dailyLog(), HasSubstr("'Kim's',0,"));
    EXPECT_THAT(counter_.dailyLog(), HasSubstr("'4821'"));
    std::string meanwhile;
    counter_.beforeQuery = [&](const std::string&) { meanwhile = reason(); };
    press(Qt::Key_Return);
    counter_.waitForEndOfRun();
    EXPECT_EQ(meanwhile, "not shown") << "while it is tried again";
    EXPECT_THAT(reason(), HasSubstr("사용자 저장"));
}

/// A window of its own for one failure, as large as a screen of 800 by 600 has it.
struct FailureWindow {
    FailureWindow() {
        window.setFixedSize(QSize(app::WindowControls::Width, app::WindowControls::Height) * Scale);
        window.show();
        QCoreApplication::processEvents();
    }

    static constexpr double Scale = 0.98 * 800 / app::WindowControls::Width;
    QWidget window{nullptr, Qt::Window | Qt::FramelessWindowHint};
    app::WindowControls controls{window, QStringLiteral("1.0.0"), Scale};
};

struct LayoutCounter : QObject {
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        count += event->type() == QEvent::LayoutRequest || event->type() == QEvent::Resize ? 1 : 0;
        return false;
    }
    int count = 0;
};

TEST(FailureCardTest, ComesToRestHoweverLongItsTextIs) {
    QString text;
    for (int i = 0; i < 12; ++i)
        text += QStringLiteral("INTO USR (USR_CODE,USR_NAME,USR_SEX) VALUES ('U%1','강한결',0) ")
                    .arg(i);
    for (int length = 1; length < 400; length += 2) {
        FailureWindow failed;
        failed.controls.showFailure(
            {"사용자 저장", "-2147217900 : near …: syntax error", text.left(length).toStdString()});
        for (int i = 0; i < 10; ++i)
            QCoreApplication::processEvents();
        LayoutCounter idle;
        qApp->installEventFilter(&idle);
        for (int i = 0; i < 10; ++i)
            QCoreApplication::processEvents();
        EXPECT_EQ(idle.count, 0) << length;
    }
}

TEST(FailureCardTest, ShowsTheBeginningOfWhatIsTooLong) {
    const std::string endless(1 << 20, '\'');
    FailureWindow failed;
    failed.controls.showFailure({endless, endless, endless});
    EXPECT_LT(failed.controls.reason->toPlainText().size(), 1300);
}

TEST_F(WindowTest, ASecondWindowOnTheStoreReceivesNothing) {
    startAndFail();
    app::frm_Quillet second({counter_.settings, counter_.folder.path(), "1.0.0"});
    second.show();
    QTest::qWait(100);
    const auto* message = second.findChild<QLabel*>(QStringLiteral("lbl_MSG"));
    auto* start = second.findChild<QPushButton*>(QStringLiteral("Cmd1(0)"));
    EXPECT_EQ(message->text(), QStringLiteral("다른 창에서 이미 기초자료를 수신하고 있습니다"));
    EXPECT_TRUE(second.isVisible());
    EXPECT_THAT(counter_.rows("SELECT * FROM UPD"), testing::IsEmpty());

    QTest::mouseClick(start, Qt::LeftButton); // still
    EXPECT_TRUE(second.isVisible());
    press(Qt::Key_Escape);
    QTest::mouseClick(start, Qt::LeftButton); // the first is gone
    EXPECT_TRUE(QTest::qWaitFor([&] { return !second.isVisible(); }));
    EXPECT_EQ(counter_.rows("SELECT * FROM UPD").size(), 1U);
}

TEST_F(WindowTest, ItStaysAliveWhileTheServerThinksAndMovesDuringTheBatch) {
    for (int i = 100; i < 160; ++i)
        category(std::to_string(i) + "000000000000", "분류", "'Y'", "'A402'");
    const tests::TamperingProxy slow(headOffice_->address(), [](int number, std::string reply) {
        QThread::msleep(number < 4 ? 300 : 0);
        return reply;
    });
    counter_.settings.SaveSetting("HALDREN", "Settings", "1차서버", slow.address());
    counter_.open();
    int ticks = 0;
    QTimer clock;
    QObject::connect(&clock, &QTimer::timeout, [&] { ++ticks; });
    clock.start(20);
    QPoint before, after;
    int ticksBeforeBatch = 0;
    counter_.afterStatement = [&, n = 0]() mutable {
        if (++n == 1)
            ticksBeforeBatch = ticks;
        const QPoint handle(20, 20); // between the controls
        if (n == 5) {
            before = counter_.window->pos();
            QTest::mousePress(counter_.window->windowHandle(), Qt::LeftButton, {}, handle);
            QTest::mouseMove(counter_.window->windowHandle(), handle + QPoint(30, 40));
        }
        if (n == 20) {
            after = counter_.window->pos();
            QTest::mouseRelease(counter_.window->windowHandle(), Qt::LeftButton, {}, handle);
            EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
        }
    };
    counter_.waitForEndOfRun();
    EXPECT_FALSE(counter_.isWindowOpen());
    EXPECT_GT(ticksBeforeBatch, 15) << "of about 45";
    EXPECT_EQ(after - before, QPoint(30, 40));
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

} // namespace
} // namespace quillet
