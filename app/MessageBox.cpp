#include "app/MessageBox.h"

#include <QAbstractButton>

namespace quillet::app {

void showMessageBox(QWidget& parent, QMessageBox::Icon icon, const QString& title,
                    const QString& text) {
    QMessageBox box(icon, title, text, QMessageBox::Ok, &parent);
    QFont font = parent.font();
    font.setPixelSize(22);
    box.setFont(font);
    QAbstractButton* ok = box.button(QMessageBox::Ok);
    ok->setIcon(QIcon());
    ok->setText(QStringLiteral("확인"));
    ok->setMinimumSize(140, 56);
    box.exec();
}

} // namespace quillet::app
