#include "host/viewer/picture/CkPictureToolBar.h"

#include "host/viewer/picture/CkImageCanvas.h"
#include "host/viewer/picture/PictureColours.h"
#include "host/viewer/picture/PictureText.h"
#include "host/viewer/picture/ToolIcons.h"

#include <QComboBox>
#include <QLabel>
#include <QSignalBlocker>
#include <algorithm>

namespace {

// A longer list would be unusable; the values of further channels can still be read under the mouse.
constexpr quint32 kListedChannels = 32;

} // namespace

CkPictureToolBar::CkPictureToolBar(CkImageCanvas* pCanvas, QWidget* pView) : QToolBar(pView) {
    // Applies to actions with an icon; the others show their text.
    setToolButtonStyle(Qt::ToolButtonIconOnly);
    setIconSize(QSize(16, 16));
    createZoomActions(pCanvas, pView);
    createChannelBox();
    m_pLegendAction = addAction(ToolIcons::legend(pView->palette()), tr("Legend"));
    m_pLegendAction->setCheckable(true);
    m_pLegendAction->setChecked(true);
    m_pLegendAction->setToolTip(tr("Show what the colours stand for (Ctrl+L)"));
    connect(m_pLegendAction, &QAction::toggled, this, &CkPictureToolBar::legendToggled);
    addAction(ToolIcons::save(pView->palette()), tr("Save"), this, &CkPictureToolBar::saveRequested)
        ->setToolTip(tr("Save the picture to a file (Ctrl+P)"));
}

void CkPictureToolBar::createZoomActions(CkImageCanvas* pCanvas, const QWidget* pView) {
    // No shortcuts: the main window has them, for the active view.
    m_pFitAction = addAction(ToolIcons::fit(pView->palette()), tr("Fit"), pCanvas, &CkImageCanvas::zoomToFit);
    m_pFitAction->setObjectName(QStringLiteral("toolFit"));
    m_pFitAction->setCheckable(true);
    m_pFitAction->setChecked(true);
    m_pFitAction->setToolTip(tr("Show the whole picture (Ctrl+0, double click on the picture)"));
    QAction* original = addAction(QStringLiteral("1:1"), pCanvas, &CkImageCanvas::zoomToOriginal);
    original->setToolTip(tr("One screen pixel for each picture pixel (Ctrl+/, double click on the picture)"));
    QAction* smaller = addAction(QStringLiteral("\u2212"), pCanvas, &CkImageCanvas::zoomOut);
    smaller->setToolTip(tr("Smaller (Ctrl+-, mouse wheel)"));
    QAction* larger = addAction(QStringLiteral("+"), pCanvas, &CkImageCanvas::zoomIn);
    larger->setToolTip(tr("Larger (Ctrl++, mouse wheel)"));
    m_zoomActions = {m_pFitAction, original, smaller, larger};
    m_pZoomLabel = new QLabel(this);
    m_pZoomLabel->setMinimumWidth(pView->fontMetrics().horizontalAdvance(QStringLiteral(" 6400 % ")));
    addWidget(m_pZoomLabel);
    connect(pCanvas, &CkImageCanvas::zoomChanged, this, &CkPictureToolBar::showZoom);
}

void CkPictureToolBar::createChannelBox() {
    m_pChannelBox = new QComboBox(this);
    m_pChannelBox->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_pChannelBox->setEnabled(false);
    m_pChannelBox->setToolTip(tr("There is no picture yet"));
    addWidget(m_pChannelBox);
    connect(m_pChannelBox, &QComboBox::activated, this,
            [this](int iIndex) { emit channelChosen(m_pChannelBox->itemData(iIndex).toInt()); });
}

void CkPictureToolBar::showZoom(double fZoom, bool bFit) {
    m_pFitAction->setChecked(bFit);
    m_pZoomLabel->setText(QStringLiteral(" %1 % ").arg(
        PictureText::locale().toString(fZoom * 100.0, 'f', fZoom < 0.1 ? 1 : 0)));
}

void CkPictureToolBar::setChannels(const SkPicBufInfo& info, const CkImageMetadata& metadata, int iChannel) {
    const QSignalBlocker blocker(m_pChannelBox);
    m_pChannelBox->clear();
    if (PictureColours::isColourPicture(info)) {
        m_pChannelBox->addItem(tr("Colour"), -1);
    }
    for (quint32 channel = 0; channel < std::min(info.channels, kListedChannels); ++channel) {
        m_pChannelBox->addItem(PictureText::channelName(info, metadata, channel), int(channel));
    }
    setChannel(iChannel);
    m_pChannelBox->setEnabled(m_pChannelBox->count() > 1);
    m_pChannelBox->setToolTip(m_pChannelBox->count() > 1 ? tr("Channel that is shown")
                                                         : tr("This picture has only one channel"));
}

void CkPictureToolBar::setChannel(int iChannel) {
    m_pChannelBox->setCurrentIndex(m_pChannelBox->findData(iChannel));
}

int CkPictureToolBar::channelCount() const {
    return m_pChannelBox->count();
}

int CkPictureToolBar::channelAfter(int iStep) const {
    const int count = m_pChannelBox->count();
    const int index = count > 1 ? (m_pChannelBox->currentIndex() + iStep + count) % count : 0;
    return m_pChannelBox->itemData(index).toInt();
}

QString CkPictureToolBar::channelText() const {
    return m_pChannelBox->currentText();
}

bool CkPictureToolBar::showsLegend() const {
    return m_pLegendAction->isChecked();
}

void CkPictureToolBar::setShowsLegend(bool bShow) {
    m_pLegendAction->setChecked(bShow);
}
