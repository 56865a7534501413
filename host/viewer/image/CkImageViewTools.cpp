// The image view's own tool bar, context menu and files.

#include "files/SaveFileName.h"
#include "image/CkColorLegend.h"
#include "image/CkImageCanvas.h"
#include "image/CkImageView.h"
#include "image/CkPictureFile.h"
#include "image/CkToolIcons.h"
#include "zuCore/CkImageData.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QComboBox>
#include <QContextMenuEvent>
#include <QDir>
#include <QFileInfo>
#include <QImageWriter>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QSaveFile>
#include <QToolBar>
#include <algorithm>

namespace {
// Groups of forms to save in.
constexpr int kAsSeen = 0;
constexpr int kAsMeasured = 1;
} // namespace

void CkImageView::createToolBar() {
    m_pToolBar = new QToolBar(this);
    // Signs where there are some, texts elsewhere.
    m_pToolBar->setToolButtonStyle(Qt::ToolButtonIconOnly);
    m_pToolBar->setIconSize(QSize(16, 16));
    m_pFitAction =
        m_pToolBar->addAction(CkToolIcons::fit(palette()), tr("Fit"), m_pCanvas, &CkImageCanvas::zoomToFit);
    // The main window's menus have the same with shortcuts, for the active view.
    m_pFitAction->setObjectName(QStringLiteral("toolFit"));
    m_pFitAction->setCheckable(true);
    m_pFitAction->setChecked(true);
    m_pFitAction->setToolTip(tr("Show the whole picture (Ctrl+0, double click on the picture)"));
    m_pToolBar->addAction(QStringLiteral("1:1"), m_pCanvas, &CkImageCanvas::zoomToOriginal)
        ->setToolTip(tr("One screen pixel for each picture pixel (Ctrl+/, double click on the picture)"));
    m_pToolBar->addAction(QStringLiteral("\u2212"), m_pCanvas, &CkImageCanvas::zoomOut)
        ->setToolTip(tr("Smaller (Ctrl+-, mouse wheel)"));
    m_pToolBar->addAction(QStringLiteral("+"), m_pCanvas, &CkImageCanvas::zoomIn)
        ->setToolTip(tr("Larger (Ctrl++, mouse wheel)"));
    m_pZoomLabel = new QLabel(m_pToolBar);
    m_pZoomLabel->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral(" 6400 % ")));
    m_pToolBar->addWidget(m_pZoomLabel);
    m_pChannelBox = new QComboBox(m_pToolBar);
    m_pChannelBox->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_pChannelBox->setEnabled(false);
    m_pChannelBox->setToolTip(tr("There is no picture yet"));
    m_pToolBar->addWidget(m_pChannelBox);
    connect(m_pChannelBox, &QComboBox::activated, this,
            [this](int iIndex) { setChannel(m_pChannelBox->itemData(iIndex).toInt()); });
    m_pLegendAction = m_pToolBar->addAction(CkToolIcons::legend(palette()), tr("Legend"));
    m_pLegendAction->setCheckable(true);
    m_pLegendAction->setChecked(true);
    m_pLegendAction->setToolTip(tr("Show what the colours stand for (Ctrl+L)"));
    connect(m_pLegendAction, &QAction::toggled, this,
            [this](bool bOn) { m_pLegend->setVisible(bOn && m_iChannel >= 0); });
    m_pToolBar->addAction(CkToolIcons::save(palette()), tr("Save"), this, &CkImageView::saveWithDialog)
        ->setToolTip(tr("Save the picture to a file (Ctrl+P)"));
}

void CkImageView::contextMenuEvent(QContextMenuEvent* pEvent) {
    QMenu menu(this);
    menu.addActions(m_pToolBar->actions().mid(0, 4));
    menu.addSeparator();
    menu.addAction(m_pLegendAction);
    menu.addSeparator();
    menu.addAction(tr("Save Picture..."), this, &CkImageView::saveWithDialog);
    menu.exec(pEvent->globalPos());
}

bool CkImageView::canSaveAsMeasured() {
    const CkImageData* frame = currentImage();
    return frame != nullptr && frame->picBuf().data != nullptr && m_iChannel >= 0;
}

bool CkImageView::saveAsSeen(const QString& sFileName, QString* psError) {
    QString error;
    const bool ok = writeAsSeen(sFileName, error);
    if (!ok && psError != nullptr) {
        *psError = error;
    }
    return ok;
}

