#include "plugins/zplToF/opticalpath/CkToFOpticalPathSettingsDlg.h"

#include "ui_CkToFOpticalPathSettingsDlg.h"

#include <QLocale>
#include <QPushButton>
#include <algorithm>
#include <cmath>

namespace {
constexpr double kThresholdStep = 0.1;

// Property of a field: the text that the dialog wrote into it, or read from it last.
constexpr char kKnownText[] = "knownText";

int columnWidth(const QGridLayout* pGrid, int iColumn) {
    int iWidth = 0;
    for (int iRow = 0; iRow < pGrid->rowCount(); ++iRow) {
        const QLayoutItem* item = pGrid->itemAtPosition(iRow, iColumn);
        // The width of an item that spans columns is not that of one of them.
        if (item != nullptr && item != pGrid->itemAtPosition(iRow, iColumn == 0 ? 1 : iColumn - 1)) {
            iWidth = std::max(iWidth, item->sizeHint().width());
        }
    }
    return iWidth;
}
} // namespace

CkToFOpticalPathSettingsDlg::CkToFOpticalPathSettingsDlg(
    EkDepthDataType depthDataType, float fModulationFreq, bool bConfidenceAvailable,
    float fConfidenceThreshold, float fThresholdMin, float fThresholdMax, bool bCompensate,
    float fLensFocalLength, QPointF ptCenterOffset, float fChipCellSize, float fRealDistOffset,
    bool bOrthoDistance, bool bShowBBox, unsigned int uiBgColor, bool bLimitInputFps, float fMaxInputFps,
    QWidget* pParent)
    : QDialog(pParent),
      m_ui(std::make_unique<Ui::CkToFOpticalPathSettingsDlg>()), m_values{fModulationFreq,  bCompensate,
                                                                          fLensFocalLength, ptCenterOffset,
                                                                          fChipCellSize,    fRealDistOffset,
                                                                          bOrthoDistance,   bLimitInputFps,
                                                                          fMaxInputFps},
      m_confidenceThreshold(fConfidenceThreshold) {
    m_ui->setupUi(this);
    m_ui->lbControls->setText(
        tr("3D view controls:\n - Left mouse button: move\n - Right mouse button: rotate\n - Wheel: zoom"));

    fillEdit(m_ui->edLensFocalLength, double(fLensFocalLength));
    fillEdit(m_ui->edOptCenterOffsetX, ptCenterOffset.x());
    fillEdit(m_ui->edOptCenterOffsetY, ptCenterOffset.y());
    fillEdit(m_ui->edChipCellSize, double(fChipCellSize));
    fillEdit(m_ui->edModulationFreq, double(fModulationFreq));
    fillEdit(m_ui->edRealDistOffset, double(fRealDistOffset));
    fillEdit(m_ui->edRegInputFps, double(fMaxInputFps), 'g');
    m_ui->chkCompensate->setChecked(bCompensate);
    m_ui->chkOrthoDistance->setChecked(bOrthoDistance);
    m_ui->chkBoundingBox->setChecked(bShowBBox);
    m_ui->chkRegInputFps->setChecked(bLimitInputFps);
    m_ui->edRegInputFps->setEnabled(bLimitInputFps);
    m_ui->lbInputFps->setEnabled(bLimitInputFps);

    setUpThreshold(bConfidenceAvailable, fThresholdMin, fThresholdMax);
    m_ui->pickBgColor->setPickerColor(QColor(QRgb(uiBgColor)));
    connect(m_ui->pickBgColor, SIGNAL(colorChanged()), this, SLOT(onBgColorPickedChanged()));
    m_ui->groupOpt->setEnabled(bCompensate);
    if (depthDataType == EkDepthDataType::Depth) {
        m_ui->lbModulationFreq->hide();
        m_ui->edModulationFreq->hide();
        m_ui->lbModulationFreqUnit->hide();
    }

    explainLabels();
    alignColumns();
    // adjustSize alone limits the size to two thirds of the screen, which cuts the dialog off at large scale
    // factors.
    adjustSize();
    setFixedSize(size().expandedTo(sizeHint()));
}

CkToFOpticalPathSettingsDlg::~CkToFOpticalPathSettingsDlg() = default;

bool CkToFOpticalPathSettingsDlg::writeValuesFromControls() {
    m_values.bCompensate = m_ui->chkCompensate->isChecked();
    readEdit(m_ui->edLensFocalLength, m_values.fLensFocalLength, true);
    float fOffset = 0.0F;
    if (readEdit(m_ui->edOptCenterOffsetX, fOffset)) {
        m_values.ptCenterOffset.setX(double(fOffset));
    }
    if (readEdit(m_ui->edOptCenterOffsetY, fOffset)) {
        m_values.ptCenterOffset.setY(double(fOffset));
    }
    readEdit(m_ui->edChipCellSize, m_values.fChipCellSize, true);
    readEdit(m_ui->edModulationFreq, m_values.fModulationFreq);
    readEdit(m_ui->edRealDistOffset, m_values.fRealDistOffset);
    m_values.bOrthoDistance = m_ui->chkOrthoDistance->isChecked();
    m_values.bLimitInputFps = m_ui->chkRegInputFps->isChecked();
    readEdit(m_ui->edRegInputFps, m_values.fMaxInputFps);
    return true;
}

