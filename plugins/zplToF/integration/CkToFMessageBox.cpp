#include "integration/CkToFMessageBox.h"

#include "zuCoreGui/IkAppDelegate.h"

QMessageBox::StandardButton showToFMessage(const SkToFMessage& message) {
    IkAppDelegate* host = IkAppDelegate::instance();
    QMessageBox box(message.icon, message.title, message.text, message.buttons,
                    host != nullptr ? host->mainWindow() : nullptr);
    box.setWindowModality(Qt::ApplicationModal);
    if (message.defaultButton != QMessageBox::NoButton) {
        box.setDefaultButton(message.defaultButton);
    }
    return QMessageBox::StandardButton(box.exec());
}
