#pragma once

#include "plugins/zplToF/view3d/SkToFViewSettings.h"

#include <QColor>
#include <memory>

class QSettings;
class QVariant;

/// The settings of the application that the 3D view and the calibration use. Outside an application reading
/// returns the defaults and writing is a no-op. User-interface thread.
namespace ToFHostSettings {

/// A new object on every call. Null outside an application.
std::unique_ptr<QSettings> open();

SkToFViewSettings readView();
/// Opaque.
QColor readBackground();

/// key: one of ToFSettingsKey.
void write(const char* key, const QVariant& value);

} // namespace ToFHostSettings
