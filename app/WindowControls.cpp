#include "app/WindowControls.h"

#include "app/FlatProgressBar.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>
#include <QWidget>

namespace quillet::app {

namespace {

// Sizes in logical pixels: characters of 20 and more are read at arm's length, and a finger needs
// about 48.
constexpr int TitleSize = 30;
constexpr int TextSize = 20;
constexpr int SmallSize = 14;
constexpr int TouchHeight = 56;
constexpr int BarHeight = 30;
constexpr int Margin = 36;

void setTextSize(QWidget& widget, int pixels, bool bold = false) {
    QFont font = widget.font();
    font.setPixelSize(pixels);
    font.setBold(bold);
    widget.setFont(font);
}

template <typename Widget>
void nameIt(Widget& widget, const char* name, std::size_t index) {
    widget.setObjectName(QStringLiteral("%1(%2)").arg(QLatin1String(name)).arg(index));
}

QLabel* label(const QString& text, int size, bool bold = false) {
    auto* result = new QLabel(text);
    result->setTextFormat(Qt::PlainText);
    setTextSize(*result, size, bold);
    return result;
}

} // namespace

WindowControls::WindowControls(QWidget& window, const QString& version) {
    auto* layout = new QVBoxLayout(&window);
    layout->setContentsMargins(Margin, Margin - 8, Margin, Margin - 8);
    layout->setSpacing(22);
    layout->addWidget(header(version));
    layout->addWidget(groups());
    layout->addWidget(progress());

    lbl_MSG = label(QString(), TextSize, true);
    lbl_MSG->setObjectName(QStringLiteral("lbl_MSG"));
    lbl_MSG->setMinimumHeight(TouchHeight);
    lbl_MSG->setAlignment(Qt::AlignCenter);
    lbl_MSG->setWordWrap(true);
    lbl_MSG->setAccessibleName(QStringLiteral("수신 상태"));
    layout->addWidget(lbl_MSG);
    layout->addStretch(1);
    layout->addWidget(buttons());

    for (std::size_t i = 0; i < bars.size(); ++i)
        bars[i] = std::make_unique<ProgressBarControl>(display, *PBar1[i]);
    for (std::size_t i = 0; i < counters.size(); ++i)
        counters[i] = std::make_unique<LabelControl>(display, *Label3[i]);
    groupText = std::make_unique<LabelControl>(display, *Label2[5]);
    message = std::make_unique<LabelControl>(display, *lbl_MSG);
}

QWidget* WindowControls::header(const QString& version) {
    auto* box = new QWidget;
    auto* row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    Label2[0] = label(QStringLiteral("기초자료 수신"), TitleSize, true);
    Label2[1] = label(version, SmallSize);
    Label2[1]->setForegroundRole(QPalette::PlaceholderText);
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
    auto* row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    for (std::size_t i = 0; i < Check1.size(); ++i) {
        Check1[i] = new QCheckBox(Captions[i]);
        Check1[i]->setChecked(true);
        Check1[i]->setMinimumHeight(TouchHeight - 12);
        Check1[i]->setStyleSheet(QStringLiteral("QCheckBox{spacing:10px}"
                                                "QCheckBox::indicator{width:24px;height:24px}"));
        setTextSize(*Check1[i], TextSize);
        nameIt(*Check1[i], "Check1", i);
        row->addWidget(Check1[i]);
        if (i + 1 < Check1.size())
            row->addStretch(1);
    }
    return box;
}

QWidget* WindowControls::progress() {
    auto* box = new QWidget;
    auto* grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(10);
    grid->setVerticalSpacing(8);
    grid->setColumnStretch(0, 1);

    Label2[2] = label(QStringLiteral("전체"), TextSize);
    Label2[5] = label(QStringLiteral("대기 중"), TextSize);
    for (const std::size_t slash : {3U, 4U})
        Label2[slash] = label(QStringLiteral("/"), TextSize);
    for (std::size_t i = 0; i < Label3.size(); ++i) {
        Label3[i] = label(QStringLiteral("0"), TextSize, i == 1 || i == 3);
        nameIt(*Label3[i], "Label3", i);
    }
    for (std::size_t i = 0; i < Label2.size(); ++i)
        nameIt(*Label2[i], "Label2", i);

    // Each bar under its caption; at the right how many of how many.
    const auto addBar = [&](std::size_t bar, QLabel* caption, QLabel* counter, QLabel* slash,
                            QLabel* total) {
        const int top = static_cast<int>(bar) * 3;
        PBar1[bar] = new FlatProgressBar;
        PBar1[bar]->setMinimumHeight(BarHeight);
        PBar1[bar]->setTextVisible(false);
        PBar1[bar]->setValue(0);
        nameIt(*PBar1[bar], "PBar1", bar);
        grid->addWidget(caption, top, 0);
        grid->addWidget(counter, top, 1, Qt::AlignRight);
        grid->addWidget(slash, top, 2);
        grid->addWidget(total, top, 3, Qt::AlignRight);
        grid->addWidget(PBar1[bar], top + 1, 0, 1, 4);
    };
    addBar(0, Label2[2], Label3[1], Label2[3], Label3[0]);
    addBar(1, Label2[5], Label3[3], Label2[4], Label3[2]);
    grid->setRowMinimumHeight(2, 10); // between the two bars
    PBar1[0]->setAccessibleName(QStringLiteral("전체 진행"));
    PBar1[1]->setAccessibleName(QStringLiteral("항목별 진행"));
    return box;
}

QWidget* WindowControls::buttons() {
    auto* box = new QWidget;
    auto* row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(20);
    Cmd1[0] = new QPushButton(QStringLiteral("수신 시작(&S)"));
    Cmd1[1] = new QPushButton(QStringLiteral("닫기(&C)"));
    row->addStretch(1);
    for (std::size_t i = 0; i < Cmd1.size(); ++i) {
        Cmd1[i]->setMinimumSize(190, TouchHeight);
        setTextSize(*Cmd1[i], TextSize, i == 0);
        nameIt(*Cmd1[i], "Cmd1", i);
        row->addWidget(Cmd1[i]);
    }
    row->addStretch(1);
    return box;
}

} // namespace quillet::app
