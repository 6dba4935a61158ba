#pragma once

#include <QMessageBox>

namespace quillet::app {

/// Shows a message box of the window's own size of letters and fingers, and waits until it has
/// been answered.
void showMessageBox(QWidget& parent, QMessageBox::Icon icon, const QString& title,
                    const QString& text);

} // namespace quillet::app
