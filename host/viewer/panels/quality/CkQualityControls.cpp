#include "host/viewer/panels/quality/CkQualityControls.h"

#include "host/viewer/panels/quality/CkQualityHistory.h"
#include "host/viewer/panels/quality/CkQualityPlot.h"
#include "host/viewer/panels/quality/QualityQuantities.h"
#include "host/viewer/picture/PictureText.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

CkQualityControls::CkQualityControls(QWidget* pParent) : QWidget(pParent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    m_pButtonGrid = new QGridLayout;
    createButtons();
    layout->addLayout(m_pButtonGrid);
    m_pText = new QLabel(this);
    m_pText->setObjectName(QStringLiteral("qualityWhere"));
    m_pText->setWordWrap(true);
    layout->addWidget(m_pText);
    layout->addLayout(createValues());
    m_pQuantity->setToolTip(tr("What the curve shows"));
    layout->addWidget(m_pQuantity);
    m_pPlot = new CkQualityPlot(this);
    layout->addWidget(m_pPlot, 1);
    layout->addLayout(createSettings());

    connect(m_pDraw, &QToolButton::toggled, this, &CkQualityControls::drawToggled);
    connect(m_pRestart, &QPushButton::clicked, this, &CkQualityControls::restartRequested);
    connect(m_pCopy, &QPushButton::clicked, this, &CkQualityControls::copyRequested);
    connect(m_pSave, &QPushButton::clicked, this, &CkQualityControls::saveRequested);
    connect(m_pQuantity, &QComboBox::currentIndexChanged, this, &CkQualityControls::quantityChosen);
    for (QDoubleSpinBox* number : {m_pFocalLength, m_pCellSize, m_pConfidence}) {
        connect(number, &QDoubleSpinBox::valueChanged, this, &CkQualityControls::settingsChanged);
    }
}

void CkQualityControls::createButtons() {
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
}

// One row if all texts fit, otherwise two: German texts are longer.
void CkQualityControls::placeButtons() {
    const QList<QWidget*> buttons = {m_pDraw, m_pRestart, m_pCopy, m_pSave};
    const int count = int(buttons.size());
    int needed = (count - 1) * std::max(0, m_pButtonGrid->horizontalSpacing());
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
        m_pButtonGrid->addWidget(buttons[i], i / columns, i % columns);
    }
}

void CkQualityControls::resizeEvent(QResizeEvent* pEvent) {
    QWidget::resizeEvent(pEvent);
    placeButtons();
}

QFormLayout* CkQualityControls::createValues() {
    auto* form = new QFormLayout;
    form->setVerticalSpacing(2);
    m_pQuantity = new QComboBox(this);
    m_pQuantity->setObjectName(QStringLiteral("qualityQuantity"));
    for (int i = 0; i < QualityQuantities::kCount; ++i) {
        auto* number = new QLabel(this);
        number->setObjectName(QStringLiteral("qualityValue%1").arg(i));
        number->setAlignment(Qt::AlignRight);
        number->setTextInteractionFlags(Qt::TextSelectableByMouse);
        number->setToolTip(QualityQuantities::hint(i));
        m_numbers.append(number);
        form->addRow(QualityQuantities::name(i), number);
        form->labelForField(number)->setToolTip(QualityQuantities::hint(i));
        m_pQuantity->addItem(QualityQuantities::name(i));
    }
    return form;
}

QFormLayout* CkQualityControls::createSettings() {
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
    auto* form = new QFormLayout;
    form->setVerticalSpacing(2);
    form->addRow(tr("Focal length"), m_pFocalLength);
    form->addRow(tr("Cell size"), m_pCellSize);
    form->addRow(tr("Confidence limit"), m_pConfidence);
    return form;
}

QDoubleSpinBox* CkQualityControls::createNumber(const QString& sName, double fLow, double fHigh, double fStep,
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

SkQualityLens CkQualityControls::lens() const {
    return {m_pFocalLength->value(), m_pCellSize->value()};
}

float CkQualityControls::confidenceLimit() const {
    return float(m_pConfidence->value());
}

bool CkQualityControls::drawsRegion() const {
    return m_pDraw->isChecked();
}

void CkQualityControls::setDrawsRegion(bool bDraw) {
    m_pDraw->setChecked(bDraw);
}

void CkQualityControls::showValues(const SkQualityValues& values, const CkQualityHistory& history) {
    for (int i = 0; i < QualityQuantities::kCount; ++i) {
        m_numbers[i]->setText(QualityQuantities::number(values, i));
    }
    const int chosen = std::max(0, m_pQuantity->currentIndex());
    const auto& frames = history.values();
    const size_t width = size_t(std::max(2, m_pPlot->width()));
    std::vector<double> curve;
    for (size_t i = frames.size() > width ? frames.size() - width : 0; i < frames.size(); ++i) {
        curve.push_back(QualityQuantities::value(frames[i], chosen));
    }
    m_pPlot->showValues(curve, QualityQuantities::unit(values, chosen));
}

void CkQualityControls::showState(const SkState& state) {
    m_pText->setText(state.text);
    const auto enable = [](QWidget* pWidget, bool bOn, const QString& sHint, const QString& sWhy) {
        pWidget->setEnabled(bOn);
        pWidget->setToolTip(bOn ? sHint : sWhy);
    };
    enable(m_pDraw, state.canDraw, tr("Drag a rectangle on the picture with the left mouse button"),
           state.reason);
    enable(m_pRestart, state.measures, tr("Forget the frames so far"), state.reason);
    enable(m_pCopy, state.measures, tr("Copy the values to the clipboard"), state.reason);
    enable(m_pSave, state.measures, tr("Save the values of the last frames to a file"), state.reason);
    enable(m_pFocalLength, !(state.focalLengthMm > 0.0), tr("Of the lens; the plane is fitted in space"),
           tr("The camera tells its focal length: %1 mm")
               .arg(PictureText::locale().toString(state.focalLengthMm)));
}
