#include "app/WindowControls.h"

#include "app/Appearance.h"
#include "app/widgets/FlatProgressBar.h"
#include "app/widgets/GroupTile.h"
#include "app/widgets/LastingScrollBar.h"
#include "app/widgets/TouchButton.h"
#include "sync/StatementSubject.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QShortcut>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QVBoxLayout>
#include <QWidget>

#include <cmath>
#include <utility>

namespace quillet::app {

namespace {

// Sizes in logical pixels at full size. Read at 1.5 m, a letter needs about 7 mm: 24 pixels on the
// screens that counters have. A finger needs about 15 mm, 48 pixels.
constexpr int TitleSize = 34;
constexpr int TextSize = 26;
constexpr int LeadSize = 30; ///< what is going on, and what happened
constexpr int SmallSize = 18;
constexpr int TouchHeight = 68;
constexpr int BarHeight = 32;
constexpr int Margin = 36;
constexpr int Gap = 18;

/// Of each text about a failure: what a server or a driver says may quote a statement of any size.
constexpr std::size_t MostCharacters = 400;

enum Page { Progress, Reason };

template <typename Widget>
void nameIt(Widget& widget, const char* name, std::size_t index) {
    widget.setObjectName(QStringLiteral("%1(%2)").arg(QLatin1String(name)).arg(index));
}

template <typename Layout>
Layout* plainLayout(QWidget* box) {
    auto* layout = new Layout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    return layout;
}

} // namespace

WindowControls::WindowControls(QWidget& window, const QString& version, double scale)
    : scale_(scale) {
    auto* layout = new QVBoxLayout(&window);
    layout->setContentsMargins(px(Margin), px(Margin - 8), px(Margin), px(Margin - 4));
    layout->setSpacing(px(Gap));
    layout->addWidget(header(version));
    layout->addWidget(groups());

    card_ = new Card;
    card_->addWidget(progress());
    card_->addWidget(failurePage());
    layout->addWidget(card_, 1);

    lbl_MSG = new StatusLine;
    lbl_MSG->setTextFormat(Qt::PlainText);
    setTextSize(*lbl_MSG, LeadSize, true);
    lbl_MSG->setObjectName(QStringLiteral("lbl_MSG"));
    lbl_MSG->setFixedHeight(px(TouchHeight));
    lbl_MSG->setAccessibleDescription(QStringLiteral("수신 상태")); // its name is its text
    layout->addWidget(lbl_MSG);
    layout->addWidget(buttons());

    for (std::size_t i = 0; i < Check1.size(); ++i) {
        auto* shortcut =
            new QShortcut(QKeySequence(Qt::ALT | (Qt::Key_1 + static_cast<int>(i))), &window);
        QObject::connect(shortcut, &QShortcut::activated, Check1[i], &QCheckBox::click);
    }
    for (std::size_t i = 0; i < bars.size(); ++i)
        bars[i] = std::make_unique<ProgressBarControl>(display, *PBar1[i]);
    for (std::size_t i = 0; i < counters.size(); ++i)
        counters[i] = std::make_unique<LabelControl>(display, *Label3[i]);
    groupText = std::make_unique<LabelControl>(display, *Label2[5]);
    message = std::make_unique<LabelControl>(display, *lbl_MSG);
    Cmd1[0]->setFocus();
}

int WindowControls::px(int atFullSize) const {
    return static_cast<int>(std::lround(atFullSize * scale_));
}

void WindowControls::setTextSize(QWidget& widget, int pixels, bool bold) const {
    QFont font = widget.font();
    font.setPixelSize(px(pixels));
    font.setBold(bold);
    widget.setFont(font);
}

QLabel* WindowControls::label(const QString& text, int size, bool bold) const {
    auto* result = new QLabel(text);
    result->setTextFormat(Qt::PlainText);
    setTextSize(*result, size, bold);
    return result;
}

QWidget* WindowControls::header(const QString& version) {
    auto* box = new QWidget;
    auto* row = plainLayout<QHBoxLayout>(box);
    Label2[0] = label(QStringLiteral("기초자료 수신"), TitleSize, true);
    Label2[1] = label(version, SmallSize);
    Label2[1]->setForegroundRole(QPalette::PlaceholderText);
    Label2[1]->setAccessibleName(QStringLiteral("프로그램 버전 %1").arg(version));
    row->addWidget(Label2[0]);
    row->addStretch(1);
    row->addWidget(Label2[1], 0, Qt::AlignBottom);
    return box;
}

QWidget* WindowControls::groups() {
    static const std::array<QString, 5> Captions{QStringLiteral("품목"), QStringLiteral("회원"),
                                                 QStringLiteral("사용자"), QStringLiteral("설정"),
                                                 QStringLiteral("계정과목")};
    auto* box = new QWidget;
    auto* row = plainLayout<QHBoxLayout>(box);
    row->setSpacing(px(12));
    for (std::size_t i = 0; i < Check1.size(); ++i) {
        Check1[i] = new GroupTile(Captions[i]);
        Check1[i]->setChecked(true);
        Check1[i]->setFixedHeight(px(TouchHeight));
        Check1[i]->setAccessibleName(QStringLiteral("%1 수신").arg(Captions[i]));
        Check1[i]->setToolTip(QStringLiteral("Alt+%1").arg(i + 1));
        setTextSize(*Check1[i], TextSize);
        nameIt(*Check1[i], "Check1", i);
        row->addWidget(Check1[i], 1);
    }
    return box;
}

QWidget* WindowControls::progress() {
    auto* box = new QWidget;
    auto* grid = new QGridLayout(box);
    grid->setContentsMargins(px(28), px(22), px(28), px(26));
    grid->setHorizontalSpacing(px(10));
    grid->setVerticalSpacing(px(10));
    grid->setColumnStretch(0, 1);

    Label2[5] = label(QStringLiteral("대기 중"), LeadSize, true);
    Label2[2] = label(QStringLiteral("전체"), TextSize);
    for (const std::size_t slash : {3U, 4U})
        Label2[slash] = label(QStringLiteral("/"), TextSize);
    for (std::size_t i = 0; i < Label3.size(); ++i) {
        Label3[i] = label(QStringLiteral("0"), TextSize, i == 1 || i == 3);
        nameIt(*Label3[i], "Label3", i);
    }
    for (std::size_t i = 0; i < Label2.size(); ++i)
        nameIt(*Label2[i], "Label2", i);

    // Each bar under its caption; at the right how many of how many.
    const auto addBar = [&](std::size_t bar, int top, QLabel* caption, QLabel* counter,
                            QLabel* slash, QLabel* total) {
        PBar1[bar] = new FlatProgressBar;
        PBar1[bar]->setFixedHeight(px(BarHeight));
        nameIt(*PBar1[bar], "PBar1", bar);
        auto* count = new QWidget;
        auto* row = plainLayout<QHBoxLayout>(count);
        row->setSpacing(px(8));
        // It changes many times a second; without a size of its own, each time the whole window
        // would be laid out anew.
        const QFontMetrics font(counter->font());
        counter->setFixedSize(font.horizontalAdvance(QStringLiteral("00000000")), font.height());
        counter->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        for (QLabel* number : {counter, slash, total}) {
            QSizePolicy policy = number->sizePolicy();
            policy.setRetainSizeWhenHidden(true);
            number->setSizePolicy(policy);
            row->addWidget(number);
        }
        grid->addWidget(caption, top, 0);
        grid->addWidget(count, top, 1, Qt::AlignRight);
        grid->addWidget(PBar1[bar], top + 1, 0, 1, 2);
    };
    addBar(1, 0, Label2[5], Label3[3], Label2[4], Label3[2]);
    addBar(0, 3, Label2[2], Label3[1], Label2[3], Label3[0]);
    grid->setRowMinimumHeight(2, px(8));
    grid->setRowStretch(2, 1);

    PBar1[0]->setAccessibleName(QStringLiteral("전체 진행"));
    PBar1[0]->setAccessibleDescription(QStringLiteral("전체 자료 중 저장한 건수"));
    PBar1[1]->setAccessibleName(QStringLiteral("항목별 진행"));
    PBar1[1]->setAccessibleDescription(QStringLiteral("지금 받는 항목의 자료 중 저장한 건수"));
    static const std::array<QString, 4> CounterNames{
        QStringLiteral("전체 건수"), QStringLiteral("전체 저장 건수"), QStringLiteral("항목 건수"),
        QStringLiteral("항목 저장 건수")};
    for (std::size_t i = 0; i < Label3.size(); ++i)
        Label3[i]->setAccessibleDescription(CounterNames[i]);
    return box;
}

QWidget* WindowControls::failurePage() {
    auto* box = new QWidget;
    auto* column = new QVBoxLayout(box);
    column->setContentsMargins(px(28), px(20), px(20), px(18));
    column->setSpacing(px(6));
    auto* heading = label(QStringLiteral("실패 원인"), TextSize, true);
    reason = new QPlainTextEdit;
    reason->setObjectName(QStringLiteral("reason"));
    reason->setAccessibleName(QStringLiteral("실패 원인"));
    reason->setReadOnly(true);
    reason->setTabChangesFocus(true);
    reason->setFrameShape(QFrame::NoFrame);
    reason->setVerticalScrollBar(new LastingScrollBar);
    reason->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    reason->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    reason->document()->setDocumentMargin(0);
    setTextSize(*reason, 22);
    heading->setBuddy(reason);
    column->addWidget(heading);
    column->addWidget(reason, 1);
    return box;
}

QWidget* WindowControls::buttons() {
    auto* box = new QWidget;
    auto* row = plainLayout<QHBoxLayout>(box);
    row->setSpacing(px(20));
    Cmd1[0] = new TouchButton(QStringLiteral("수신 시작(&S)"), TouchButton::Rank::First);
    Cmd1[1] = new TouchButton(QStringLiteral("닫기(&C)"), TouchButton::Rank::Second);
    Cmd1[0]->setAccessibleName(QStringLiteral("수신 시작"));
    Cmd1[1]->setAccessibleName(QStringLiteral("닫기"));
    for (std::size_t i = 0; i < Cmd1.size(); ++i) {
        Cmd1[i]->setFixedHeight(px(TouchHeight));
        setTextSize(*Cmd1[i], TextSize, i == 0);
        nameIt(*Cmd1[i], "Cmd1", i);
        row->addWidget(Cmd1[i], i == 0 ? 2 : 1);
    }
    return box;
}

void WindowControls::showCounters(bool shown) {
    for (QLabel* number : Label3)
        number->setVisible(shown);
    for (const std::size_t slash : {3U, 4U})
        Label2[slash]->setVisible(shown);
}

void WindowControls::showPhase(RunPhase phase) {
    using Look = ProgressBarControl::Look;
    display.refresh(); // the text comes before its colour, which announces it
    switch (phase) {
    case RunPhase::Collecting:
        bars[0]->setLook(Look::Busy);
        lbl_MSG->setTone(StatusLine::Tone::Quiet);
        card_->setCurrentIndex(Progress);
        break;
    case RunPhase::Writing:
        bars[0]->setLook(Look::Held);
        break;
    case RunPhase::Committed:
        bars[0]->setLook(Look::Full);
        bars[1]->setLook(Look::Full);
        lbl_MSG->setTone(StatusLine::Tone::Good);
        break;
    case RunPhase::Failed:
        bars[0]->setLook(Look::Plain);
        lbl_MSG->setTone(StatusLine::Tone::Bad);
        break;
    }
    // Business information counts in the counter and not in the total: at the end they differ.
    showCounters(phase == RunPhase::Writing || phase == RunPhase::Failed);
    display.refresh();
}

void WindowControls::showFailure(const sync::Failure& failure) {
    reason->clear();
    QTextCursor cursor(reason->document());
    QTextCharFormat plain;
    QTextCharFormat bold;
    bold.setFontWeight(QFont::Bold);
    const auto line = [&](const QString& caption, const std::string& text) {
        if (text.empty())
            return;
        if (!cursor.atStart())
            cursor.insertBlock();
        cursor.insertText(caption + QStringLiteral("  "), bold);
        cursor.insertText(QString::fromStdString(sync::elided(text, MostCharacters)).trimmed(),
                          plain);
    };
    line(QStringLiteral("구분"), failure.title);
    line(QStringLiteral("오류"), failure.error);
    line(QStringLiteral("자료"), failure.subject);
    reason->moveCursor(QTextCursor::Start);
    card_->setCurrentIndex(Reason);
}

void WindowControls::setEnabled(bool enabled) {
    for (QCheckBox* box : Check1)
        box->setEnabled(enabled);
    for (QPushButton* button : Cmd1)
        button->setEnabled(enabled);
    if (enabled)
        Cmd1[0]->setFocus();
}

} // namespace quillet::app
