#pragma once

#include <QPushButton>

namespace quillet::app {

/// A button to be found at a glance and pressed with a finger.
class TouchButton final : public QPushButton {
public:
    enum class Rank { First, Second };

    TouchButton(const QString& text, Rank rank);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Rank rank_;
};

} // namespace quillet::app
