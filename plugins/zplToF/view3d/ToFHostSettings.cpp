#include "plugins/zplToF/view3d/ToFHostSettings.h"

#include "zuCoreGui/IkAppDelegate.h"

#include <QSettings>

std::unique_ptr<QSettings> ToFHostSettings::open() {
    IkAppDelegate* host = IkAppDelegate::instance();
    return std::unique_ptr<QSettings>(host != nullptr ? host->settings() : nullptr);
}

SkToFViewSettings ToFHostSettings::readView() {
    const auto settings = open();
    return settings ? SkToFViewSettings::read(*settings) : SkToFViewSettings();
}

QColor ToFHostSettings::readBackground() {
    const auto settings = open();
    return settings ? SkToFViewSettings::readBackground(*settings) : SkToFViewSettings::defaultBackground();
}

void ToFHostSettings::write(const char* key, const QVariant& value) {
    if (const auto settings = open()) {
        settings->setValue(QLatin1String(key), value);
    }
}