bool CkImageView::writeAsSeen(const QString& sFileName, QString& sError) {
    if (shownImage().isNull()) {
        sError = tr("There is no picture to save.");
        return false;
    }
    const QByteArray ending = fileEnding(sFileName).toLatin1();
    if (!QImageWriter::supportedImageFormats().contains(ending)) {
        sError = tr("%1: the ending says in which format a picture is saved: .png or .jpg.")
                     .arg(QDir::toNativeSeparators(sFileName));
        return false;
    }
    QSaveFile file(sFileName);
    QImageWriter writer(&file, ending);
    if (!file.open(QIODevice::WriteOnly) || !writer.write(m_image) || !file.commit()) {
        const bool byFile = file.error() != QFileDevice::NoError;
        sError = QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(sFileName),
                                              byFile ? file.errorString() : writer.errorString());
        return false;
    }
    return true;
}

bool CkImageView::saveAsMeasured(const QString& sFileName, EkMeasured form, QString* psError) {
    const CkImageData* frame = currentImage();
    QString error = tr("There is no picture to save.");
    bool ok = false;
    if (frame != nullptr && frame->picBuf().data != nullptr && form == EkMeasured::Png16) {
        ok = m_iChannel < 0 ? false
                            : CkPictureFile::savePng16(frame->picBuf(), frame->metadata(),
                                                       quint32(m_iChannel), sFileName, error);
        if (m_iChannel < 0) {
            error = tr("A colour picture has no single channel to save; choose a channel first.");
        }
    } else if (frame != nullptr && frame->picBuf().data != nullptr) {
        const int channel = form == EkMeasured::FloatTiffOfAll ? -1 : m_iChannel;
        ok = CkPictureFile::saveFloatTiff(frame->picBuf(), frame->metadata(), channel, sFileName, error);
    }
    if (!ok && psError != nullptr) {
        *psError = error;
    }
    return ok;
}

void CkImageView::saveWithDialog() {
    if (shownImage().isNull()) {
        return;
    }
    struct SkChoice {
        SkSaveForm file;
        int form; ///< -1 as seen, else EkMeasured
    };
    QList<SkChoice> choices = {{{tr("PNG, as seen (*.png)"), QStringLiteral("png"), kAsSeen}, -1},
                               {{tr("JPEG, as seen (*.jpg)"), QStringLiteral("jpg"), kAsSeen}, -1}};
    const CkImageData* frame = currentImage();
    if (canSaveAsMeasured()) {
        choices.append(
            {{tr("16-bit PNG, as measured, %1 (*.png)")
                  .arg(CkPictureFile::scaleText(frame->picBuf(), frame->metadata(), quint32(m_iChannel))),
              QStringLiteral("png"), kAsMeasured},
             int(EkMeasured::Png16)});
        choices.append(
            {{tr("Float TIFF, as measured, channel \"%1\" (*.tif)").arg(m_pChannelBox->currentText()),
              QStringLiteral("tif"), kAsMeasured},
             int(EkMeasured::FloatTiff)});
    }
    if (frame != nullptr && (frame->picBuf().channels > 1 || !canSaveAsMeasured())) {
        choices.append(
            {{tr("Float TIFF, as measured, all channels (*.tif)"), QStringLiteral("tif"), kAsMeasured},
             int(EkMeasured::FloatTiffOfAll)});
    }
    QList<SkSaveForm> offered;
    for (const SkChoice& choice : choices) {
        offered.append(choice.file);
    }
    IkAppDelegate* delegate = IkAppDelegate::instance();
    // The camera may be unplugged, and the view with it, while the dialog is open.
    const QPointer<CkImageView> self(this);
    int chosen = 0;
    const QString name =
        askSaveFileName(this, tr("Save Picture"), delegate != nullptr ? delegate->lastDirectory() : QString(),
                        offered, chosen, EkSaveEndings::Ours);
    if (!self || name.isEmpty()) {
        return;
    }
    const SkChoice& choice = choices[chosen];
    QString error;
    if (!(choice.form < 0 ? saveAsSeen(name, &error)
                          : saveAsMeasured(name, EkMeasured(choice.form), &error))) {
        QMessageBox::warning(this, tr("Save Picture"), error);
    } else if (delegate != nullptr) {
        delegate->setLastDirectory(QFileInfo(name).absolutePath());
    }
}
