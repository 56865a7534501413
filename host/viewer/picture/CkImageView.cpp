#include "host/viewer/picture/CkImageView.h"

#include "host/viewer/picture/CkColorLegend.h"
#include "host/viewer/picture/CkImageCanvas.h"
#include "host/viewer/picture/PictureText.h"
#include "host/viewer/picture/Saturation.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkImageProvider.h"
#include "zuCore/CkLut.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QToolBar>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// The share of pixels at each end that automatic contrast of integer pictures leaves out: hot and dead
// pixels.
constexpr double kTail = 0.005;

bool isFloat(const SkPicBufInfo& info) {
    return info.dataType == EkImageDataType::Float32 || info.dataType == EkImageDataType::Float64;
}

bool sameFormat(const SkPicBufInfo& a, const SkPicBufInfo& b) {
    return a.channels == b.channels && a.bitsPerChannel == b.bitsPerChannel && a.dataType == b.dataType &&
           a.colorFilterArray == b.colorFilterArray;
}

} // namespace

CkImageView::CkImageView(CkChainable* pProvider) : CkMdiView(pProvider) {
    setFocusPolicy(Qt::StrongFocus);
    m_pCanvas = new CkImageCanvas(this);
    setFocusProxy(m_pCanvas);
    m_pLegend = new CkColorLegend(this);
    createToolBar();

    auto* picture = new QHBoxLayout;
    picture->setContentsMargins(0, 0, 0, 0);
    picture->setSpacing(0);
    picture->addWidget(m_pCanvas, 1);
    picture->addWidget(m_pLegend);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_pToolBar);
    layout->addLayout(picture, 1);

    m_pCanvas->setEmptyText(tr("No picture yet. Start the camera to see one."));
    m_pCanvas->setImageFunction([this]() -> const QImage* {
        const QImage& image = shownImage();
        return image.isNull() ? nullptr : &image;
    });
    connect(m_pCanvas, &CkImageCanvas::pixelHovered, this, &CkImageView::hoverPixel);
    connect(m_pCanvas, &CkImageCanvas::pixelLeft, this, [this] {
        m_hovered = QPoint(-1, -1);
        emit pixelTextChanged(QString());
    });
    connect(m_pCanvas, &CkImageCanvas::zoomChanged, this, [this](double fZoom, bool bFit) {
        m_pFitAction->setChecked(bFit);
        m_pZoomLabel->setText(QStringLiteral(" %1 % ").arg(
            PictureText::locale().toString(fZoom * 100.0, 'f', fZoom < 0.1 ? 1 : 0)));
    });

    CkMdiView::setViewLut(new CkLut(8, 1, false, EkImageDataType::UInt8), true, false, false);
    refreshColours();
}

CkImageView::~CkImageView() = default;

QString CkImageView::viewTitle() const {
    const QString title = CkMdiView::viewTitle();
    return title.isEmpty() ? tr("Picture") : title;
}

QSize CkImageView::sizeHint() const {
    const QSize picture = m_pCanvas->pictureSize();
    const QSize canvas = picture.isEmpty() ? QSize(400, 300) : picture.scaled(400, 400, Qt::KeepAspectRatio);
    return {canvas.width() + m_pLegend->sizeHint().width(),
            canvas.height() + m_pToolBar->sizeHint().height()};
}

CkMdiView* CkImageView::clone(CkChainable* pProvider, CkChainable*) {
    IkAppDelegate* delegate = IkAppDelegate::instance();
    if (delegate == nullptr || qobject_cast<CkImageProvider*>(pProvider) == nullptr) {
        return nullptr;
    }
    auto* view = new CkImageView(pProvider);
    delegate->addMdiView(view);
    return view;
}

void CkImageView::setViewLut(CkLut* pLut, bool bFlag1, bool bFlag2, bool bUpdate) {
    CkMdiView::setViewLut(pLut, bFlag1, bFlag2, bUpdate);
    refreshColours();
    if (bUpdate) {
        refresh();
    }
}

bool CkImageView::autoContrast() const {
    bool automatic = false;
    const_cast<CkImageView*>(this)->viewLut(&automatic, nullptr, nullptr);
    return automatic;
}

void CkImageView::setAutoContrast(bool bAuto) {
    bool saturation = false;
    CkLut* lut = viewLut(nullptr, &saturation, nullptr);
    setViewLut(lut, bAuto, saturation, true);
    emit contrastChanged();
}

void CkImageView::setFullRange() {
    if (const CkImageData* frame = currentImage()) {
        setWindow(isFloat(frame->picBuf()) ? SkDisplayWindow{m_statistics.minimum, m_statistics.maximum}
                                           : PictureColours::fullRange(frame->picBuf()));
    }
}

bool CkImageView::marksSaturated() const {
    bool saturation = false;
    const_cast<CkImageView*>(this)->viewLut(nullptr, &saturation, nullptr);
    return saturation;
}

