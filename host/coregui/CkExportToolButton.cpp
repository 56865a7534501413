#include "zuCoreGui/CkExportToolButton.h"

#include "zuCoreGui/IkAppDelegate.h"

#include <QClipboard>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QRegularExpression>
#include <QSaveFile>

namespace {
// "Point cloud (*.ply *.txt);;All files (*)" gives "ply".
QString firstSuffix(const QString& sFilter) {
    static const QRegularExpression kPattern(QStringLiteral("\\*\\.([A-Za-z0-9_.]+)"));
    return kPattern.match(sFilter).captured(1);
}

// Both dialogs are on the heap: the parent may be closed, and delete them, while they are open.
QString askForFile(QWidget* pParent, const QString& sFilter) {
    IkAppDelegate* delegate = IkAppDelegate::instance();
    const QPointer<QFileDialog> dialog(new QFileDialog(pParent, CkExportToolButton::tr("Export")));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setNameFilters(sFilter.split(QStringLiteral(";;"), Qt::SkipEmptyParts));
    // Set on the dialog, so that it asks before it overwrites an existing file with the suffix.
    dialog->setDefaultSuffix(firstSuffix(sFilter));
    if (delegate != nullptr && !delegate->lastDirectory().isEmpty()) {
        dialog->setDirectory(delegate->lastDirectory());
    }
    const bool bAccepted = dialog->exec() == QDialog::Accepted;
    QString sFile = dialog && bAccepted ? dialog->selectedFiles().value(0) : QString();
    delete dialog;
    if (!sFile.isEmpty() && IkAppDelegate::instance() != nullptr) {
        IkAppDelegate::instance()->setLastDirectory(QFileInfo(sFile).absolutePath());
    }
    return sFile;
}

void showError(QWidget* pParent, const QString& sText) {
    const QPointer<QMessageBox> box(new QMessageBox(QMessageBox::Critical, CkExportToolButton::tr("Error"),
                                                    sText, QMessageBox::Ok, pParent));
    box->exec();
    delete box;
}
} // namespace

CkExportToolButton::CkExportToolButton(QWidget* pParent) : QToolButton(pParent) {
    setText(tr("Export"));
    setPopupMode(QToolButton::InstantPopup);
    auto* menu = new QMenu(this);
    connect(menu->addAction(tr("Copy to clipboard")), &QAction::triggered, this,
            [this] { emit exportRequested(Clipboard); });
    connect(menu->addAction(tr("Save to file...")), &QAction::triggered, this,
            [this] { emit exportRequested(File); });
    setMenu(menu);
}

CkExportToolButton::~CkExportToolButton() = default;

bool CkExportToolButton::exportText(const QByteArray& text, int iExportType, QWidget* pParent,
                                    const QString& sFilter) {
    if (iExportType == Clipboard) {
        QGuiApplication::clipboard()->setText(QString::fromUtf8(text));
        return true;
    }
    if (iExportType != File) {
        return false;
    }
    const QPointer<QWidget> parent(pParent);
    const QString sFile = askForFile(pParent, sFilter);
    if (sFile.isEmpty()) {
        return false;
    }
    QSaveFile file(sFile);
    if (file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit()) {
        return true;
    }
    showError(parent, tr("The file \"%1\" could not be written.\n%2")
                          .arg(QDir::toNativeSeparators(sFile), file.errorString()));
    return false;
}
