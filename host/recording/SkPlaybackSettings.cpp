#include "host/recording/SkPlaybackSettings.h"

#include <QDomElement>

#include <algorithm>
#include <cmath>

namespace {

const QString kLoop = QStringLiteral("loop");
const QString kPace = QStringLiteral("pace");
const QString kSpeed = QStringLiteral("speed");
const QString kMetresPerCount = QStringLiteral("metresPerCount");
const QString kZeroIsInvalid = QStringLiteral("zeroIsNothing");

QString exactNumber(double value) {
    return QString::number(value, 'g', 17);
}

} // namespace

std::optional<double> SkPlaybackSettings::toSpeed(double fSpeed) {
    if (!std::isfinite(fSpeed)) {
        return {};
    }
    return std::clamp(fSpeed, kSlowestSpeed, kFastestSpeed);
}

void SkPlaybackSettings::save(QDomElement& element) const {
    element.setAttribute(kLoop, loop ? 1 : 0);
    element.setAttribute(kPace, int(pace));
    element.setAttribute(kSpeed, exactNumber(speed));
    if (scale.isActive()) {
        element.setAttribute(kMetresPerCount, exactNumber(scale.metresPerCount));
        element.setAttribute(kZeroIsInvalid, scale.zeroIsInvalid ? 1 : 0);
    }
}

SkPlaybackSettings SkPlaybackSettings::load(const QDomElement& element) {
    SkPlaybackSettings settings;
    settings.loop = element.attribute(kLoop).toInt() != 0;
    settings.pace = toPace(element.attribute(kPace).toInt());
    bool isNumber = false;
    const double speed = element.attribute(kSpeed).toDouble(&isNumber);
    if (isNumber) {
        settings.speed = toSpeed(speed).value_or(settings.speed);
    }
    const double metres = element.attribute(kMetresPerCount).toDouble();
    settings.scale.metresPerCount = std::isfinite(metres) ? std::max(metres, 0.0) : 0.0;
    settings.scale.zeroIsInvalid = element.attribute(kZeroIsInvalid, QStringLiteral("1")).toInt() != 0;
    return settings;
}
