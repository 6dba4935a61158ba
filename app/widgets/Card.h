#pragma once

#include <QStackedWidget>

namespace quillet::app {

/// A raised area of the window that shows one of its pages.
class Card final : public QStackedWidget {
public:
    using QStackedWidget::QStackedWidget;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace quillet::app
