#include "zuCore/CkCameraParam.h"

#include "zuCore/CkCameraParameters.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

using SkDescription = CkCameraParam::SkDescription;

bool hasLimits(const SkDescription& description) {
    return description.minimum < description.maximum;
}

qint64 steppedInteger(const SkDescription& description, qint64 value) {
    if (!hasLimits(description)) {
        return value;
    }
    const qint64 minimum = CkValue(std::ceil(description.minimum)).toInt64();
    const qint64 maximum = CkValue(std::floor(description.maximum)).toInt64();
    if (value <= minimum || maximum <= minimum) {
        return minimum;
    }
    value = std::min(value, maximum);
    const quint64 step = quint64(std::max<qint64>(1, CkValue(description.step).toInt64()));
    // Unsigned: the distance between two 64-bit numbers may need all 64 bits.
    const quint64 distance = quint64(value) - quint64(minimum);
    const quint64 below = distance - distance % step;
    const quint64 range = quint64(maximum) - quint64(minimum);
    const bool up = distance % step >= step - distance % step && range - below >= step;
    return qint64(quint64(minimum) + below + (up ? step : 0));
}

double steppedFloat(const SkDescription& description, double value) {
    if (!hasLimits(description)) {
        return value;
    }
    value = std::clamp(value, description.minimum, description.maximum);
    if (!(description.step > 0.0)) {
        return value;
    }
    const double steps = std::round((value - description.minimum) / description.step);
    const double stepped = description.minimum + steps * description.step;
    if (stepped <= description.maximum) {
        return stepped;
    }
    // The last step is shorter than the others: rounding up to its end would exceed the maximum, unless the
    // excess is only a rounding error.
    return stepped - description.maximum < description.step * 1e-9 ? description.maximum
                                                                   : stepped - description.step;
}

std::optional<qint64> enumerationValue(const SkDescription& description, const CkValue& value) {
    if (!value.isValid()) {
        return std::nullopt;
    }
    if (value.type() == CkValue::EkType::String) {
        const QString text = value.toString();
        for (const CkCameraParam::SkEnumEntry& entry : description.entries) {
            if (entry.text == text) {
                return entry.value;
            }
        }
        bool isNumber = false;
        text.toLongLong(&isNumber);
        if (!isNumber) {
            return std::nullopt;
        }
    }
    const qint64 number = value.toInt64();
    const bool listed =
        std::any_of(description.entries.cbegin(), description.entries.cend(),
                    [number](const CkCameraParam::SkEnumEntry& entry) { return entry.value == number; });
    return listed || description.acceptsUnlisted ? std::optional<qint64>(number) : std::nullopt;
}

/// False, with accepted unchanged, when the parameter cannot take the value.
bool convert(const SkDescription& description, const CkValue& value, CkValue& accepted) {
    switch (description.kind) {
    case CkCameraParam::EkKind::Integer:
        accepted = steppedInteger(description, value.toInt64());
        return true;
    case CkCameraParam::EkKind::Float: {
        const double number = value.toDouble();
        if (std::isnan(number)) {
            return false;
        }
        accepted = steppedFloat(description, number);
        return true;
    }
    case CkCameraParam::EkKind::Bool:
        accepted = value.toBool();
        return true;
    case CkCameraParam::EkKind::Enumeration:
        if (const std::optional<qint64> number = enumerationValue(description, value)) {
            accepted = *number;
            return true;
        }
        break;
    }
    return false;
}

} // namespace

CkCameraParam::CkCameraParam(const SkDescription& description, CkCameraParameters* pParent)
    : QObject(pParent), m_description(description), m_pending(description.value) {}

CkCameraParam::~CkCameraParam() = default;

bool CkCameraParam::setParamValue(const CkValue& vValue) {
    if (m_description.readOnly) {
        return false;
    }
    CkValue accepted;
    if (!convert(m_description, vValue, accepted)) {
        return false;
    }
    if (accepted != m_pending) {
        m_pending = accepted;
        emit pendingValueChanged(m_pending);
    }
    return true;
}

bool CkCameraParam::commit() {
    auto* const parameters = qobject_cast<CkCameraParameters*>(parent());
    return parameters != nullptr && parameters->commitParams({this});
}
