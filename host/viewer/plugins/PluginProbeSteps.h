#pragma once

#include <QByteArray>

/// What the probe program reports to the viewer: lines on its standard output.
namespace PluginProbeSteps {

/// Written before each step, so that the viewer knows in which one the plug-in crashed or hung.
inline const QByteArray kStart = QByteArrayLiteral("start");
inline const QByteArray kEnd = QByteArrayLiteral("end");
/// The plug-in passed all steps.
inline const QByteArray kDone = QByteArrayLiteral("done");
/// The loader refused the plug-in; its message follows on the line.
inline const QByteArray kRefused = QByteArrayLiteral("refused ");

/// Environment variable of the probe, for plug-ins that want to do less there.
inline constexpr const char* kVariable = "ZU_PLUGIN_PROBE";

} // namespace PluginProbeSteps
