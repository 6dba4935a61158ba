#pragma once

#include <QScrollBar>

namespace quillet::app {

/// A scroll bar that keeps its room, unseen, where there is nothing to scroll. With one that comes
/// and goes a text can need it in the width beside it and not need it in the whole one, and is laid
/// out anew without end. Its area's policy is to be always on.
class LastingScrollBar final : public QScrollBar {
public:
    using QScrollBar::QScrollBar;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace quillet::app
