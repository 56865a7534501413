#include "host/viewer/base/SaveFileName.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPointer>
#include <QRegularExpression>
#include <algorithm>

namespace {

// The parent, and the box with it, may be deleted while the box is open: closing a camera closes its views.
QMessageBox::StandardButton ask(QWidget* parent, const QString& title, const QString& text,
                                QMessageBox::Icon icon, QMessageBox::StandardButtons buttons) {
    const QPointer<QMessageBox> box(new QMessageBox(icon, title, text, buttons, parent));
    const int answer = box->exec();
    delete box;
    return QMessageBox::StandardButton(answer);
}

int formatFor(const QString& suffix, const QList<SkSaveFormat>& formats, int chosen) {
    if (isSameSuffix(suffix, formats[chosen].suffix)) {
        return chosen;
    }
    int found = -1;
    for (int i = 0; i < formats.size(); ++i) {
        const bool better = found < 0 || (formats[found].group != formats[chosen].group &&
                                          formats[i].group == formats[chosen].group);
        if (isSameSuffix(suffix, formats[i].suffix) && better) {
            found = i;
        }
    }
    return found;
}

QString refusal(const QString& name, const QString& suffix, const QList<SkSaveFormat>& formats) {
    QStringList known;
    for (const SkSaveFormat& format : formats) {
        known.append(QLatin1Char('.') + format.suffix);
    }
    known.removeDuplicates();
    return QCoreApplication::translate(
               "SaveFileName",
               "\"%1\": files with the extension .%2 cannot be written here.\n\nPossible extensions: %3.")
        .arg(QFileInfo(name).fileName(), suffix, known.join(QStringLiteral(", ")));
}

enum class EkAnswer { Accepted, AskAgain };

// Makes the name and the format agree, or tells the user why that is impossible.
EkAnswer resolveFormat(QWidget* parent, const QString& title, const QList<SkSaveFormat>& formats,
                       QString& name, int& chosen) {
    const QString suffix = fileSuffix(name);
    if (!suffix.isEmpty()) {
        const int format = formatFor(suffix, formats, chosen);
        if (format < 0) {
            ask(parent, title, refusal(name, suffix, formats), QMessageBox::Warning, QMessageBox::Ok);
            return EkAnswer::AskAgain;
        }
        chosen = format;
        return EkAnswer::Accepted;
    }
    // The dialog adds no suffix to a name with a dot, and has checked only that name for an existing file.
    name += QLatin1Char('.') + formats[chosen].suffix;
    const QString question =
        QCoreApplication::translate("SaveFileName", "%1 already exists.\nDo you want to replace it?")
            .arg(QFileInfo(name).fileName());
    return !QFileInfo::exists(name) || ask(parent, title, question, QMessageBox::Warning,
                                           QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes
               ? EkAnswer::Accepted
               : EkAnswer::AskAgain;
}

} // namespace

QString fileSuffix(const QString& sFileName) {
    static const QRegularExpression kSuffix(QStringLiteral("\\.([A-Za-z0-9]{0,4}[A-Za-z][A-Za-z0-9]{0,4})$"));
    return kSuffix.match(QFileInfo(sFileName).fileName()).captured(1).toLower();
}

bool isSameSuffix(const QString& sSuffix, const QString& sOther) {
    const auto canonical = [](const QString& suffix) {
        const QString low = suffix.toLower();
        return low == QLatin1String("jpeg")   ? QStringLiteral("jpg")
               : low == QLatin1String("tiff") ? QStringLiteral("tif")
                                              : low;
    };
    return canonical(sSuffix) == canonical(sOther);
}

QString askSaveFileName(QWidget* pParent, const SkSaveRequest& request, int& iFormat) {
    const QList<SkSaveFormat>& formats = request.formats;
    iFormat = 0;
    QStringList filters;
    for (const SkSaveFormat& format : formats) {
        filters.append(format.filter);
    }
    // Deleted with its parent when a camera is closed while the dialog is open.
    const QPointer<QFileDialog> dialog(new QFileDialog(pParent, request.title, request.start));
    dialog->setObjectName(request.objectName);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilters(filters);
    dialog->setDefaultSuffix(formats.first().suffix);
    if (!request.start.isEmpty() && !QFileInfo(request.start).isDir()) {
        dialog->selectFile(QFileInfo(request.start).fileName());
    }
    QObject::connect(
        dialog, &QFileDialog::filterSelected, dialog, [&filters, &formats, dialog](const QString& sFilter) {
            dialog->setDefaultSuffix(formats[std::max<qsizetype>(0, filters.indexOf(sFilter))].suffix);
        });
    QString name;
    while (dialog->exec() == QDialog::Accepted && dialog) {
        name = dialog->selectedFiles().value(0);
        iFormat = int(std::max<qsizetype>(0, filters.indexOf(dialog->selectedNameFilter())));
        if (request.unknownSuffix == EkUnknownSuffix::Accept || name.isEmpty() ||
            resolveFormat(dialog, request.title, formats, name, iFormat) == EkAnswer::Accepted) {
            break;
        }
        if (!dialog) {
            return {};
        }
        dialog->selectFile(QFileInfo(name).fileName());
        name.clear();
    }
    if (!dialog) {
        return {};
    }
    delete dialog;
    return name;
}
