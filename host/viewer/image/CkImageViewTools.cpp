// The image view's own tool bar, context menu and files.

#include "image/CkColorLegend.h"
#include "image/CkImageCanvas.h"
#include "image/CkImageView.h"
#include "image/CkPictureText.h"
#include "zuCore/CkImageData.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QComboBox>
#include <QContextMenuEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QImageWriter>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QToolBar>
#include <algorithm>

void CkImageView::createToolBar() {
    m_pToolBar = new QToolBar(this);
    m_pToolBar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    m_pFitAction = m_pToolBar->addAction(tr("Fit"), m_pCanvas, &CkImageCanvas::zoomToFit);
    m_pFitAction->setCheckable(true);
    m_pFitAction->setChecked(true);
    m_pFitAction->setToolTip(tr("Show the whole picture (double click on the picture)"));
    m_pToolBar->addAction(QStringLiteral("1:1"), m_pCanvas, &CkImageCanvas::zoomToOriginal)
        ->setToolTip(tr("One screen pixel for each picture pixel (double click on the picture)"));
    m_pToolBar->addAction(QStringLiteral("\u2212"), m_pCanvas, &CkImageCanvas::zoomOut)
        ->setToolTip(tr("Smaller (mouse wheel)"));
    m_pToolBar->addAction(QStringLiteral("+"), m_pCanvas, &CkImageCanvas::zoomIn)
        ->setToolTip(tr("Larger (mouse wheel)"));
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
    m_pLegendAction = m_pToolBar->addAction(tr("Legend"));
    m_pLegendAction->setCheckable(true);
    m_pLegendAction->setChecked(true);
    m_pLegendAction->setToolTip(tr("Show what the colours stand for"));
    connect(m_pLegendAction, &QAction::toggled, this,
            [this](bool bOn) { m_pLegend->setVisible(bOn && m_iChannel >= 0); });
    m_pToolBar->addAction(tr("Save"), this, &CkImageView::saveWithDialog)
        ->setToolTip(tr("Save the picture to a file"));
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
    if (frame == nullptr || m_iChannel < 0) {
        return false;
    }
    const EkImageDataType type = frame->picBuf().dataType;
    return type == EkImageDataType::UInt8 || type == EkImageDataType::UInt16;
}

bool CkImageView::saveAsSeen(const QString& sFileName, QString* psError) {
    QImageWriter writer(sFileName);
    const bool ok = !shownImage().isNull() && writer.write(m_image);
    if (!ok && psError != nullptr) {
        *psError = m_image.isNull() ? tr("There is no picture to save.")
                                    : tr("%1: %2").arg(sFileName, writer.errorString());
    }
    return ok;
}

bool CkImageView::saveAsMeasured(const QString& sFileName, QString* psError) {
    if (!canSaveAsMeasured()) {
        if (psError != nullptr) {
            *psError = tr("Only integer pictures of up to 16 bits without a sign can be saved as measured.");
        }
        return false;
    }
    const SkPicBuf& picture = currentImage()->picBuf();
    QImage grey(int(picture.width), int(picture.height), QImage::Format_Grayscale16);
    for (int y = 0; y < grey.height(); ++y) {
        auto* line = reinterpret_cast<quint16*>(grey.scanLine(y));
        for (int x = 0; x < grey.width(); ++x) {
            line[x] =
                quint16(CkDisplayTable::sampleValue(picture, quint32(x), quint32(y), quint32(m_iChannel)));
        }
    }
    QImageWriter writer(sFileName, "png");
    const bool ok = writer.write(grey);
    if (!ok && psError != nullptr) {
        *psError = tr("%1: %2").arg(sFileName, writer.errorString());
    }
    return ok;
}

void CkImageView::saveWithDialog() {
    if (shownImage().isNull()) {
        return;
    }
    IkAppDelegate* delegate = IkAppDelegate::instance();
    const QString folder = delegate != nullptr ? delegate->lastDirectory() : QString();
    const QString measured = tr("16-bit PNG, as measured (*.png)");
    QString filters = tr("PNG, as seen (*.png);;JPEG, as seen (*.jpg)");
    if (canSaveAsMeasured()) {
        filters += QStringLiteral(";;") + measured;
    }
    QString filter;
    QString name = QFileDialog::getSaveFileName(this, tr("Save Picture"), folder, filters, &filter);
    if (name.isEmpty()) {
        return;
    }
    if (QFileInfo(name).suffix().isEmpty()) {
        name += filter.contains(QLatin1String("jpg")) ? QStringLiteral(".jpg") : QStringLiteral(".png");
    }
    QString error;
    if (!(filter == measured ? saveAsMeasured(name, &error) : saveAsSeen(name, &error))) {
        QMessageBox::warning(this, tr("Save Picture"), error);
    } else if (delegate != nullptr) {
        delegate->setLastDirectory(QFileInfo(name).absolutePath());
    }
}
