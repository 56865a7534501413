#include "host/viewer/panels/camera/CkParamEditor.h"

#include "zuCore/CkCameraParam.h"
#include "zuCoreGui/CkTuningBar.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int kDragDelayMs = 60;
constexpr int kFineDecimals = 9;
constexpr double kSameValue = 1e-9; ///< relative

// As many decimals as the step needs. Without a step any value is possible, and none may be rounded.
int decimalsOf(const CkCameraParam::SkDescription& description) {
    if (description.kind == CkCameraParam::EkKind::Integer) {
        return 0;
    }
    if (!(description.step > 0.0)) {
        return kFineDecimals;
    }
    if (description.step >= 1.0) {
        return 2;
    }
    return std::clamp(int(std::ceil(-std::log10(description.step) - 1e-9)), 1, 6);
}

// Drivers write "u" for micro; show the micro sign.
QString unitText(const CkCameraParam::SkDescription& description) {
    if (description.unit.isEmpty()) {
        return {};
    }
    const bool micro = description.unit == QLatin1String("us") || description.unit == QLatin1String("um");
    return QLatin1Char(' ') + (micro ? QChar(0xb5) + description.unit.mid(1) : description.unit);
}

} // namespace

CkParamEditor::CkParamEditor(CkCameraParam* pParam, QWidget* pParent) : QWidget(pParent), m_pParam(pParam) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(1);
    m_pRow = new QHBoxLayout;
    m_pRow->setSpacing(4);
    column->addLayout(m_pRow);
    m_pRemark = new QLabel(this);
    m_pRemark->setObjectName(QStringLiteral("paramRemark"));
    m_pRemark->setWordWrap(true);
    m_pRemark->setStyleSheet(QStringLiteral("color: #9a5b00"));
    m_pRemark->hide();
    column->addWidget(m_pRemark);
    const CkCameraParam::SkDescription& description = pParam->description();
    switch (description.kind) {
    case CkCameraParam::EkKind::Integer:
    case CkCameraParam::EkKind::Float:
        createNumber();
        break;
    case CkCameraParam::EkKind::Bool:
        createFlag();
        break;
    case CkCameraParam::EkKind::Enumeration:
        createList();
        break;
    }
    setToolTip(hint());
    setEnabled(!description.readOnly);
    showValue(pParam->paramValue());
    connect(pParam, &CkCameraParam::valueChanged, this, [this](const CkValue& vValue) {
        setRemark(QString());
        showValue(vValue);
    });
    m_delay.setSingleShot(true);
    m_delay.setInterval(kDragDelayMs);
    connect(&m_delay, &QTimer::timeout, this, [this] {
        applyNumber(m_fDelayed);
        m_bRefused = false; // nothing was typed
    });
}

void CkParamEditor::createNumber() {
    const CkCameraParam::SkDescription& description = m_pParam->description();
    const bool limited = description.maximum > description.minimum && std::isfinite(description.minimum) &&
                         std::isfinite(description.maximum);
    const double step = description.step > 0.0 ? description.step : 1.0;
    if (limited) {
        m_pBar = new CkTuningBar(this);
        m_pBar->setRange(CkValue(description.minimum), CkValue(description.maximum), CkValue(step));
        m_pRow->addWidget(m_pBar);
        connect(m_pBar, &CkTuningBar::valueChanged, this, [this](const CkValue& vValue) {
            m_fDelayed = vValue.toDouble();
            const QSignalBlocker blocker(m_pNumber);
            m_pNumber->setValue(m_fDelayed);
            m_delay.start();
        });
    }
    m_pNumber = new CkNumberField(this);
    m_pNumber->setDecimals(decimalsOf(description));
    m_pNumber->setShowsTrailingZeros(m_pNumber->decimals() < kFineDecimals);
    m_pNumber->setRange(limited ? description.minimum : -1e12, limited ? description.maximum : 1e12);
    m_pNumber->setSingleStep(step);
    m_pNumber->setAlignment(Qt::AlignRight);
    m_pNumber->setMinimumWidth(96);
    m_pNumber->setMaximumWidth(150);
    m_pNumber->setSuffix(unitText(description));
    m_pRow->addWidget(m_pNumber);
    connect(m_pNumber, &QDoubleSpinBox::valueChanged, this, [this](double fValue) {
        m_delay.stop();
        applyNumber(fValue);
    });
    connect(m_pNumber, &CkNumberField::typed, this, &CkParamEditor::remarkOn);
}

