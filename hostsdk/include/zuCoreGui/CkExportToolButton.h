#pragma once

#include "zuCoreGui/zuCoreGuiGlobal.h"

#include <QByteArray>
#include <QToolButton>

/// Tool button with a menu of export targets for the data of a view, and the export functions. User-interface
/// thread.
class ZUCOREGUI_EXPORT CkExportToolButton : public QToolButton {
    Q_OBJECT

public:
    /// Export targets; the numbers are part of the interface.
    enum EkExportType : int {
        Clipboard = 1, ///< text to the clipboard
        File = 8,      ///< text to a file chosen by the user
    };

    explicit CkExportToolButton(QWidget* pParent = nullptr);
    ~CkExportToolButton() override;

    /// Exports a text (UTF-8) unchanged. File: asks for the name, starting in the application's last
    /// directory; the filter's first suffix is added to a name without one. On failure the user is shown the
    /// file name and the reason, and an existing file is unchanged. True when the text was exported; false on
    /// failure or when the user cancelled.
    static bool exportText(const QByteArray& text, int iExportType, QWidget* pParent, const QString& sFilter);

signals:
    /// The user chose a target (EkExportType) in the button's menu.
    void exportRequested(int iExportType);
};
