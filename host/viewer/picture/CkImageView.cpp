#include "host/viewer/picture/CkImageView.h"

#include "host/viewer/picture/CkColorLegend.h"
#include "host/viewer/picture/CkPictureSnapshot.h"
#include "host/viewer/picture/PictureText.h"
#include "host/viewer/picture/Saturation.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkImageProvider.h"
#include "zuCore/CkLut.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QMenu>
#include <QPointer>
#include <QVBoxLayout>

CkImageView::CkImageView(CkChainable* pProvider) : CkMdiView(pProvider) {
    setFocusPolicy(Qt::StrongFocus);
    m_canvas = new CkImageCanvas(this);
    setFocusProxy(m_canvas);
    m_legend = new CkColorLegend(this);
    m_toolBar = new CkPictureToolBar(m_canvas, this);

    auto* picture = new QHBoxLayout;
    picture->setContentsMargins(0, 0, 0, 0);
    picture->setSpacing(0);
    picture->addWidget(m_canvas, 1);
    picture->addWidget(m_legend);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_toolBar);
    layout->addLayout(picture, 1);

    m_canvas->setEmptyText(tr("No picture yet. Start the camera to see one."));
    m_canvas->setImageFunction([this]() -> const QImage* {
        const QImage& image = shownImage();
        return image.isNull() ? nullptr : &image;
    });
    connect(m_canvas, &CkImageCanvas::pixelHovered, this, &CkImageView::hoverPixel);
    connect(m_canvas, &CkImageCanvas::pixelLeft, this, [this] {
        m_hovered = QPoint(-1, -1);
        emit pixelTextChanged(QString());
    });
    connect(m_toolBar, &CkPictureToolBar::channelChosen, this, &CkImageView::setChannel);
    connect(m_toolBar, &CkPictureToolBar::legendToggled, this,
            [this](bool bOn) { m_legend->setVisible(bOn && channel() >= 0); });
    connect(m_toolBar, &CkPictureToolBar::saveRequested, this, &CkImageView::saveWithDialog);

    CkMdiView::setViewLut(new CkLut(8, 1, false, EkImageDataType::UInt8), true, false, false);
    refreshColours();
}

CkImageView::~CkImageView() = default;

QString CkImageView::viewTitle() const {
    const QString title = CkMdiView::viewTitle();
    return title.isEmpty() ? tr("Picture") : title;
}

