// The quality panel's controls, and what leaves it.

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/base/SaveFileName.h"
#include "host/viewer/base/pluralNumber.h"
#include "host/viewer/panels/quality/CkQualityPanel.h"
#include "host/viewer/panels/quality/CkQualityPlot.h"
#include "host/viewer/picture/CkImageView.h"
#include "host/viewer/picture/PictureText.h"
#include "zuCore/CkImageData.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QAction>
#include <QClipboard>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

QDoubleSpinBox* CkQualityPanel::createNumber(const QString& sName, double fLow, double fHigh, double fStep,
                                             int iDecimals) {
    auto* number = new QDoubleSpinBox(this);
    number->setObjectName(sName);
    number->setDecimals(iDecimals);
    number->setRange(fLow, fHigh);
    number->setSingleStep(fStep);
    number->setKeyboardTracking(false);
    number->setAlignment(Qt::AlignRight);
    return number;
}

void CkQualityPanel::createControls() {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    m_pButtons = new QGridLayout;
    m_pDraw = new QToolButton(this);
    m_pDraw->setObjectName(QStringLiteral("qualityDraw"));
    m_pDraw->setText(tr("Draw Region"));
    m_pDraw->setCheckable(true);
    m_pDraw->setToolButtonStyle(Qt::ToolButtonTextOnly);
    m_pRestart = new QPushButton(tr("Restart"), this);
    m_pRestart->setObjectName(QStringLiteral("qualityRestart"));
    m_pCopy = new QPushButton(tr("Copy"), this);
    m_pCopy->setObjectName(QStringLiteral("qualityCopy"));
    m_pSave = new QPushButton(tr("Save CSV..."), this);
    m_pSave->setObjectName(QStringLiteral("qualitySave"));
    m_pDraw->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    for (QWidget* button : QList<QWidget*>{m_pDraw, m_pRestart, m_pCopy, m_pSave}) {
        button->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("MMM")));
    }
    placeButtons();
    layout->addLayout(m_pButtons);
    m_pWhere = new QLabel(this);
    m_pWhere->setObjectName(QStringLiteral("qualityWhere"));
    m_pWhere->setWordWrap(true);
    layout->addWidget(m_pWhere);

    auto* form = new QFormLayout;
    form->setVerticalSpacing(2);
    m_pQuantity = new QComboBox(this);
    m_pQuantity->setObjectName(QStringLiteral("qualityQuantity"));
    const struct {
        QString name;
        QString hint;
    } quantities[] = {
        {tr("Mean"), tr("Mean of the valid pixels of the newest frame")},
        {tr("Std. dev. over the region"), tr("Standard deviation of the valid pixels of the newest frame")},
        {tr("Std. dev. over time"),
         tr("How much a pixel varies from frame to frame: quadratic mean of the standard deviations that the "
            "pixels have had since the start")},
        {tr("Valid pixels"), tr("Share of pixels that are finite, confident enough and not saturated")},
        {tr("Tilt"), tr("Angle between the optical axis and the normal of the plane through the points")},
        {tr("Flatness"), tr("From the point furthest in front of that plane to the one furthest behind it")},
        {tr("RMS from the plane"), tr("Quadratic mean of the points' distances from that plane")},
    };
    for (const auto& entry : quantities) {
        auto* value = new QLabel(this);
        value->setObjectName(QStringLiteral("qualityValue%1").arg(m_numbers.size()));
        value->setAlignment(Qt::AlignRight);
        value->setTextInteractionFlags(Qt::TextSelectableByMouse);
        value->setToolTip(entry.hint);
        m_numbers.append(value);
        form->addRow(entry.name, value);
        form->labelForField(value)->setToolTip(entry.hint);
        m_pQuantity->addItem(entry.name);
    }
    layout->addLayout(form);
    m_pQuantity->setToolTip(tr("What the curve shows"));
    layout->addWidget(m_pQuantity);
    m_pPlot = new CkQualityPlot(this);
    layout->addWidget(m_pPlot, 1);

    auto* lens = new QFormLayout;
    lens->setVerticalSpacing(2);
    m_pFocalLength = createNumber(QStringLiteral("qualityFocalLength"), 0.1, 1000.0, 0.1, 3);
    m_pFocalLength->setSuffix(QStringLiteral(" mm"));
    m_pFocalLength->setValue(SkQualityLens().focalLengthMm);
    m_pCellSize = createNumber(QStringLiteral("qualityCellSize"), 0.0001, 1.0, 0.001, 4);
    m_pCellSize->setSuffix(QStringLiteral(" mm"));
    m_pCellSize->setValue(SkQualityLens().cellSizeMm);
    m_pCellSize->setToolTip(tr("Pitch of the sensor's cells; the plane is fitted in space"));
    m_pConfidence = createNumber(QStringLiteral("qualityConfidence"), 0.0, 1e6, 0.1, 3);
    m_pConfidence->setValue(double(SkRegionRule().confidenceLimit));
    m_pConfidence->setToolTip(tr("Pixels of a higher confidence value are not valid (lower is better)"));
    lens->addRow(tr("Focal length"), m_pFocalLength);
    lens->addRow(tr("Cell size"), m_pCellSize);
    lens->addRow(tr("Confidence limit"), m_pConfidence);
    layout->addLayout(lens);
    createActions();
}

