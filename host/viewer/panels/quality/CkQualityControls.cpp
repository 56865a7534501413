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
    m_buttonGrid = new QGridLayout;
    createButtons();
    layout->addLayout(m_buttonGrid);
    m_text = new QLabel(this);
    m_text->setObjectName(QStringLiteral("qualityWhere"));
    m_text->setWordWrap(true);
    layout->addWidget(m_text);
    layout->addLayout(createValues());
    m_quantity->setToolTip(tr("What the curve shows"));
    layout->addWidget(m_quantity);
    m_plot = new CkQualityPlot(this);
    layout->addWidget(m_plot, 1);
    layout->addLayout(createSettings());

    connect(m_draw, &QToolButton::toggled, this, &CkQualityControls::drawToggled);
    connect(m_restart, &QPushButton::clicked, this, &CkQualityControls::restartRequested);
    connect(m_copy, &QPushButton::clicked, this, &CkQualityControls::copyRequested);
    connect(m_save, &QPushButton::clicked, this, &CkQualityControls::saveRequested);
    connect(m_quantity, &QComboBox::currentIndexChanged, this, &CkQualityControls::quantityChosen);
    for (QDoubleSpinBox* number : {m_focalLength, m_cellSize, m_confidence}) {
        connect(number, &QDoubleSpinBox::valueChanged, this, &CkQualityControls::settingsChanged);
    }
}

void CkQualityControls::createButtons() {
    m_draw = new QToolButton(this);
    m_draw->setObjectName(QStringLiteral("qualityDraw"));
    m_draw->setText(tr("Draw Region"));
    m_draw->setCheckable(true);
    m_draw->setToolButtonStyle(Qt::ToolButtonTextOnly);
    m_restart = new QPushButton(tr("Restart"), this);
    m_restart->setObjectName(QStringLiteral("qualityRestart"));
    m_copy = new QPushButton(tr("Copy"), this);
    m_copy->setObjectName(QStringLiteral("qualityCopy"));
    m_save = new QPushButton(tr("Save CSV..."), this);
    m_save->setObjectName(QStringLiteral("qualitySave"));
    m_draw->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    for (QWidget* button : QList<QWidget*>{m_draw, m_restart, m_copy, m_save}) {
        button->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("MMM")));
    }
    placeButtons();
}

// One row if all texts fit, otherwise two: German texts are longer.
void CkQualityControls::placeButtons() {
    const QList<QWidget*> buttons = {m_draw, m_restart, m_copy, m_save};
    const int count = int(buttons.size());
    int needed = (count - 1) * std::max(0, m_buttonGrid->horizontalSpacing());
    for (const QWidget* button : buttons) {
        needed += button->sizeHint().width();
    }
    const QMargins around = layout()->contentsMargins();
    const int columns = needed <= width() - around.left() - around.right() ? count : count / 2;
    if (columns == m_buttonColumns) {
        return;
    }
    m_buttonColumns = columns;
    for (int i = 0; i < count; ++i) {
        m_buttonGrid->addWidget(buttons[i], i / columns, i % columns);
    }
}

void CkQualityControls::resizeEvent(QResizeEvent* pEvent) {
    QWidget::resizeEvent(pEvent);
    placeButtons();
}

QFormLayout* CkQualityControls::createValues() {
    auto* form = new QFormLayout;
    form->setVerticalSpacing(2);
    m_quantity = new QComboBox(this);
    m_quantity->setObjectName(QStringLiteral("qualityQuantity"));
    for (int i = 0; i < QualityQuantities::kCount; ++i) {
        auto* number = new QLabel(this);
        number->setObjectName(QStringLiteral("qualityValue%1").arg(i));
        number->setAlignment(Qt::AlignRight);
        number->setTextInteractionFlags(Qt::TextSelectableByMouse);
        number->setToolTip(QualityQuantities::hint(i));
        m_numbers.append(number);
        form->addRow(QualityQuantities::name(i), number);
        form->labelForField(number)->setToolTip(QualityQuantities::hint(i));
        m_quantity->addItem(QualityQuantities::name(i));
    }
    return form;
}

QFormLayout* CkQualityControls::createSettings() {
    m_focalLength = createNumber(QStringLiteral("qualityFocalLength"), 0.1, 1000.0, 0.1, 3);
    m_focalLength->setSuffix(QStringLiteral(" mm"));
    m_focalLength->setValue(SkQualityLens().focalLengthMm);
    m_cellSize = createNumber(QStringLiteral("qualityCellSize"), 0.0001, 1.0, 0.001, 4);
    m_cellSize->setSuffix(QStringLiteral(" mm"));
    m_cellSize->setValue(SkQualityLens().cellSizeMm);
    m_cellSize->setToolTip(tr("Pitch of the sensor's cells; the plane is fitted in space"));
    m_confidence = createNumber(QStringLiteral("qualityConfidence"), 0.0, 1e6, 0.1, 3);
    m_confidence->setValue(double(SkRegionRule().confidenceLimit));
    m_confidence->setToolTip(tr("Pixels of a higher confidence value are not valid (lower is better)"));
    auto* form = new QFormLayout;
    form->setVerticalSpacing(2);
    form->addRow(tr("Focal length"), m_focalLength);
    form->addRow(tr("Cell size"), m_cellSize);
    form->addRow(tr("Confidence limit"), m_confidence);
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
    return {m_focalLength->value(), m_cellSize->value()};
}

float CkQualityControls::confidenceLimit() const {
    return float(m_confidence->value());
}

bool CkQualityControls::drawsRegion() const {
    return m_draw->isChecked();
}

void CkQualityControls::setDrawsRegion(bool bDraw) {
    m_draw->setChecked(bDraw);
}

void CkQualityControls::showValues(const SkQualityValues& values, const CkQualityHistory& history) {
    for (int i = 0; i < QualityQuantities::kCount; ++i) {
        m_numbers[i]->setText(QualityQuantities::number(values, i));
    }
    const int chosen = std::max(0, m_quantity->currentIndex());
    const auto& frames = history.values();
    const size_t width = size_t(std::max(2, m_plot->width()));
    std::vector<double> curve;
    for (size_t i = frames.size() > width ? frames.size() - width : 0; i < frames.size(); ++i) {
        curve.push_back(QualityQuantities::value(frames[i], chosen));
    }
    m_plot->showValues(curve, QualityQuantities::unit(values, chosen));
}

void CkQualityControls::showState(const SkState& state) {
    m_text->setText(state.text);
    const auto enable = [](QWidget* pWidget, bool bOn, const QString& sHint, const QString& sWhy) {
        pWidget->setEnabled(bOn);
        pWidget->setToolTip(bOn ? sHint : sWhy);
    };
    enable(m_draw, state.canDraw, tr("Drag a rectangle on the picture with the left mouse button"),
           state.reason);
    enable(m_restart, state.measures, tr("Discard the frames so far"), state.reason);
    enable(m_copy, state.measures, tr("Copy the values to the clipboard"), state.reason);
    enable(m_save, state.measures, tr("Save the values of the last frames to a file"), state.reason);
    enable(m_focalLength, !(state.focalLengthMm > 0.0), tr("Of the lens; the plane is fitted in space"),
           tr("The camera reports its focal length: %1 mm")
               .arg(PictureText::locale().toString(state.focalLengthMm)));
}