QSize CkImageView::sizeHint() const {
    const QSize picture = m_canvas->pictureSize();
    const QSize canvas = picture.isEmpty() ? QSize(400, 300) : picture.scaled(400, 400, Qt::KeepAspectRatio);
    return {canvas.width() + m_legend->sizeHint().width(), canvas.height() + m_toolBar->sizeHint().height()};
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

CkImageView::SkTable CkImageView::table() const {
    SkTable table;
    // The base class offers both calls as non-const only.
    table.lut = const_cast<CkImageView*>(this)->viewLut(&table.contrast.automatic,
                                                        &table.contrast.markSaturated, nullptr);
    return table;
}

const CkImageData* CkImageView::frame() const {
    const CkImageData* frame = const_cast<CkImageView*>(this)->currentImage();
    return frame != nullptr && frame->picBuf().data != nullptr ? frame : nullptr;
}

void CkImageView::setViewLut(CkLut* pLut, bool bFlag1, bool bFlag2, bool bUpdate) {
    CkMdiView::setViewLut(pLut, bFlag1, bFlag2, bUpdate);
    refreshColours();
    if (bUpdate) {
        refresh();
    }
}

void CkImageView::setAutoContrast(bool bAuto) {
    const SkTable now = table();
    setViewLut(now.lut, bAuto, now.contrast.markSaturated, true);
    emit contrastChanged();
}

void CkImageView::setFullRange() {
    if (const CkImageData* shown = frame()) {
        setWindow(m_renderer.fullRange(shown->picBuf()));
    }
}

void CkImageView::setMarksSaturated(bool bMark) {
    const SkTable now = table();
    setViewLut(now.lut, now.contrast.automatic, bMark, true);
    emit contrastChanged();
}

QString CkImageView::saturationReason() const {
    const CkImageData* shown = frame();
    return shown != nullptr
               ? Saturation::reason(Saturation::evidence(shown->picBuf(), shown->metadata(), dataProvider()))
               : QString();
}

void CkImageView::setEmptyText(const QString& sText) {
    if (!hasPicture()) {
        m_canvas->setEmptyText(sText);
    }
}

double CkImageView::gamma() const {
    const CkLut* lut = table().lut;
    return lut != nullptr ? PictureColours::gammaOf(*lut) : 1.0;
}

void CkImageView::setGamma(double fGamma) {
    CkLut* lut = table().lut;
    if (lut != nullptr && PictureColours::setGamma(*lut, fGamma)) {
        refreshColours();
        refresh();
    }
}

void CkImageView::setWindow(const SkDisplayWindow& window) {
    if (!m_renderer.setWindow(window)) {
        return;
    }
    const SkTable now = table();
    CkMdiView::setViewLut(now.lut, false, now.contrast.markSaturated, false);
    refresh();
    emit contrastChanged();
}

void CkImageView::setChannel(int iChannel) {
    if (!m_renderer.setChannel(iChannel)) {
        return;
    }
    m_toolBar->setChannel(channel());
    refresh();
    emit contrastChanged();
    // Contrast applies to a single channel, not to a colour picture.
    if (IkAppDelegate* delegate = IkAppDelegate::instance()) {
        delegate->viewLutChanged(this);
    }
}

void CkImageView::stepChannel(int iStep) {
    if (channelCount() > 1) {
        setChannel(m_toolBar->channelAfter(iStep));
    }
}

void CkImageView::showFrame(std::unique_ptr<CkImageData> frame) {
    if (frame && frame->picBuf().data != nullptr) {
        adaptToFormat(*frame);
        m_canvas->setPictureSize(QSize(int(frame->picBuf().width), int(frame->picBuf().height)));
    }
    refresh();
    // A slot connected to the frame signals may close the view.
    const QPointer<CkImageView> self(this);
    CkMdiView::showFrame(std::move(frame));
    if (self && m_hovered.x() >= 0) {
        hoverPixel(m_hovered);
    }
}

void CkImageView::adaptToFormat(const CkImageData& frame) {
    using EkChange = CkPictureRenderer::EkChange;
    const SkTable now = table();
    const EkChange change = m_renderer.adaptTo(frame);
    if (change == EkChange::None) {
        return;
    }
    const SkPicBuf& picture = frame.picBuf();
    IkAppDelegate* delegate = IkAppDelegate::instance();
    // A picture of another kind starts with the user's preferred colours for that kind.
    CkLut* adapted = change == EkChange::Kind && delegate != nullptr
                         ? delegate->createLut(picture, cameraHandles())
                         : now.lut->transformToFormat(picture.bitsPerChannel, picture.channels,
                                                      picture.layoutFlag, picture.dataType);
    CkMdiView::setViewLut(adapted, now.contrast.automatic, now.contrast.markSaturated, false);
    refreshColours();
    m_toolBar->setChannels(picture, frame.metadata(), channel());
    if (delegate != nullptr && delegate->activeViewId() == viewId()) {
        delegate->refreshLutControls();
    }
}

void CkImageView::refreshColours() {
    if (const CkLut* lut = table().lut) {
        m_renderer.setColours(*lut);
        m_legend->setColours(m_renderer.colours());
    }
}

void CkImageView::refresh() {
    m_outdated = true;
    m_canvas->update();
}

const QImage& CkImageView::shownImage() {
    if (m_outdated) {
        render();
    }
    return m_renderer.image();
}

void CkImageView::render() {
    m_outdated = false;
    const CkImageData* shown = frame();
    if (shown == nullptr) {
        return;
    }
    const SkPicBuf& picture = shown->picBuf();
    const SkTable now = table();
    if (!m_renderer.render(picture, now.contrast)) {
        m_canvas->setEmptyText(
            tr("Pictures of this format cannot be shown:\n%1").arg(PictureText::format(picture)));
    }
    // The plug-ins that use the view's table get the same window.
    if (now.lut != nullptr) {
        m_renderer.storeWindow(picture, *now.lut);
    }
    updateLegend();
    emit contrastChanged();
}

void CkImageView::updateLegend() {
    m_legend->setVisible(showsLegend() && channel() >= 0);
    const CkImageData* shown = frame();
    if (shown != nullptr && channel() >= 0) {
        m_legend->setRange(
            window().low, window().high,
            PictureText::channelName(m_renderer.format(), shown->metadata(), quint32(channel())), unit());
    }
}

void CkImageView::hoverPixel(const QPoint& pixel) {
    m_hovered = pixel;
    if (const CkImageData* shown = currentImage()) {
        emit pixelTextChanged(PictureText::pixel(shown->picBuf(), shown->metadata(), pixel.x(), pixel.y()));
    }
}

void CkImageView::contextMenuEvent(QContextMenuEvent* pEvent) {
    QMenu menu(this);
    menu.addActions(m_toolBar->zoomActions());
    menu.addSeparator();
    menu.addAction(m_toolBar->legendAction());
    menu.addSeparator();
    menu.addAction(tr("Save Picture..."), this, &CkImageView::saveWithDialog);
    menu.exec(pEvent->globalPos());
}

CkPictureSnapshot CkImageView::snapshot() {
    return {shownImage(), currentImage(), channel(), m_toolBar->channelText()};
}

void CkImageView::saveWithDialog() {
    // A snapshot, because frames keep arriving while the dialog is open.
    snapshot().saveWithDialog(this);
}
