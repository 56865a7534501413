#include "host/viewer/playback/CkDepthImportDialog.h"

#include "host/viewer/picture/PictureColours.h"
#include "host/viewer/picture/PictureText.h"
#include "zuCore/CkImageData.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double kMillimetresPerMetre = 1000.0;
constexpr double kFarthestInMetres = 100.0; // upper limit of ToF cameras
constexpr double kOther = 0.0;

} // namespace

bool CkDepthImportDialog::isWorthAsking(const SkPicBufInfo& info) {
    return SkDepthScale::fits(info) && info.dataType != EkImageDataType::UInt8 &&
           info.dataType != EkImageDataType::Int8;
}

SkDepthScale CkDepthImportDialog::proposal(const SkPicBufInfo& info, double fLargest) {
    SkDepthScale scale;
    scale.metresPerCount =
        isFloatType(info.dataType) && fLargest <= kFarthestInMetres ? 1.0 : 1.0 / kMillimetresPerMetre;
    return scale;
}

CkDepthImportDialog::CkDepthImportDialog(const QString& sFileName, const CkImageData& first, QWidget* pParent)
    : QDialog(pParent) {
    setObjectName(QStringLiteral("depthImportDialog"));
    setWindowTitle(tr("Import Picture"));
    const SkPicBuf& picture = first.picBuf();
    measure(picture);

    auto* name =
        new QLabel(QStringLiteral("<b>%1</b><br>%2")
                       .arg(QFileInfo(sFileName).fileName().toHtmlEscaped(), PictureText::format(picture)),
                   this);
    auto* question = new QLabel(tr("The file does not say what its samples mean."), this);
    m_pDepth = new QRadioButton(tr("&Depths"), this);
    m_pDepth->setObjectName(QStringLiteral("importDepth"));
    m_pPicture = new QRadioButton(tr("A grey &picture, samples as they are"), this);
    m_pPicture->setObjectName(QStringLiteral("importPicture"));
    createDetails();
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Open | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Open)->setDefault(true);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(name);
    layout->addSpacing(6);
    layout->addWidget(question);
    layout->addWidget(m_pDepth);
    layout->addWidget(m_pDetails);
    layout->addWidget(m_pPicture);
    layout->addSpacing(6);
    layout->addWidget(buttons);

    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_pDepth, &QRadioButton::toggled, m_pDetails, &QWidget::setEnabled);
    SkDepthScale proposed = proposal(picture, m_fLargest);
    proposed.zeroIsNothing = m_bHasZeros || !isFloatType(picture.dataType);
    setScale(proposed);
}

void CkDepthImportDialog::measure(const SkPicBuf& picture) {
    m_fSmallest = std::numeric_limits<double>::infinity();
    m_fLargest = -std::numeric_limits<double>::infinity();
    for (quint32 y = 0; y < picture.height; ++y) {
        for (quint32 x = 0; x < picture.width; ++x) {
            const double value = PictureColours::sampleValue(picture, x, y, 0);
            m_bHasZeros = m_bHasZeros || value == 0.0;
            if (value != 0.0 && std::isfinite(value)) {
                m_fSmallest = std::min(m_fSmallest, value);
                m_fLargest = std::max(m_fLargest, value);
            }
        }
    }
}

