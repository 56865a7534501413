#pragma once

#include <QDialog>

class QMenuBar;

/// Lists every shortcut of the main window's menus, and what the mouse does in a picture. User-interface
/// thread.
class CkShortcutsDialog : public QDialog {
    Q_OBJECT

public:
    explicit CkShortcutsDialog(const QMenuBar* pMenuBar, QWidget* pParent = nullptr);

    /// Pairs of keys and what they do, in the order of the menus.
    static QList<QPair<QString, QString>> collect(const QMenuBar* pMenuBar);
};
