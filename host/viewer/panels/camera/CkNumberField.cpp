#include "host/viewer/panels/camera/CkNumberField.h"

#include <QLocale>
#include <QRegularExpression>

#include <utility>

CkNumberField::CkNumberField(QWidget* pParent) : QDoubleSpinBox(pParent) {
    setKeyboardTracking(false);
    connect(this, &QAbstractSpinBox::editingFinished, this, [this] {
        if (const auto last = std::exchange(m_typed, std::nullopt)) {
            emit typed(*last);
        }
    });
}

void CkNumberField::stepBy(int iSteps) {
    QDoubleSpinBox::stepBy(iSteps);
    // A step also ends typing. The text is reported only if the step could not start from its value.
    const auto last = std::exchange(m_typed, std::nullopt);
    if (last && (!last->value || *last->value < minimum() || *last->value > maximum())) {
        emit typed(*last);
    }
}

QString CkNumberField::withoutUnit(const QString& sText) const {
    const QString unit = suffix().trimmed();
    QString text = sText.trimmed();
    if (!unit.isEmpty() && text.endsWith(unit)) {
        text.chop(unit.size());
    }
    return text.trimmed();
}

std::optional<double> CkNumberField::number(const QString& sText) const {
    QString text = withoutUnit(sText);
    const QString decimalSign = locale().decimalPoint();
    static const QRegularExpression kThousands(QStringLiteral("^[+-]?\\d{1,3}[.,]\\d{3}$"));
    if (!text.contains(decimalSign) && kThousands.match(text).hasMatch()) {
        return std::nullopt;
    }
    text.replace(QLatin1Char(','), QLatin1Char('.'));
    bool ok = false;
    const double value = QLocale::c().toDouble(text, &ok);
    return ok ? std::optional<double>(value) : std::nullopt;
}

QValidator::State CkNumberField::validate(QString& sText, int&) const {
    static const QRegularExpression kBeginning(QStringLiteral("^[+-]?\\d*([.,]\\d*)?([eE][+-]?\\d*)?$"));
    if (number(sText)) {
        return QValidator::Acceptable;
    }
    return kBeginning.match(withoutUnit(sText)).hasMatch() ? QValidator::Intermediate : QValidator::Invalid;
}

void CkNumberField::fixup(QString& sText) const {
    m_typed = SkTyped{withoutUnit(sText), std::nullopt};
}

double CkNumberField::valueFromText(const QString& sText) const {
    const auto value = number(sText);
    m_typed = SkTyped{withoutUnit(sText), value};
    return value.value_or(this->value());
}

QString CkNumberField::textFromValue(double fValue) const {
    QString text = QDoubleSpinBox::textFromValue(fValue);
    while (!m_trailingZeros && text.contains(locale().decimalPoint()) &&
           (text.endsWith(QLatin1Char('0')) || text.endsWith(locale().decimalPoint()))) {
        const bool sign = text.endsWith(locale().decimalPoint());
        text.chop(1);
        if (sign) {
            break;
        }
    }
    return text;
}
