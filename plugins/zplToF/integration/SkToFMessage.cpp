#include "plugins/zplToF/integration/SkToFMessage.h"

#include "zuCoreGui/IkAppDelegate.h"

#include <QPointer>

QMessageBox::StandardButton showToFMessage(const SkToFMessage& message) {
    IkAppDelegate* host = IkAppDelegate::instance();
    // The main window may be deleted while the box is open, together with the box.
    const QPointer<QMessageBox> box(new QMessageBox(message.icon, message.title, message.text,
                                                    message.buttons,
                                                    host != nullptr ? host->mainWindow() : nullptr));
    box->setWindowModality(Qt::ApplicationModal);
    if (message.defaultButton != QMessageBox::NoButton) {
        box->setDefaultButton(message.defaultButton);
    }
    const int pressed = box->exec();
    if (!box) {
        return QMessageBox::NoButton;
    }
    delete box;
    return QMessageBox::StandardButton(pressed);
}
