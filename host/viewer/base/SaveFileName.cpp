#include "host/viewer/base/SaveFileName.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPointer>
#include <QRegularExpression>
#include <algorithm>

namespace {

// The box is destroyed with its parent, which goes with an unplugged camera.
QMessageBox::StandardButton ask(QWidget* parent, const QString& title, const QString& text,
                                QMessageBox::Icon icon, QMessageBox::StandardButtons buttons) {
    const QPointer<QMessageBox> box(new QMessageBox(icon, title, text, buttons, parent));
    const int answer = box->exec();
    delete box;
    return QMessageBox::StandardButton(answer);
}

int formFor(const QString& ending, const QList<SkSaveForm>& forms, int chosen) {
    if (isSameEnding(ending, forms[chosen].suffix)) {
        return chosen;
    }
    int found = -1;
    for (int i = 0; i < forms.size(); ++i) {
        const bool better =
            found < 0 || (forms[found].group != forms[chosen].group && forms[i].group == forms[chosen].group);
        if (isSameEnding(ending, forms[i].suffix) && better) {
            found = i;
        }
    }
    return found;
}

QString refusal(const QString& name, const QString& ending, const QList<SkSaveForm>& forms) {
    QStringList known;
    for (const SkSaveForm& form : forms) {
        known.append(QLatin1Char('.') + form.suffix);
    }
    known.removeDuplicates();
    return QCoreApplication::translate(
               "SaveFileName", "\"%1\": nothing is written here that ends in .%2.\n\nThese endings can be "
                               "written: %3.")
        .arg(QFileInfo(name).fileName(), ending, known.join(QStringLiteral(", ")));
}

enum class EkVerdict { Good, Again };

// Makes name and format agree, or tells the user why that is impossible.
EkVerdict settle(QWidget* parent, const QString& title, const QList<SkSaveForm>& forms, QString& name,
                 int& chosen) {
    const QString ending = fileEnding(name);
    if (!ending.isEmpty()) {
        const int form = formFor(ending, forms, chosen);
        if (form < 0) {
            ask(parent, title, refusal(name, ending, forms), QMessageBox::Warning, QMessageBox::Ok);
            return EkVerdict::Again;
        }
        chosen = form;
        return EkVerdict::Good;
    }
    // The dialog adds no ending to a name with a dot, and has checked only that name for an existing file.
    name += QLatin1Char('.') + forms[chosen].suffix;
    const QString question =
        QCoreApplication::translate("SaveFileName", "%1 already exists.\nDo you want to replace it?")
            .arg(QFileInfo(name).fileName());
    return !QFileInfo::exists(name) || ask(parent, title, question, QMessageBox::Warning,
                                           QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes
               ? EkVerdict::Good
               : EkVerdict::Again;
}

} // namespace

QString fileEnding(const QString& sFileName) {
    static const QRegularExpression kEnding(QStringLiteral("\\.([A-Za-z0-9]{0,4}[A-Za-z][A-Za-z0-9]{0,4})$"));
    return kEnding.match(QFileInfo(sFileName).fileName()).captured(1).toLower();
}

bool isSameEnding(const QString& sEnding, const QString& sOther) {
    const auto usual = [](const QString& ending) {
        const QString low = ending.toLower();
        return low == QLatin1String("jpeg")   ? QStringLiteral("jpg")
               : low == QLatin1String("tiff") ? QStringLiteral("tif")
                                              : low;
    };
    return usual(sEnding) == usual(sOther);
}

QString askSaveFileName(QWidget* pParent, const SkSaveRequest& request, int& iForm) {
    const QList<SkSaveForm>& forms = request.forms;
    iForm = 0;
    QStringList filters;
    for (const SkSaveForm& form : forms) {
        filters.append(form.filter);
    }
    // Destroyed with its parent, which goes with an unplugged camera.
    const QPointer<QFileDialog> dialog(new QFileDialog(pParent, request.title, request.start));
    dialog->setObjectName(request.objectName);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilters(filters);
    dialog->setDefaultSuffix(forms.first().suffix);
    if (!request.start.isEmpty() && !QFileInfo(request.start).isDir()) {
        dialog->selectFile(QFileInfo(request.start).fileName());
    }
    QObject::connect(
        dialog, &QFileDialog::filterSelected, dialog, [&filters, &forms, dialog](const QString& sFilter) {
            dialog->setDefaultSuffix(forms[std::max<qsizetype>(0, filters.indexOf(sFilter))].suffix);
        });
    QString name;
    while (dialog->exec() == QDialog::Accepted && dialog) {
        name = dialog->selectedFiles().value(0);
        iForm = int(std::max<qsizetype>(0, filters.indexOf(dialog->selectedNameFilter())));
        if (request.endings == EkSaveEndings::Any || name.isEmpty() ||
            settle(dialog, request.title, forms, name, iForm) == EkVerdict::Good) {
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
