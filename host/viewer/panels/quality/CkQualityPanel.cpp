#include "host/viewer/panels/quality/CkQualityPanel.h"

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/base/SaveFileName.h"
#include "host/viewer/base/pluralNumber.h"
#include "host/viewer/panels/quality/CkQualityControls.h"
#include "host/viewer/panels/quality/CkRegionOverlay.h"
#include "host/viewer/panels/quality/MeasuredView.h"
#include "host/viewer/panels/quality/QualityQuantities.h"
#include "host/viewer/picture/CkImageCanvas.h"
#include "host/viewer/picture/CkImageView.h"
#include "zuCore/CkImageData.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QAction>
#include <QClipboard>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMessageBox>
#include <QVBoxLayout>
#include <algorithm>

namespace {

constexpr int kShowMs = 200;

} // namespace

CkQualityPanel::CkQualityPanel(CkViewArea* pArea, QWidget* pParent) : QWidget(pParent), m_area(pArea) {
    setObjectName(QStringLiteral("qualityPanel"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_controls = new CkQualityControls(this);
    layout->addWidget(m_controls);
    createActions();
    m_delay.setSingleShot(true);
    m_delay.setInterval(kShowMs);
    connect(&m_delay, &QTimer::timeout, this, &CkQualityPanel::showNumbers);
    connect(m_area, &CkViewArea::activeViewChanged, this, &CkQualityPanel::follow);
    connect(m_area, &CkViewArea::viewAdded, this, &CkQualityPanel::follow);
    connect(m_area, &CkViewArea::viewAboutToClose, this, [this](int iViewId) {
        if (m_source && m_source->viewId() == iViewId) {
            release();
        }
    });
    connect(m_area, &CkViewArea::viewClosed, this, [this](int iViewId) {
        m_suspended.erase(iViewId);
        follow();
    });
    connect(m_controls, &CkQualityControls::drawToggled, this, [this](bool bOn) {
        m_drawAction->setChecked(bOn);
        if (m_overlay) {
            m_overlay->setDrawing(bOn);
        }
    });
    connect(m_controls, &CkQualityControls::restartRequested, this, &CkQualityPanel::restart);
    connect(m_controls, &CkQualityControls::copyRequested, this, &CkQualityPanel::copy);
    connect(m_controls, &CkQualityControls::saveRequested, this, &CkQualityPanel::saveWithDialog);
    connect(m_controls, &CkQualityControls::quantityChosen, this, &CkQualityPanel::showNumbers);
    connect(m_controls, &CkQualityControls::settingsChanged, this, &CkQualityPanel::applySettings);
    showNumbers();
}

CkQualityPanel::~CkQualityPanel() {
    release();
}

QAction* CkQualityPanel::addMenuAction(const QString& sText, const char* name, const QKeySequence& key) {
    auto* action = new QAction(sText, this);
    action->setObjectName(QLatin1String(name));
    action->setShortcut(key);
    m_actions.append(action);
    return action;
}

void CkQualityPanel::createActions() {
    m_drawAction = addMenuAction(tr("&Draw Region"), "actQualityDraw", Qt::CTRL | Qt::Key_M);
    m_drawAction->setCheckable(true);
    connect(m_drawAction, &QAction::triggered, this, [this](bool bOn) {
        if (bOn && !isOnScreen()) {
            emit raiseRequested();
        }
        m_controls->setDrawsRegion(bOn);
    });
    connect(addMenuAction(tr("R&estart Measurement"), "actQualityRestart", Qt::CTRL | Qt::SHIFT | Qt::Key_N),
            &QAction::triggered, this, &CkQualityPanel::restart);
    connect(addMenuAction(tr("&Copy Values"), "actQualityCopy", Qt::CTRL | Qt::SHIFT | Qt::Key_C),
            &QAction::triggered, this, &CkQualityPanel::copy);
    connect(addMenuAction(tr("Save &Values..."), "actQualitySave", Qt::CTRL | Qt::SHIFT | Qt::Key_S),
            &QAction::triggered, this, &CkQualityPanel::saveWithDialog);
}

void CkQualityPanel::allowMeasuring(bool bOn, const QString& sWhy) {
    for (QAction* action : m_actions) {
        if (action != m_drawAction) {
            action->setEnabled(bOn);
            action->setToolTip(bOn ? QString() : sWhy);
        }
    }
}

void CkQualityPanel::showEvent(QShowEvent* pEvent) {
    QWidget::showEvent(pEvent);
    follow();
}

void CkQualityPanel::hideEvent(QHideEvent* pEvent) {
    QWidget::hideEvent(pEvent);
    release();
    // Not updateControls(): while the window is being destroyed, the area may have been deleted already.
    allowMeasuring(false, tr("The panel Quality is hidden"));
}

void CkQualityPanel::setShownByDock(bool bShown) {
    m_shownByDock = bShown;
    follow();
}

void CkQualityPanel::follow() {
    CkImageView* const source = isOnScreen() ? measuredViewFor(m_area->activeView(), *m_area) : nullptr;
    if (source == m_source) {
        updateControls();
        return;
    }
    release();
    m_source = source;
    if (m_source) {
        if (const auto kept = m_suspended.find(m_source->viewId()); kept != m_suspended.end()) {
            m_current = std::move(kept->second);
            m_suspended.erase(kept);
        }
        applySettings();
        m_overlay = new CkRegionOverlay(m_source->canvas());
        m_overlay->setDrawing(m_controls->drawsRegion());
        connect(m_overlay, &CkRegionOverlay::regionDrawn, this, &CkQualityPanel::setRegion);
        connect(m_source, &CkMdiView::frameShown, this,
                [this](int, const CkImageData* pData) { measure(pData); });
        const CkImageData* const frame = m_source->currentImage();
        if (frame != nullptr && !m_current.isNewest(*frame)) {
            measure(frame);
        } else {
            showRegion();
        }
    }
    showNumbers();
}

void CkQualityPanel::release() {
    if (m_source) {
        disconnect(m_source, nullptr, this, nullptr);
        m_suspended[m_source->viewId()] = std::move(m_current);
    }
    delete m_overlay;
    m_saturation.watch(nullptr);
    m_source = nullptr;
    m_current = CkViewMeasurement();
    m_delay.stop();
}

void CkQualityPanel::applySettings() {
    m_current.setSettings(m_controls->lens(), m_controls->confidenceLimit());
}

void CkQualityPanel::setRegion(const QRect& region) {
    if (!m_source) {
        return;
    }
    m_regions.setRegion(*m_source, region);
    m_current.clearHistory();
    measure(m_source->currentImage());
    showNumbers();
}

void CkQualityPanel::showRegion() {
    if (m_overlay) {
        m_overlay->setRegion(m_current.region());
    }
}

void CkQualityPanel::measure(const CkImageData* pFrame) {
    if (!m_source || pFrame == nullptr || pFrame->picBuf().data == nullptr) {
        return;
    }
    const QSize size(int(pFrame->picBuf().width), int(pFrame->picBuf().height));
    m_current.setRegion(m_regions.region(*m_source, size));
    showRegion();
    const quint32 channel = quint32(std::max(0, m_source->channel()));
    if (m_current.add(*pFrame, channel, m_source->dataProvider(), m_saturation) && !m_delay.isActive()) {
        m_delay.start();
    }
}

void CkQualityPanel::restart() {
    m_current.restart();
    showNumbers();
}

void CkQualityPanel::showNumbers() {
    m_controls->showValues(m_current.values(), m_current.history());
    updateControls();
}

QString CkQualityPanel::stateText(const QString& sNothing) const {
    if (!m_source || m_current.isEmpty()) {
        return sNothing;
    }
    const QRect& region = m_current.region();
    QString text =
        tr("%1: region at %2, %3 of %4 x %5 pixels, %n frame(s)", nullptr,
           pluralNumber(m_current.values().frames))
            .arg(m_source->viewTitle().simplified(), QString::number(region.x()), QString::number(region.y()),
                 QString::number(region.width()), QString::number(region.height()));
    if (m_current.values().unit != QLatin1String("mm")) {
        text += QLatin1Char('\n') + tr("No distances: no plane is fitted.");
    }
    if (!m_current.saturationReason().isEmpty()) {
        text += QLatin1Char('\n') +
                tr("Saturated pixels may count as valid: %1.").arg(m_current.saturationReason());
    }
    return text;
}

void CkQualityPanel::updateControls() {
    CkMdiView* const active = m_area->activeView();
    const QString nothing = active == nullptr ? tr("No view is active")
                            : !m_source ? tr("The active view shows no picture. Open a depth picture of its "
                                             "chain to measure in it.")
                                        : tr("There is no picture yet");
    const CkImageData* const frame = m_source ? m_source->currentImage() : nullptr;
    CkQualityControls::SkState state;
    state.canDraw = m_source;
    state.measures = m_source && !m_current.isEmpty();
    state.text = stateText(nothing);
    state.reason = nothing;
    state.focalLengthMm = frame != nullptr ? double(frame->metadata().lensFocalLength) : 0.0;
    m_controls->showState(state);
    const bool drawable = measuredViewFor(active, *m_area) != nullptr;
    m_drawAction->setEnabled(drawable);
    m_drawAction->setToolTip(drawable ? tr("Drag a rectangle on the picture with the left mouse button")
                                      : nothing);
    allowMeasuring(state.measures, isOnScreen() ? nothing : tr("The panel Quality is hidden"));
}

void CkQualityPanel::copy() {
    QGuiApplication::clipboard()->setText(QualityQuantities::text(m_current.values()));
}

bool CkQualityPanel::saveHistory(const QString& sFileName, QString& sError) const {
    const QString view = m_source ? m_source->viewTitle().simplified() : QString();
    return m_current.history().saveCsv(sFileName, view, m_current.region(), sError);
}

void CkQualityPanel::saveWithDialog() {
    IkAppDelegate* delegate = IkAppDelegate::instance();
    const QString folder = delegate != nullptr ? delegate->lastDirectory() : QString();
    int format = 0;
    const QPointer<CkQualityPanel> self(this);
    const QString name =
        askSaveFileName(this,
                        {.title = tr("Save Values"),
                         .start = folder,
                         .formats = {{tr("Comma separated values (*.csv)"), QStringLiteral("csv")}}},
                        format);
    if (!self || name.isEmpty()) {
        return;
    }
    QString error;
    if (!saveHistory(name, error)) {
        QMessageBox::warning(this, tr("Save Values"), error);
    } else if (delegate != nullptr) {
        delegate->setLastDirectory(QFileInfo(name).absolutePath());
    }
}
