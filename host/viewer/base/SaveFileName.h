#pragma once

#include <QList>
#include <QString>

class QWidget;

/// One of the formats a file can be saved in.
struct SkSaveFormat {
    QString filter; ///< as file dialogs show it: "PNG (*.png)"
    QString suffix; ///< without a dot
    /// Among several formats with the typed suffix, one in the chosen format's group is preferred.
    int group = 0;
};

/// What happens to a typed suffix that belongs to no format.
enum class EkUnknownSuffix {
    Accept, ///< the name is used as typed
    Refuse  ///< because the content would not match the suffix
};

/// What a save dialog offers.
struct SkSaveRequest {
    QString title; ///< of the dialog
    QString start; ///< the folder to begin in, or a proposed file; empty: the current folder
    QList<SkSaveFormat> formats;
    EkUnknownSuffix unknownSuffix = EkUnknownSuffix::Accept;
    QString objectName = QStringLiteral("saveDialog"); ///< of the dialog
};

/// The suffix of a file name, lower case and without its dot; empty when what follows the last dot is part of
/// a number or a date, as in "room 1.5".
QString fileSuffix(const QString& sFileName);

/// Whether two suffixes mean the same kind of file, as "jpeg" and "jpg" do.
bool isSameSuffix(const QString& sSuffix, const QString& sOther);

/// Asks for the file to save to and for its format; iFormat is the index of the chosen one. A name typed
/// without a suffix gets that of the format, before the dialog asks whether an existing file is to be
/// replaced. With EkUnknownSuffix::Refuse a typed suffix decides the format; an unknown one is refused with a
/// list of the known ones, and the dialog opens again. Empty when the user cancels, or when the parent is
/// destroyed while the dialog is open.
QString askSaveFileName(QWidget* pParent, const SkSaveRequest& request, int& iFormat);
