#include "files/SaveFileName.h"

#include <QFileDialog>
#include <QPointer>
#include <algorithm>

QString askSaveFileName(QWidget* pParent, const QString& sTitle, const QString& sFolder,
                        const QList<SkSaveForm>& forms, int& iForm) {
    iForm = 0;
    QStringList filters;
    for (const SkSaveForm& form : forms) {
        filters.append(form.filter);
    }
    // Dies with its parent, which a camera that is unplugged may take away.
    const QPointer<QFileDialog> dialog(new QFileDialog(pParent, sTitle, sFolder));
    dialog->setObjectName(QStringLiteral("saveDialog"));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilters(filters);
    dialog->setDefaultSuffix(forms.first().suffix);
    QObject::connect(
        dialog, &QFileDialog::filterSelected, dialog, [&filters, &forms, dialog](const QString& sFilter) {
            dialog->setDefaultSuffix(forms[std::max<qsizetype>(0, filters.indexOf(sFilter))].suffix);
        });
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (!dialog) {
        return {};
    }
    const QString name = accepted ? dialog->selectedFiles().value(0) : QString();
    iForm = int(std::max<qsizetype>(0, filters.indexOf(dialog->selectedNameFilter())));
    delete dialog;
    return name;
}
