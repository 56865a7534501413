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

CkParamEditor::CkParamEditor(CkCameraParam* pParam, QWidget* pParent) : QWidget(pParent), m_param(pParam) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(1);
    m_row = new QHBoxLayout;
    m_row->setSpacing(4);
    column->addLayout(m_row);
    m_remark = new QLabel(this);
    m_remark->setObjectName(QStringLiteral("paramRemark"));
    m_remark->setWordWrap(true);
    m_remark->setStyleSheet(QStringLiteral("color: #9a5b00"));
    m_remark->hide();
    column->addWidget(m_remark);
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
        applyNumber(m_delayed);
        m_refused = false; // nothing was typed
    });
}

void CkParamEditor::createNumber() {
    const CkCameraParam::SkDescription& description = m_param->description();
    const bool limited = description.maximum > description.minimum && std::isfinite(description.minimum) &&
                         std::isfinite(description.maximum);
    const double step = description.step > 0.0 ? description.step : 1.0;
    if (limited) {
        m_bar = new CkTuningBar(this);
        m_bar->setRange(CkValue(description.minimum), CkValue(description.maximum), CkValue(step));
        m_row->addWidget(m_bar);
        connect(m_bar, &CkTuningBar::valueChanged, this, [this](const CkValue& vValue) {
            m_delayed = vValue.toDouble();
            const QSignalBlocker blocker(m_number);
            m_number->setValue(m_delayed);
            m_delay.start();
        });
    }
    m_number = new CkNumberField(this);
    m_number->setDecimals(decimalsOf(description));
    m_number->setShowsTrailingZeros(m_number->decimals() < kFineDecimals);
    m_number->setRange(limited ? description.minimum : -1e12, limited ? description.maximum : 1e12);
    m_number->setSingleStep(step);
    m_number->setAlignment(Qt::AlignRight);
    m_number->setMinimumWidth(96);
    m_number->setMaximumWidth(150);
    m_number->setSuffix(unitText(description));
    m_row->addWidget(m_number);
    connect(m_number, &QDoubleSpinBox::valueChanged, this, [this](double fValue) {
        m_delay.stop();
        applyNumber(fValue);
    });
    connect(m_number, &CkNumberField::typed, this, &CkParamEditor::remarkOn);
}

void CkParamEditor::createFlag() {
    m_flag = new QCheckBox(this);
    m_row->addWidget(m_flag);
    connect(m_flag, &QCheckBox::toggled, this, [this](bool bChecked) { apply(CkValue(bChecked)); });
}

void CkParamEditor::createList() {
    m_list = new QComboBox(this);
    m_list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_list->setMinimumContentsLength(12);
    for (const CkCameraParam::SkEnumEntry& entry : m_param->description().entries) {
        m_list->addItem(entry.text, entry.value);
    }
    m_row->addWidget(m_list);
    connect(m_list, &QComboBox::activated, this,
            [this](int iIndex) { apply(CkValue(m_list->itemData(iIndex).toLongLong())); });
}

QString CkParamEditor::hint() const {
    const CkCameraParam::SkDescription& description = m_param->description();
    QString text = description.toolTip.isEmpty() ? description.displayName : description.toolTip;
    if (m_number != nullptr) {
        const QString unit = unitText(description);
        const QLocale number;
        text += QLatin1Char('\n') + tr("From %1 to %2%3, in steps of %4")
                                        .arg(number.toString(description.minimum, 'g', 10))
                                        .arg(number.toString(description.maximum, 'g', 10))
                                        .arg(unit)
                                        .arg(number.toString(description.step, 'g', 10));
    }
    if (description.readOnly) {
        text += QLatin1Char('\n') + tr("The camera does not allow this to be changed.");
    }
    return text + QLatin1Char('\n') + tr("Name: %1").arg(description.name);
}

void CkParamEditor::showValue(const CkValue& vValue) {
    if (m_number != nullptr && !m_delay.isActive()) {
        const QSignalBlocker blockNumber(m_number);
        m_number->setValue(vValue.toDouble());
        if (m_bar != nullptr) {
            m_bar->setValue(vValue);
        }
    } else if (m_flag != nullptr) {
        const QSignalBlocker blocker(m_flag);
        m_flag->setChecked(vValue.toBool());
    } else if (m_list != nullptr) {
        showListValue(vValue.toInt64());
    }
}

void CkParamEditor::showListValue(qint64 iValue) {
    int index = m_list->findData(iValue);
    if (index < 0) {
        // A value that is not in the list (set by a program, accepted by the camera) is shown as a number.
        m_list->addItem(tr("Other (%1)").arg(iValue), iValue);
        index = m_list->count() - 1;
    }
    m_list->setCurrentIndex(index);
}

void CkParamEditor::applyNumber(double fValue) {
    apply(m_param->description().kind == CkCameraParam::EkKind::Integer
              ? CkValue(qint64(std::llround(fValue)))
              : CkValue(fValue));
}

void CkParamEditor::apply(const CkValue& vValue) {
    m_refused = !m_param->setParamValue(vValue) || !m_param->commit();
    setRemark(m_refused ? tr("The camera refused it; the old value stays.") : QString());
    if (m_refused) {
        emit refused(m_param->description().displayName);
    }
    showValue(m_param->committedValue());
}

void CkParamEditor::remarkOn(const CkNumberField::SkTyped& typed) {
    const CkValue now = m_param->committedValue();
    if (std::exchange(m_refused, false)) {
        return;
    }
    if (!typed.value) {
        setRemark(tr("\"%1\" is not a clear number; %2 stays.").arg(typed.text, numberText(now)));
        return;
    }
    const double wanted = *typed.value;
    const bool asTyped = std::abs(wanted - now.toDouble()) <= kSameValue * std::max(1.0, std::abs(wanted));
    setRemark(asTyped ? QString()
              : wanted > m_number->maximum()
                  ? tr("%1 is too large; %2 was set.").arg(typed.text, numberText(now))
              : wanted < m_number->minimum()
                  ? tr("%1 is too small; %2 was set.").arg(typed.text, numberText(now))
                  : tr("%1 is between two steps; %2 was set.").arg(typed.text, numberText(now)));
}

QString CkParamEditor::numberText(const CkValue& vValue) const {
    return m_number->textFromValue(vValue.toDouble()) + m_number->suffix();
}

QString CkParamEditor::remark() const {
    return m_remark->text();
}

void CkParamEditor::setRemark(const QString& sRemark) {
    m_remark->setText(sRemark);
    m_remark->setVisible(!sRemark.isEmpty());
}
