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

bool CkDepthImportDialog::mayHoldDepths(const SkPicBufInfo& info) {
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
    m_depth = new QRadioButton(tr("&Depths"), this);
    m_depth->setObjectName(QStringLiteral("importDepth"));
    m_picture = new QRadioButton(tr("A grey &picture, samples as they are"), this);
    m_picture->setObjectName(QStringLiteral("importPicture"));
    createDetails();
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Open | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Open)->setDefault(true);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(name);
    layout->addSpacing(6);
    layout->addWidget(question);
    layout->addWidget(m_depth);
    layout->addWidget(m_details);
    layout->addWidget(m_picture);
    layout->addSpacing(6);
    layout->addWidget(buttons);

    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_depth, &QRadioButton::toggled, m_details, &QWidget::setEnabled);
    SkDepthScale proposed = proposal(picture, m_largest);
    proposed.zeroIsInvalid = m_hasZeros || !isFloatType(picture.dataType);
    setScale(proposed);
}

void CkDepthImportDialog::measure(const SkPicBuf& picture) {
    m_smallest = std::numeric_limits<double>::infinity();
    m_largest = -std::numeric_limits<double>::infinity();
    for (quint32 y = 0; y < picture.height; ++y) {
        for (quint32 x = 0; x < picture.width; ++x) {
            const double value = PictureColours::sampleValue(picture, x, y, 0);
            m_hasZeros = m_hasZeros || value == 0.0;
            if (value != 0.0 && std::isfinite(value)) {
                m_smallest = std::min(m_smallest, value);
                m_largest = std::max(m_largest, value);
            }
        }
    }
}

void CkDepthImportDialog::createDetails() {
    m_details = new QWidget(this);
    auto* form = new QFormLayout(m_details);
    form->setContentsMargins(24, 0, 0, 0);
    m_unit = new QComboBox(m_details);
    m_unit->setObjectName(QStringLiteral("importUnit"));
    m_unit->addItem(tr("Millimetres"), 1.0);
    m_unit->addItem(tr("Tenths of a millimetre"), 0.1);
    m_unit->addItem(tr("Centimetres"), 10.0);
    m_unit->addItem(tr("Metres"), kMillimetresPerMetre);
    m_unit->addItem(tr("1/256 metre"), kMillimetresPerMetre / 256.0);
    m_unit->addItem(tr("1/5000 metre"), kMillimetresPerMetre / 5000.0);
    m_unit->addItem(tr("Another scale"), kOther);
    form->addRow(tr("&Unit of a count:"), m_unit);
    m_millimetres = new QDoubleSpinBox(m_details);
    m_millimetres->setObjectName(QStringLiteral("importMillimetres"));
    m_millimetres->setDecimals(6);
    m_millimetres->setRange(0.000001, 1'000'000.0);
    m_millimetres->setSuffix(tr(" mm"));
    form->addRow(tr("A count of &1 is:"), m_millimetres);
    m_zero = new QCheckBox(tr("&0 means that nothing was measured"), m_details);
    m_zero->setObjectName(QStringLiteral("importZero"));
    m_zero->setToolTip(tr("Such pixels become \"not a number\" and make no points in 3D views"));
    form->addRow(QString(), m_zero);
    m_range = new QLabel(m_details);
    m_range->setObjectName(QStringLiteral("importRange"));
    form->addRow(tr("This picture then has:"), m_range);
    connect(m_unit, &QComboBox::currentIndexChanged, this, &CkDepthImportDialog::adaptToUnit);
    connect(m_millimetres, &QDoubleSpinBox::valueChanged, this, &CkDepthImportDialog::showRange);
    connect(m_zero, &QCheckBox::toggled, this, &CkDepthImportDialog::showRange);
}

void CkDepthImportDialog::setScale(const SkDepthScale& scale) {
    m_depth->setChecked(scale.isActive());
    m_picture->setChecked(!scale.isActive());
    m_details->setEnabled(scale.isActive());
    m_zero->setChecked(scale.zeroIsInvalid);
    if (scale.isActive()) {
        const double millimetres = scale.metresPerCount * kMillimetresPerMetre;
        m_unit->setCurrentIndex(m_unit->findData(kOther));
        m_millimetres->setValue(millimetres);
        for (int i = 0; i < m_unit->count(); ++i) {
            if (std::abs(m_unit->itemData(i).toDouble() - millimetres) < millimetres * 1e-9) {
                m_unit->setCurrentIndex(i);
            }
        }
    }
    adaptToUnit();
}

SkDepthScale CkDepthImportDialog::scale() const {
    SkDepthScale scale;
    scale.zeroIsInvalid = m_zero->isChecked();
    if (m_depth->isChecked()) {
        scale.metresPerCount = metresPerCount();
    }
    return scale;
}

double CkDepthImportDialog::metresPerCount() const {
    // The exact factor, not the rounded number in the field.
    const double unit = m_unit->currentData().toDouble();
    return (unit > kOther ? unit : m_millimetres->value()) / kMillimetresPerMetre;
}

void CkDepthImportDialog::adaptToUnit() {
    const double millimetres = m_unit->currentData().toDouble();
    const bool other = millimetres <= kOther;
    m_millimetres->setEnabled(other);
    m_millimetres->setToolTip(other ? QString() : tr("Choose \"Another scale\" to type one"));
    if (!other) {
        m_millimetres->setValue(millimetres);
    }
    showRange();
}

void CkDepthImportDialog::showRange() {
    if (m_largest < m_smallest) {
        m_range->setText(tr("no value but 0"));
        return;
    }
    const double metres = metresPerCount();
    const double smallest = m_hasZeros && !m_zero->isChecked() ? std::min(m_smallest, 0.0) : m_smallest;
    const auto text = [](double value) { return PictureText::locale().toString(value, 'f', 3); };
    m_range->setText(tr("%1 m to %2 m").arg(text(smallest * metres), text(m_largest * metres)));
}
