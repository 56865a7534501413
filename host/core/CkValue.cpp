#include "zuCore/CkValue.h"

#include <QLocale>
#include <algorithm>
#include <cmath>
#include <limits>

namespace {

qint64 saturatedInt64(double value) {
    // 2^63 is the first double beyond the range; the largest qint64 itself cannot be represented as a double.
    constexpr double kLimit = 9223372036854775808.0;
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= kLimit) {
        return std::numeric_limits<qint64>::max();
    }
    if (value < -kLimit) {
        return std::numeric_limits<qint64>::min();
    }
    return qint64(value);
}

double numberIn(const QString& text) {
    bool ok = false;
    const double value = text.toDouble(&ok);
    // For a number that is too large, toDouble reports failure but returns infinity, the saturated value.
    return ok || std::isinf(value) ? value : 0.0;
}

} // namespace

qint64 CkValue::toInt64() const {
    switch (type()) {
    case EkType::Int:
        return std::get<qint64>(m_value);
    case EkType::Float:
        return saturatedInt64(std::get<double>(m_value));
    case EkType::Bool:
        return std::get<bool>(m_value) ? 1 : 0;
    case EkType::String: {
        const QString& text = std::get<QString>(m_value);
        bool ok = false;
        const qint64 value = text.toLongLong(&ok);
        return ok ? value : saturatedInt64(numberIn(text));
    }
    case EkType::None:
        break;
    }
    return 0;
}

int CkValue::toInt() const {
    return int(
        std::clamp<qint64>(toInt64(), std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

double CkValue::toDouble() const {
    switch (type()) {
    case EkType::Int:
        return double(std::get<qint64>(m_value));
    case EkType::Float:
        return std::get<double>(m_value);
    case EkType::Bool:
        return std::get<bool>(m_value) ? 1.0 : 0.0;
    case EkType::String:
        return numberIn(std::get<QString>(m_value));
    case EkType::None:
        break;
    }
    return 0.0;
}

bool CkValue::toBool() const {
    if (type() == EkType::String) {
        const QString& text = std::get<QString>(m_value);
        return text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0 || numberIn(text) != 0.0;
    }
    return type() == EkType::Int ? std::get<qint64>(m_value) != 0 : toDouble() != 0.0;
}

QString CkValue::toString() const {
    switch (type()) {
    case EkType::Int:
        return QString::number(std::get<qint64>(m_value));
    case EkType::Float:
        return QString::number(std::get<double>(m_value), 'g', QLocale::FloatingPointShortest);
    case EkType::Bool:
        return std::get<bool>(m_value) ? QStringLiteral("true") : QStringLiteral("false");
    case EkType::String:
        return std::get<QString>(m_value);
    case EkType::None:
        break;
    }
    return {};
}