void CkToFOpticalPathSettingsDlg::on_buttonBox_accepted() {
    if (writeValuesFromControls()) {
        accept();
    }
}

void CkToFOpticalPathSettingsDlg::on_buttonBox_clicked(QAbstractButton* pButton) {
    if (m_ui->buttonBox->buttonRole(pButton) == QDialogButtonBox::ApplyRole && writeValuesFromControls()) {
        emit dialogValuesChanged();
    }
}

void CkToFOpticalPathSettingsDlg::onConfThresholdSliderValueChanged(const CkValue& value) {
    m_confidenceThreshold = value.toFloat();
    m_ui->lbConfThresholdValue->setText(QLocale().toString(double(m_confidenceThreshold), 'f', 2));
    emit confidenceThresholdChanged(m_confidenceThreshold);
}

void CkToFOpticalPathSettingsDlg::on_chkBoundingBox_toggled(bool bOn) {
    emit bboxVisibityChanged(bOn);
}

void CkToFOpticalPathSettingsDlg::onBgColorPickedChanged() {
    emit bgColorChanged(m_ui->pickBgColor->pickerColor().rgb() & 0xffffffU);
}

void CkToFOpticalPathSettingsDlg::fillEdit(QLineEdit* pEdit, double fValue, char cFormat) {
    pEdit->setText(QLocale().toString(fValue, cFormat, 2));
    pEdit->setProperty(kKnownText, pEdit->text());
}

// The field shows fewer digits than the value has, so an unedited text is not parsed back.
bool CkToFOpticalPathSettingsDlg::readEdit(QLineEdit* pEdit, float& fValue, bool bPositiveOnly) {
    if (pEdit->text() == pEdit->property(kKnownText).toString()) {
        return false;
    }
    bool bNumber = false;
    const float fParsed = QLocale().toFloat(pEdit->text(), &bNumber);
    if (!bNumber || !std::isfinite(fParsed) || (bPositiveOnly && !(fParsed > 0.0F))) {
        return false;
    }
    fValue = fParsed;
    pEdit->setProperty(kKnownText, pEdit->text());
    return true;
}

void CkToFOpticalPathSettingsDlg::setUpThreshold(bool bConfidenceAvailable, float fThresholdMin,
                                                 float fThresholdMax) {
    m_ui->tbConfThreshold->setRange(CkValue(fThresholdMin), CkValue(fThresholdMax), CkValue(kThresholdStep));
    m_ui->tbConfThreshold->setValue(CkValue(m_confidenceThreshold));
    m_ui->lbConfThresholdValue->setText(QLocale().toString(double(m_confidenceThreshold), 'f', 2));
    if (bConfidenceAvailable) {
        connect(m_ui->tbConfThreshold, SIGNAL(valueChanged(CkValue)), this,
                SLOT(onConfThresholdSliderValueChanged(CkValue)));
    } else {
        m_ui->lbConfThreshold->setEnabled(false);
        m_ui->tbConfThreshold->setEnabled(false);
        m_ui->lbConfThresholdValue->setEnabled(false);
    }
}

// A label has the tool tip of its control, a unit that of its row's label.
void CkToFOpticalPathSettingsDlg::explainLabels() {
    const QList<QLabel*> labels = findChildren<QLabel*>();
    for (QLabel* label : labels) {
        if (label->buddy() != nullptr) {
            label->setToolTip(label->buddy()->toolTip());
            label->buddy()->setAccessibleName(label->text());
        }
    }
    m_ui->edRegInputFps->setAccessibleName(m_ui->chkRegInputFps->text());
}

// The rows outside the group line up with those inside, although the group's frame lies between them.
void CkToFOpticalPathSettingsDlg::alignColumns() {
    ensurePolished();
    const QMargins frame = m_ui->groupOpt->contentsMargins() + m_ui->gridLayout_3->contentsMargins();
    const int iLabels =
        std::max(columnWidth(m_ui->gridLayout, 0), columnWidth(m_ui->gridLayout_3, 0) + frame.left());
    const int iUnits =
        std::max(columnWidth(m_ui->gridLayout, 2), columnWidth(m_ui->gridLayout_3, 2) + frame.right());
    m_ui->gridLayout->setColumnMinimumWidth(0, iLabels);
    m_ui->gridLayout_3->setColumnMinimumWidth(0, iLabels - frame.left());
    m_ui->gridLayout->setColumnMinimumWidth(2, iUnits);
    m_ui->gridLayout_3->setColumnMinimumWidth(2, iUnits - frame.right());
}
