#pragma once

#include "zuCoreGui/zuCoreGuiGlobal.h"

#include <QByteArray>
#include <QToolButton>

/// Tool button with a menu of ways to export the data of a view, and the functions that do it.
/// User-interface thread.
class ZUCOREGUI_EXPORT CkExportToolButton : public QToolButton {
    Q_OBJECT

public:
    /// Ways of exporting; the numbers are part of the interface.
    enum EkExportType : int {
        Clipboard = 1, ///< text to the clipboard
        File = 8,      ///< text to a file the user names
    };

    explicit CkExportToolButton(QWidget* pParent = nullptr);
    ~CkExportToolButton() override;

    /// Exports a finished text (UTF-8), written as it is. File: asks for the name, starting in the
    /// application's last directory; the filter's first suffix is added to a name without one. A failure is
    /// shown to the user with the file's name and the reason, and leaves a file that was there before
    /// untouched. True when the text was exported; false on failure or when the user cancelled.
    static bool exportText(const QByteArray& text, int iExportType, QWidget* pParent, const QString& sFilter);

signals:
    /// The user chose a way (EkExportType) in the button's menu.
    void exportRequested(int iExportType);
};
