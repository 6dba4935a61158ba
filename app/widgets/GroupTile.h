#pragma once

#include <QCheckBox>

namespace quillet::app {

/// A check box as large as a finger: all of it can be pressed.
class GroupTile final : public QCheckBox {
public:
    using QCheckBox::QCheckBox;

    QSize sizeHint() const override;

protected:
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    void paintEvent(QPaintEvent* event) override;
};

} // namespace quillet::app