void CkImageView::setMarksSaturated(bool bMark) {
    bool automatic = false;
    CkLut* lut = viewLut(&automatic, nullptr, nullptr);
    setViewLut(lut, automatic, bMark, true);
    emit contrastChanged();
}

QString CkImageView::saturationReason() const {
    const CkImageData* frame = const_cast<CkImageView*>(this)->currentImage();
    return frame != nullptr
               ? Saturation::reason(Saturation::evidence(frame->picBuf(), frame->metadata(), dataProvider()))
               : QString();
}

bool CkImageView::hasPicture() const {
    const CkImageData* frame = const_cast<CkImageView*>(this)->currentImage();
    return frame != nullptr && frame->picBuf().data != nullptr;
}

void CkImageView::setStale(bool bStale) {
    m_pCanvas->setDimmed(bStale);
}

void CkImageView::setEmptyText(const QString& sText) {
    if (!hasPicture()) {
        m_pCanvas->setEmptyText(sText);
    }
}

double CkImageView::gamma() const {
    const CkLut* lut = const_cast<CkImageView*>(this)->viewLut(nullptr, nullptr, nullptr);
    return lut == nullptr || lut->contrastEntries().isEmpty() ? 1.0 : lut->contrastEntries().first().gamma;
}

void CkImageView::setGamma(double fGamma) {
    CkLut* lut = viewLut(nullptr, nullptr, nullptr);
    if (lut == nullptr || !std::isfinite(fGamma) || fGamma <= 0.0) {
        return;
    }
    if (lut->contrastEntries().isEmpty()) {
        CkLut::CkCompContrast whole;
        const quint32 bits = lut->bitsPerChannel();
        whole.inHigh = bits >= 32 ? std::numeric_limits<quint32>::max() : (1U << bits) - 1U;
        lut->contrastEntries().append(whole);
    }
    lut->contrastEntries().first().gamma = fGamma;
    refreshColours();
    refresh();
}

void CkImageView::setWindow(const SkDisplayWindow& window) {
    if (!std::isfinite(window.low) || !std::isfinite(window.high)) {
        return;
    }
    bool saturation = false;
    CkLut* lut = viewLut(nullptr, &saturation, nullptr);
    CkMdiView::setViewLut(lut, false, saturation, false);
    m_window = {std::min(window.low, window.high), std::max(window.low, window.high)};
    refresh();
    emit contrastChanged();
}

QString CkImageView::unit() const {
    CkImageMetadata metadata;
    metadata.channelNames = m_channelNames;
    return m_iChannel < 0 ? QString() : PictureText::channelUnit(m_format, metadata, quint32(m_iChannel));
}

void CkImageView::setChannel(int iChannel) {
    const int lowest = PictureColours::isColourPicture(m_format) ? -1 : 0;
    const int channel = std::clamp(iChannel, lowest, std::max(0, int(m_format.channels) - 1));
    if (channel == m_iChannel) {
        return;
    }
    m_iChannel = channel;
    m_pChannelBox->setCurrentIndex(m_pChannelBox->findData(channel));
    refresh();
    emit contrastChanged();
    // Colours have no contrast to set, single channels do.
    if (IkAppDelegate* delegate = IkAppDelegate::instance()) {
        delegate->viewLutChanged(this);
    }
}

int CkImageView::channelCount() const {
    return m_pChannelBox->count();
}

void CkImageView::stepChannel(int iStep) {
    const int count = m_pChannelBox->count();
    if (count > 1) {
        setChannel(m_pChannelBox->itemData((m_pChannelBox->currentIndex() + iStep + count) % count).toInt());
    }
}

bool CkImageView::showsLegend() const {
    return m_pLegendAction->isChecked();
}

void CkImageView::setShowsLegend(bool bShow) {
    m_pLegendAction->setChecked(bShow);
}

void CkImageView::showFrame(std::unique_ptr<CkImageData> frame) {
    if (frame && frame->picBuf().data != nullptr) {
        adaptToFormat(*frame);
        m_pCanvas->setPictureSize(QSize(int(frame->picBuf().width), int(frame->picBuf().height)));
    }
    m_bStale = true;
    m_pCanvas->update();
    const QPointer<CkImageView> self(this);
    CkMdiView::showFrame(std::move(frame));
    if (self && m_hovered.x() >= 0) {
        hoverPixel(m_hovered);
    }
}

