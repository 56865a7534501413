#pragma once

#include <QMessageBox>
#include <QString>
#include <functional>

/// A message box of the plug-in as plain data.
struct SkToFMessage {
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QString title;
    QString text;
    QMessageBox::StandardButtons buttons = QMessageBox::Ok;
    QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
};

/// Shows a message to the user and returns the button pressed. Every box of the plug-in's actions is shown by
/// a function of this type, so that a test can answer in place of the user.
using ToFMessageFunction = std::function<QMessageBox::StandardButton(const SkToFMessage&)>;

/// A modal box on the host's main window; NoButton when the window was deleted while it was open.
/// User-interface thread.
QMessageBox::StandardButton showToFMessage(const SkToFMessage& message);