void CkParamEditor::createFlag() {
    m_pFlag = new QCheckBox(this);
    m_pRow->addWidget(m_pFlag);
    connect(m_pFlag, &QCheckBox::toggled, this, [this](bool bChecked) { apply(CkValue(bChecked)); });
}

void CkParamEditor::createList() {
    m_pList = new QComboBox(this);
    m_pList->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_pList->setMinimumContentsLength(12);
    for (const CkCameraParam::SkEnumEntry& entry : m_pParam->description().entries) {
        m_pList->addItem(entry.text, entry.value);
    }
    m_pRow->addWidget(m_pList);
    connect(m_pList, &QComboBox::activated, this,
            [this](int iIndex) { apply(CkValue(m_pList->itemData(iIndex).toLongLong())); });
}

QString CkParamEditor::hint() const {
    const CkCameraParam::SkDescription& description = m_pParam->description();
    QString text = description.toolTip.isEmpty() ? description.displayName : description.toolTip;
    if (m_pNumber != nullptr) {
        const QString unit = unitText(description);
        const QLocale number;
        text += QLatin1Char('\n') + tr("From %1 to %2%3, in steps of %4")
                                        .arg(number.toString(description.minimum, 'g', 10))
                                        .arg(number.toString(description.maximum, 'g', 10))
                                        .arg(unit)
                                        .arg(number.toString(description.step, 'g', 10));
    }
    if (description.readOnly) {
        text += QLatin1Char('\n') + tr("The camera does not let this be changed.");
    }
    return text + QLatin1Char('\n') + tr("Name: %1").arg(description.name);
}

void CkParamEditor::showValue(const CkValue& vValue) {
    if (m_pNumber != nullptr && !m_delay.isActive()) {
        const QSignalBlocker blockNumber(m_pNumber);
        m_pNumber->setValue(vValue.toDouble());
        if (m_pBar != nullptr) {
            m_pBar->setValue(vValue);
        }
    } else if (m_pFlag != nullptr) {
        const QSignalBlocker blocker(m_pFlag);
        m_pFlag->setChecked(vValue.toBool());
    } else if (m_pList != nullptr) {
        showListValue(vValue.toInt64());
    }
}

void CkParamEditor::showListValue(qint64 iValue) {
    int index = m_pList->findData(iValue);
    if (index < 0) {
        // A value that is not in the list (set by a program, accepted by the camera) is shown as a number.
        m_pList->addItem(tr("Other (%1)").arg(iValue), iValue);
        index = m_pList->count() - 1;
    }
    m_pList->setCurrentIndex(index);
}

void CkParamEditor::applyNumber(double fValue) {
    apply(m_pParam->description().kind == CkCameraParam::EkKind::Integer
              ? CkValue(qint64(std::llround(fValue)))
              : CkValue(fValue));
}

void CkParamEditor::apply(const CkValue& vValue) {
    m_bRefused = !m_pParam->setParamValue(vValue) || !m_pParam->commit();
    setRemark(m_bRefused ? tr("The camera refused it; the old value stays.") : QString());
    if (m_bRefused) {
        emit refused(m_pParam->description().displayName);
    }
    showValue(m_pParam->committedValue());
}

void CkParamEditor::remarkOn(const CkNumberField::SkTyped& typed) {
    const CkValue now = m_pParam->committedValue();
    if (std::exchange(m_bRefused, false)) {
        return;
    }
    if (!typed.value) {
        setRemark(tr("\"%1\" is not a clear number; %2 stays.").arg(typed.text, numberText(now)));
        return;
    }
    const double wanted = *typed.value;
    const bool asTyped = std::abs(wanted - now.toDouble()) <= kSameValue * std::max(1.0, std::abs(wanted));
    setRemark(asTyped ? QString()
              : wanted > m_pNumber->maximum()
                  ? tr("%1 is too large; %2 was set.").arg(typed.text, numberText(now))
              : wanted < m_pNumber->minimum()
                  ? tr("%1 is too small; %2 was set.").arg(typed.text, numberText(now))
                  : tr("%1 is between two steps; %2 was set.").arg(typed.text, numberText(now)));
}

QString CkParamEditor::numberText(const CkValue& vValue) const {
    return m_pNumber->textFromValue(vValue.toDouble()) + m_pNumber->suffix();
}

QString CkParamEditor::remark() const {
    return m_pRemark->text();
}

void CkParamEditor::setRemark(const QString& sRemark) {
    m_pRemark->setText(sRemark);
    m_pRemark->setVisible(!sRemark.isEmpty());
}
