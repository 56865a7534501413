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
    m_legendAction = addAction(ToolIcons::legend(pView->palette()), tr("Legend"));
    m_legendAction->setCheckable(true);
    m_legendAction->setChecked(true);
    m_legendAction->setToolTip(tr("Show which values the colours represent (Ctrl+L)"));
    connect(m_legendAction, &QAction::toggled, this, &CkPictureToolBar::legendToggled);
    addAction(ToolIcons::save(pView->palette()), tr("Save"), this, &CkPictureToolBar::saveRequested)
        ->setToolTip(tr("Save the picture to a file (Ctrl+P)"));
}

void CkPictureToolBar::createZoomActions(CkImageCanvas* pCanvas, const QWidget* pView) {
    // No shortcuts: the main window has them, for the active view.
    m_fitAction = addAction(ToolIcons::fit(pView->palette()), tr("Fit"), pCanvas, &CkImageCanvas::zoomToFit);
    m_fitAction->setObjectName(QStringLiteral("toolFit"));
    m_fitAction->setCheckable(true);
    m_fitAction->setChecked(true);
    m_fitAction->setToolTip(tr("Show the whole picture (Ctrl+0, double click on the picture)"));
    QAction* original = addAction(QStringLiteral("1:1"), pCanvas, &CkImageCanvas::zoomToOriginal);
    original->setToolTip(tr("One screen pixel for each picture pixel (Ctrl+/, double click on the picture)"));
    QAction* smaller = addAction(QStringLiteral("\u2212"), pCanvas, &CkImageCanvas::zoomOut);
    smaller->setToolTip(tr("Smaller (Ctrl+-, mouse wheel)"));
    QAction* larger = addAction(QStringLiteral("+"), pCanvas, &CkImageCanvas::zoomIn);
    larger->setToolTip(tr("Larger (Ctrl++, mouse wheel)"));
    m_zoomActions = {m_fitAction, original, smaller, larger};
    m_zoomLabel = new QLabel(this);
    m_zoomLabel->setMinimumWidth(pView->fontMetrics().horizontalAdvance(QStringLiteral(" 6400 % ")));
    addWidget(m_zoomLabel);
    connect(pCanvas, &CkImageCanvas::zoomChanged, this, &CkPictureToolBar::showZoom);
}

void CkPictureToolBar::createChannelBox() {
    m_channelBox = new QComboBox(this);
    m_channelBox->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_channelBox->setEnabled(false);
    m_channelBox->setToolTip(tr("There is no picture yet"));
    addWidget(m_channelBox);
    connect(m_channelBox, &QComboBox::activated, this,
            [this](int iIndex) { emit channelChosen(m_channelBox->itemData(iIndex).toInt()); });
}

void CkPictureToolBar::showZoom(double fZoom, bool bFit) {
    m_fitAction->setChecked(bFit);
    m_zoomLabel->setText(QStringLiteral(" %1 % ").arg(
        PictureText::locale().toString(fZoom * 100.0, 'f', fZoom < 0.1 ? 1 : 0)));
}

void CkPictureToolBar::setChannels(const SkPicBufInfo& info, const CkImageMetadata& metadata, int iChannel) {
    const QSignalBlocker blocker(m_channelBox);
    m_channelBox->clear();
    if (PictureColours::isColourPicture(info)) {
        m_channelBox->addItem(tr("Colour"), -1);
    }
    for (quint32 channel = 0; channel < std::min(info.channels, kListedChannels); ++channel) {
        m_channelBox->addItem(PictureText::channelName(info, metadata, channel), int(channel));
    }
    setChannel(iChannel);
    m_channelBox->setEnabled(m_channelBox->count() > 1);
    m_channelBox->setToolTip(m_channelBox->count() > 1 ? tr("Channel that is shown")
                                                       : tr("This picture has only one channel"));
}

void CkPictureToolBar::setChannel(int iChannel) {
    m_channelBox->setCurrentIndex(m_channelBox->findData(iChannel));
}

int CkPictureToolBar::channelCount() const {
    return m_channelBox->count();
}

int CkPictureToolBar::channelAfter(int iStep) const {
    const int count = m_channelBox->count();
    const int index = count > 1 ? (m_channelBox->currentIndex() + iStep + count) % count : 0;
    return m_channelBox->itemData(index).toInt();
}

QString CkPictureToolBar::channelText() const {
    return m_channelBox->currentText();
}

bool CkPictureToolBar::showsLegend() const {
    return m_legendAction->isChecked();
}

void CkPictureToolBar::setShowsLegend(bool bShow) {
    m_legendAction->setChecked(bShow);
}
