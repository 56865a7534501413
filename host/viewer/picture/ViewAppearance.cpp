#include "host/viewer/picture/ViewAppearance.h"

#include "host/viewer/picture/CkImageCanvas.h"
#include "host/viewer/picture/CkImageView.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkLut.h"

#include <QVariant>

namespace {

const QString kKind = QStringLiteral("kind");
const QString kPicture = QStringLiteral("picture");
const QString kChannel = QStringLiteral("channel");
const QString kAutoContrast = QStringLiteral("autoContrast");
const QString kLow = QStringLiteral("low");
const QString kHigh = QStringLiteral("high");
const QString kGamma = QStringLiteral("gamma");
const QString kColours = QStringLiteral("colours");
const QString kSaturated = QStringLiteral("saturated");
const QString kLegend = QStringLiteral("legend");
const QString kZoom = QStringLiteral("zoom");

constexpr double kMinimumGamma = 0.05;
constexpr double kMaximumGamma = 20.0;

// Dynamic property of a view that has not shown a picture yet.
constexpr const char* kPending = "zuPendingAppearance";

void applyColours(CkImageView& view, const QJsonObject& appearance) {
    bool automatic = true;
    bool saturation = false;
    CkLut* lut = view.viewLut(&automatic, &saturation, nullptr);
    const auto colours = CkLut::pseudoColorNames().indexOf(appearance.value(kColours).toString());
    if (lut != nullptr && colours >= 0) {
        lut->setPseudoColorIndex(int(colours));
        lut->allocRgbTable(0);
        view.setViewLut(lut, automatic, saturation, true);
    }
    view.setChannel(appearance.value(kChannel).toInt(view.channel()));
    const double gamma = appearance.value(kGamma).toDouble(1.0);
    if (gamma >= kMinimumGamma && gamma <= kMaximumGamma) {
        view.setGamma(gamma);
    }
    const QJsonValue low = appearance.value(kLow);
    const QJsonValue high = appearance.value(kHigh);
    if (!appearance.value(kAutoContrast).toBool(true) && low.isDouble() && high.isDouble()) {
        view.setWindow({low.toDouble(), high.toDouble()});
    }
}

} // namespace

QJsonObject ViewAppearance::colours(const CkMdiView* pView) {
    const auto* view = qobject_cast<const CkImageView*>(pView);
    if (view == nullptr) {
        return {};
    }
    QJsonObject appearance;
    appearance.insert(kKind, kPicture);
    appearance.insert(kChannel, view->channel());
    appearance.insert(kAutoContrast, view->autoContrast());
    appearance.insert(kLow, view->window().low);
    appearance.insert(kHigh, view->window().high);
    appearance.insert(kGamma, view->gamma());
    const CkLut* lut = const_cast<CkImageView*>(view)->viewLut(nullptr, nullptr, nullptr);
    if (lut != nullptr) {
        appearance.insert(kColours, CkLut::pseudoColorNames().value(lut->pseudoColorIndex()));
    }
    return appearance;
}

QJsonObject ViewAppearance::whole(const CkImageView& view) {
    const QVariant pending = view.property(kPending);
    if (pending.isValid()) {
        return pending.toJsonObject();
    }
    if (const_cast<CkImageView&>(view).currentImage() == nullptr) {
        return {};
    }
    QJsonObject appearance = colours(&view);
    if (view.autoContrast()) {
        appearance.remove(kLow);
        appearance.remove(kHigh);
    }
    appearance.insert(kSaturated, view.marksSaturated());
    appearance.insert(kLegend, view.showsLegend());
    if (!view.canvas()->isFitting()) {
        appearance.insert(kZoom, view.canvas()->zoom());
    }
    return appearance;
}

void ViewAppearance::apply(CkImageView& view, const QJsonObject& appearance) {
    if (appearance.value(kKind).toString() != kPicture) {
        return;
    }
    applyColours(view, appearance);
    if (appearance.contains(kSaturated)) {
        view.setMarksSaturated(appearance.value(kSaturated).toBool(view.marksSaturated()));
    }
    if (appearance.contains(kLegend)) {
        view.setShowsLegend(appearance.value(kLegend).toBool(view.showsLegend()));
    }
    const double zoom = appearance.value(kZoom).toDouble();
    if (zoom >= CkImageCanvas::kMinimumZoom && zoom <= CkImageCanvas::kMaximumZoom) {
        view.canvas()->setZoom(zoom);
    }
}

void ViewAppearance::applyAfterFirstPicture(CkImageView& view, const QJsonObject& appearance) {
    if (appearance.isEmpty()) {
        return;
    }
    view.setProperty(kPending, appearance);
    QObject::connect(
        &view, &CkMdiView::frameShown, &view,
        [&view] {
            const QJsonObject pending = view.property(kPending).toJsonObject();
            view.setProperty(kPending, QVariant());
            apply(view, pending);
        },
        Qt::SingleShotConnection);
}