// One row where there is room for what stands on them, else two: German has longer words.
void CkQualityPanel::placeButtons() {
    const QList<QWidget*> buttons = {m_pDraw, m_pRestart, m_pCopy, m_pSave};
    const int count = int(buttons.size());
    int needed = (count - 1) * std::max(0, m_pButtons->horizontalSpacing());
    for (const QWidget* button : buttons) {
        needed += button->sizeHint().width();
    }
    const QMargins around = layout()->contentsMargins();
    const int columns = needed <= width() - around.left() - around.right() ? count : count / 2;
    if (columns == m_iButtonColumns) {
        return;
    }
    m_iButtonColumns = columns;
    for (int i = 0; i < count; ++i) {
        m_pButtons->addWidget(buttons[i], i / columns, i % columns);
    }
}

void CkQualityPanel::resizeEvent(QResizeEvent* pEvent) {
    QWidget::resizeEvent(pEvent);
    placeButtons();
}

void CkQualityPanel::createActions() {
    const auto add = [this](const QString& sText, const char* name, const QKeySequence& key) {
        auto* action = new QAction(sText, this);
        action->setObjectName(QLatin1String(name));
        action->setShortcut(key);
        m_actions.append(action);
        return action;
    };
    m_pDrawAction = add(tr("&Draw Region"), "actQualityDraw", Qt::CTRL | Qt::Key_M);
    m_pDrawAction->setCheckable(true);
    connect(m_pDraw, &QToolButton::toggled, m_pDrawAction, &QAction::setChecked);
    connect(m_pDrawAction, &QAction::triggered, this, [this](bool bOn) {
        if (bOn && !(isVisible() && m_bInSight)) {
            emit sightWanted();
        }
        m_pDraw->setChecked(bOn);
    });
    connect(add(tr("R&estart Measurement"), "actQualityRestart", Qt::CTRL | Qt::SHIFT | Qt::Key_N),
            &QAction::triggered, this, &CkQualityPanel::restart);
    connect(add(tr("&Copy Values"), "actQualityCopy", Qt::CTRL | Qt::SHIFT | Qt::Key_C), &QAction::triggered,
            this, &CkQualityPanel::copy);
    connect(add(tr("Save &Values..."), "actQualitySave", Qt::CTRL | Qt::SHIFT | Qt::Key_S),
            &QAction::triggered, this, &CkQualityPanel::saveWithDialog);
}

void CkQualityPanel::allowMeasuring(bool bOn, const QString& sWhy) {
    for (QAction* action : m_actions) {
        if (action != m_pDrawAction) {
            action->setEnabled(bOn);
            action->setToolTip(bOn ? QString() : sWhy);
        }
    }
}

void CkQualityPanel::updateControls() {
    const CkMdiView* const active = m_pArea->activeView();
    const QString nothing = active == nullptr ? tr("No view is active")
                            : !m_source ? tr("The active view shows no picture. Open a depth picture of its "
                                             "chain to measure in it.")
                                        : tr("There is no picture yet");
    const QRect region = m_now.meter.region();
    const bool measures = m_source && !m_now.history.values().empty();
    if (measures) {
        QString where = tr("%1: region at %2, %3 of %4 x %5 pixels, %n frame(s)", nullptr,
                           pluralNumber(m_now.values.frames))
                            .arg(m_source->viewTitle().simplified(), QString::number(region.x()),
                                 QString::number(region.y()), QString::number(region.width()),
                                 QString::number(region.height()));
        if (m_now.values.unit != QLatin1String("mm")) {
            where += QLatin1Char('\n') + tr("No distances: no plane is fitted.");
        }
        if (!m_now.saturationReason.isEmpty()) {
            where += QLatin1Char('\n') +
                     tr("Saturated pixels may count as valid: %1.").arg(m_now.saturationReason);
        }
        m_pWhere->setText(where);
    } else {
        m_pWhere->setText(nothing);
    }
    const auto enable = [](QWidget* pWidget, bool bOn, const QString& sHint, const QString& sWhy) {
        pWidget->setEnabled(bOn);
        pWidget->setToolTip(bOn ? sHint : sWhy);
    };
    enable(m_pDraw, m_source, tr("Drag a rectangle on the picture with the left mouse button"), nothing);
    enable(m_pRestart, measures, tr("Forget the frames so far"), nothing);
    enable(m_pCopy, measures, tr("Copy the values to the clipboard"), nothing);
    enable(m_pSave, measures, tr("Save the values of the last frames to a file"), nothing);
    const bool drawable = sourceFor(m_pArea->activeView()) != nullptr;
    m_pDrawAction->setEnabled(drawable);
    m_pDrawAction->setToolTip(drawable ? tr("Drag a rectangle on the picture with the left mouse button")
                                       : nothing);
    const bool seen = isVisible() && m_bInSight;
    allowMeasuring(measures, seen ? nothing : tr("The panel Quality is not in sight"));
    const CkImageData* const frame = m_source ? m_source->currentImage() : nullptr;
    const bool told = frame != nullptr && frame->metadata().lensFocalLength > 0.0F;
    enable(m_pFocalLength, !told, tr("Of the lens; the plane is fitted in space"),
           told ? tr("The camera tells its focal length: %1 mm")
                      .arg(PictureText::locale().toString(double(frame->metadata().lensFocalLength)))
                : QString());
}

void CkQualityPanel::copy() {
    QGuiApplication::clipboard()->setText(CkQualityHistory::text(m_now.values));
}

void CkQualityPanel::saveWithDialog() {
    IkAppDelegate* delegate = IkAppDelegate::instance();
    const QString folder = delegate != nullptr ? delegate->lastDirectory() : QString();
    int form = 0;
    const QPointer<CkQualityPanel> self(this);
    const QString name =
        askSaveFileName(this, tr("Save Values"), folder,
                        {{tr("Comma separated values (*.csv)"), QStringLiteral("csv")}}, form);
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