void CkDepthImportDialog::createDetails() {
    m_pDetails = new QWidget(this);
    auto* form = new QFormLayout(m_pDetails);
    form->setContentsMargins(24, 0, 0, 0);
    m_pUnit = new QComboBox(m_pDetails);
    m_pUnit->setObjectName(QStringLiteral("importUnit"));
    m_pUnit->addItem(tr("Millimetres"), 1.0);
    m_pUnit->addItem(tr("Tenths of a millimetre"), 0.1);
    m_pUnit->addItem(tr("Centimetres"), 10.0);
    m_pUnit->addItem(tr("Metres"), kMillimetresPerMetre);
    m_pUnit->addItem(tr("1/256 metre"), kMillimetresPerMetre / 256.0);
    m_pUnit->addItem(tr("1/5000 metre"), kMillimetresPerMetre / 5000.0);
    m_pUnit->addItem(tr("Another scale"), kOther);
    form->addRow(tr("&Unit of a count:"), m_pUnit);
    m_pMillimetres = new QDoubleSpinBox(m_pDetails);
    m_pMillimetres->setObjectName(QStringLiteral("importMillimetres"));
    m_pMillimetres->setDecimals(6);
    m_pMillimetres->setRange(0.000001, 1'000'000.0);
    m_pMillimetres->setSuffix(tr(" mm"));
    form->addRow(tr("A count of &1 is:"), m_pMillimetres);
    m_pZero = new QCheckBox(tr("&0 means that nothing was measured"), m_pDetails);
    m_pZero->setObjectName(QStringLiteral("importZero"));
    m_pZero->setToolTip(tr("Such pixels become \"not a number\" and make no points in 3D views"));
    form->addRow(QString(), m_pZero);
    m_pRange = new QLabel(m_pDetails);
    m_pRange->setObjectName(QStringLiteral("importRange"));
    form->addRow(tr("This picture then has:"), m_pRange);
    connect(m_pUnit, &QComboBox::currentIndexChanged, this, &CkDepthImportDialog::adaptToUnit);
    connect(m_pMillimetres, &QDoubleSpinBox::valueChanged, this, &CkDepthImportDialog::showRange);
    connect(m_pZero, &QCheckBox::toggled, this, &CkDepthImportDialog::showRange);
}

void CkDepthImportDialog::setScale(const SkDepthScale& scale) {
    m_pDepth->setChecked(scale.isActive());
    m_pPicture->setChecked(!scale.isActive());
    m_pDetails->setEnabled(scale.isActive());
    m_pZero->setChecked(scale.zeroIsNothing);
    if (scale.isActive()) {
        const double millimetres = scale.metresPerCount * kMillimetresPerMetre;
        m_pUnit->setCurrentIndex(m_pUnit->findData(kOther));
        m_pMillimetres->setValue(millimetres);
        for (int i = 0; i < m_pUnit->count(); ++i) {
            if (std::abs(m_pUnit->itemData(i).toDouble() - millimetres) < millimetres * 1e-9) {
                m_pUnit->setCurrentIndex(i);
            }
        }
    }
    adaptToUnit();
}

SkDepthScale CkDepthImportDialog::scale() const {
    SkDepthScale scale;
    scale.zeroIsNothing = m_pZero->isChecked();
    if (m_pDepth->isChecked()) {
        scale.metresPerCount = metresPerCount();
    }
    return scale;
}

double CkDepthImportDialog::metresPerCount() const {
    // The exact factor, not the rounded number in the field.
    const double unit = m_pUnit->currentData().toDouble();
    return (unit > kOther ? unit : m_pMillimetres->value()) / kMillimetresPerMetre;
}

void CkDepthImportDialog::adaptToUnit() {
    const double millimetres = m_pUnit->currentData().toDouble();
    const bool other = millimetres <= kOther;
    m_pMillimetres->setEnabled(other);
    m_pMillimetres->setToolTip(other ? QString() : tr("Choose \"Another scale\" to type one"));
    if (!other) {
        m_pMillimetres->setValue(millimetres);
    }
    showRange();
}

void CkDepthImportDialog::showRange() {
    if (m_fLargest < m_fSmallest) {
        m_pRange->setText(tr("no value but 0"));
        return;
    }
    const double metres = metresPerCount();
    const double smallest = m_bHasZeros && !m_pZero->isChecked() ? std::min(m_fSmallest, 0.0) : m_fSmallest;
    const auto text = [](double value) { return PictureText::locale().toString(value, 'f', 3); };
    m_pRange->setText(tr("%1 m to %2 m").arg(text(smallest * metres), text(m_fLargest * metres)));
}