void CkImageView::adaptToFormat(const CkImageData& frame) {
    const SkPicBuf& picture = frame.picBuf();
    const bool names = frame.metadata().channelNames != m_channelNames;
    if (sameFormat(picture, m_format) && !names) {
        return;
    }
    const bool first = m_format.channels == 0 || isFloat(picture) != isFloat(m_format);
    bool automatic = false;
    bool saturation = false;
    CkLut* lut = viewLut(&automatic, &saturation, nullptr);
    IkAppDelegate* delegate = IkAppDelegate::instance();
    // A picture of another kind starts with the colours the user likes for its kind.
    CkLut* adapted = first && delegate != nullptr
                         ? delegate->createLut(picture, cameraHandles())
                         : lut->transformToFormat(picture.bitsPerChannel, picture.channels,
                                                  picture.layoutFlag, picture.dataType);
    m_format = picture;
    m_channelNames = frame.metadata().channelNames;
    m_window = PictureColours::fullRange(picture);
    m_iChannel = PictureColours::isColourPicture(picture) ? -1 : 0;
    CkMdiView::setViewLut(adapted, automatic, saturation, false);
    refreshColours();
    fillChannelBox(frame);
    if (delegate != nullptr && delegate->activeViewId() == viewId()) {
        delegate->refreshLutControls();
    }
}

void CkImageView::fillChannelBox(const CkImageData& frame) {
    const QSignalBlocker blocker(m_pChannelBox);
    m_pChannelBox->clear();
    if (PictureColours::isColourPicture(m_format)) {
        m_pChannelBox->addItem(tr("Colour"), -1);
    }
    // More channels than anybody picks from a list; the rest can be read under the mouse.
    for (quint32 channel = 0; channel < std::min(m_format.channels, 32U); ++channel) {
        m_pChannelBox->addItem(PictureText::channelName(m_format, frame.metadata(), channel), int(channel));
    }
    m_pChannelBox->setCurrentIndex(m_pChannelBox->findData(m_iChannel));
    m_pChannelBox->setEnabled(m_pChannelBox->count() > 1);
    m_pChannelBox->setToolTip(m_pChannelBox->count() > 1 ? tr("Channel that is shown")
                                                         : tr("This picture has only one channel"));
}

void CkImageView::refreshColours() {
    if (const CkLut* lut = viewLut(nullptr, nullptr, nullptr)) {
        m_colours = PictureColours::colours(*lut);
        m_pLegend->setColours(m_colours);
    }
}

void CkImageView::refresh() {
    m_bStale = true;
    m_pCanvas->update();
}

const QImage& CkImageView::shownImage() {
    if (m_bStale) {
        render();
    }
    return m_image;
}

void CkImageView::render() {
    m_bStale = false;
    const CkImageData* frame = currentImage();
    if (frame == nullptr || frame->picBuf().data == nullptr) {
        return;
    }
    const SkPicBuf& picture = frame->picBuf();
    bool automatic = false;
    bool saturation = false;
    CkLut* lut = viewLut(&automatic, &saturation, nullptr);
    const quint32 channel = quint32(std::max(m_iChannel, 0));
    computeStatistics(picture, channel, m_statistics);
    if (automatic && m_statistics.finite > 0) {
        m_window = isFloat(picture)
                       ? SkDisplayWindow{m_statistics.minimum, m_statistics.maximum}
                       : SkDisplayWindow{m_statistics.quantile(kTail), m_statistics.quantile(1.0 - kTail)};
    }
    // Whoever uses the table elsewhere gets the same window.
    const SkDisplayWindow full = PictureColours::fullRange(picture);
    if (lut != nullptr && !isFloat(picture) && full.low == 0.0) {
        if (lut->contrastEntries().isEmpty()) {
            lut->contrastEntries().append(CkLut::CkCompContrast());
        }
        const double last = std::min(full.high, double(std::numeric_limits<quint32>::max()));
        lut->contrastEntries().first().inLow = quint32(std::clamp(m_window.low, 0.0, last));
        lut->contrastEntries().first().inHigh = quint32(std::clamp(m_window.high, 0.0, last));
    }
    const bool shown = m_iChannel < 0 ? PictureColours::copyColours(picture, m_image)
                                      : PictureColours::colourChannel(picture, channel, m_colours, m_window,
                                                                      saturation, m_image);
    if (!shown) {
        m_image = QImage();
        m_pCanvas->setEmptyText(
            tr("Pictures of this format cannot be shown:\n%1").arg(PictureText::format(picture)));
    }
    updateLegend();
    emit contrastChanged();
}

void CkImageView::updateLegend() {
    m_pLegend->setVisible(m_pLegendAction->isChecked() && m_iChannel >= 0);
    const CkImageData* frame = currentImage();
    if (frame != nullptr && m_iChannel >= 0) {
        m_pLegend->setRange(m_window.low, m_window.high,
                            PictureText::channelName(m_format, frame->metadata(), quint32(m_iChannel)),
                            unit());
    }
}

void CkImageView::hoverPixel(const QPoint& pixel) {
    m_hovered = pixel;
    if (const CkImageData* frame = currentImage()) {
        emit pixelTextChanged(PictureText::pixel(frame->picBuf(), frame->metadata(), pixel.x(), pixel.y()));
    }
}
