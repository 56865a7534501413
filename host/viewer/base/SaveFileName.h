#pragma once

#include <QList>
#include <QString>

class QWidget;

/// One of the forms a file can be saved in.
struct SkSaveForm {
    QString filter; ///< as file dialogs show it: "PNG (*.png)"
    QString suffix; ///< without a dot
    int group =
        0; ///< of several forms with the ending that was typed, one of the chosen form's group is taken
};

/// What a typed ending that is none of the forms' means.
enum class EkSaveEndings {
    Any, ///< it is the user's own affair
    Ours ///< the file could not be what its ending says
};

/// The ending of a file name, lower case and without its dot; empty when what stands behind the last dot is
/// no ending but part of a number or a date, as in "room 1.5".
QString fileEnding(const QString& sFileName);

/// Whether two endings mean the same kind of file, as "jpeg" and "jpg" do.
bool isSameEnding(const QString& sEnding, const QString& sOther);

/// Asks for the file to save to and for its form; iForm is the one chosen. sStart is the folder, or a file
/// that is proposed. A name typed without an ending gets that of the form before the dialog looks whether
/// there is such a file and asks whether to replace it. With EkSaveEndings::Ours a typed ending decides the
/// form; one that is no form's is refused with the endings there are, and the dialog comes back. Empty when
/// the user cancels, or when the parent goes while the dialog is open.
QString askSaveFileName(QWidget* pParent, const QString& sTitle, const QString& sStart,
                        const QList<SkSaveForm>& forms, int& iForm,
                        EkSaveEndings endings = EkSaveEndings::Any,
                        const QString& sObjectName = QStringLiteral("saveDialog"));
