#include "plugins/zplToF/view3d/ToFSceneFiles.h"

#include "plugins/zplToF/cloud/ToFPlyText.h"
#include "zuCoreGui/CkExportToolButton.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QImage>
#include <QPointer>
#include <QSaveFile>
#include <QString>

namespace {

const QString kImageFilters = QStringLiteral("PNG (*.png);;JPEG (*.jpg);;BMP Bitmaps (*.bmp)");

// "JPEG (*.jpg)" gives "jpg".
QString suffixOf(const QString& nameFilter) {
    return nameFilter.section(QLatin1String("*."), 1).section(QLatin1Char(')'), 0, 0);
}

// In place of QFileDialog::getSaveFileName, which crashes when its parent is deleted while it is open. A name
// without an extension gets that of the chosen filter, as the extension decides the format.
QString chooseFile(QWidget* parent, const QString& title, const QString& directory, const QString& filters) {
    const QPointer<QFileDialog> dialog = new QFileDialog(parent, title, directory, filters);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(suffixOf(dialog->selectedNameFilter()));
    QObject::connect(dialog, &QFileDialog::filterSelected, dialog,
                     [dialog](const QString& filter) { dialog->setDefaultSuffix(suffixOf(filter)); });
    const bool accepted = dialog->exec() == QDialog::Accepted;
    QString name = accepted && dialog ? dialog->selectedFiles().value(0) : QString();
    delete dialog;
    return name;
}

QString problemOf(const QImage& image, const QString& name) {
    return image.isNull() ? QStringLiteral("nothing was captured, \"%1\" is not written").arg(name)
                          : QStringLiteral("\"%1\" could not be written; choose a folder that can be "
                                           "written to, and an extension of .png, .jpg or .bmp")
                                .arg(name);
}

} // namespace

bool ToFSceneFiles::saveImage(const QImage& image, const QString& sFileName) {
    QSaveFile file(sFileName);
    const QByteArray format = QFileInfo(sFileName).suffix().toLatin1();
    return !image.isNull() && file.open(QIODevice::WriteOnly) && image.save(&file, format.constData()) &&
           file.commit();
}

QString ToFSceneFiles::saveImageAs(const QImage& image, QWidget* pParent, const QString& sTitle) {
    IkAppDelegate* host = IkAppDelegate::instance();
    const QString directory = host != nullptr ? host->lastDirectory() : QString();
    const QString name = chooseFile(pParent, sTitle, directory, kImageFilters);
    if (name.isEmpty()) {
        return {};
    }
    const bool saved = saveImage(image, name);
    if (host != nullptr) {
        host->setLastDirectory(QFileInfo(name).absolutePath());
    }
    return saved ? QString() : problemOf(image, name);
}

bool ToFSceneFiles::savePly(std::span<const SkToFPoint> points, const QString& sFileName) {
    const QByteArray text = buildPlyText(points);
    QSaveFile file(sFileName);
    return !points.empty() && !text.isEmpty() && file.open(QIODevice::WriteOnly) &&
           file.write(text) == text.size() && file.commit();
}

QString ToFSceneFiles::exportPly(std::span<const SkToFPoint> points, QWidget* pParent) {
    const QByteArray text = buildPlyText(points);
    if (text.isEmpty()) {
        return QStringLiteral("not enough memory for the text of %1 points").arg(points.size());
    }
    CkExportToolButton::exportText(text, CkExportToolButton::File, pParent, QStringLiteral("PLY (*.ply)"));
    return {};
}
