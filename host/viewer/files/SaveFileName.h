#pragma once

#include <QList>
#include <QString>

class QWidget;

/// One of the forms a file can be saved in.
struct SkSaveForm {
    QString filter; ///< as file dialogs show it: "PNG (*.png)"
    QString suffix; ///< without a dot
};

/// Asks for the file to save to and for its form; iForm is the one chosen. A name typed without an ending
/// gets that of the form before the dialog looks whether there is such a file and asks whether to replace it.
/// Empty when the user cancels, or when the parent goes while the dialog is open.
QString askSaveFileName(QWidget* pParent, const QString& sTitle, const QString& sFolder,
                        const QList<SkSaveForm>& forms, int& iForm);
