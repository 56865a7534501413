#pragma once

#include <QList>
#include <QString>

class QWidget;

/// One of the formats a file can be saved in.
struct SkSaveForm {
    QString filter; ///< as file dialogs show it: "PNG (*.png)"
    QString suffix; ///< without a dot
    /// Among several formats with the typed ending, one in the chosen format's group is preferred.
    int group = 0;
};

/// What happens to a typed ending that belongs to no format.
enum class EkSaveEndings {
    Any, ///< the name is used as typed
    Ours ///< refused, because the content would not match the ending
};

/// What a save dialog offers.
struct SkSaveRequest {
    QString title; ///< of the dialog
    QString start; ///< the folder to begin in, or a proposed file; empty: the current folder
    QList<SkSaveForm> forms;
    EkSaveEndings endings = EkSaveEndings::Any;
    QString objectName = QStringLiteral("saveDialog"); ///< of the dialog
};

/// The ending of a file name, lower case and without its dot; empty when what follows the last dot is part of
/// a number or a date, as in "room 1.5".
QString fileEnding(const QString& sFileName);

/// Whether two endings mean the same kind of file, as "jpeg" and "jpg" do.
bool isSameEnding(const QString& sEnding, const QString& sOther);

/// Asks for the file to save to and for its format; iForm is the index of the chosen one. A name typed
/// without an ending gets that of the format, before the dialog asks whether an existing file is to be
/// replaced. With EkSaveEndings::Ours a typed ending decides the format; an unknown one is refused with a
/// list of the known ones, and the dialog opens again. Empty when the user cancels, or when the parent is
/// destroyed while the dialog is open.
QString askSaveFileName(QWidget* pParent, const SkSaveRequest& request, int& iForm);
