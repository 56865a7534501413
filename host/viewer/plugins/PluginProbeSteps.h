#pragma once

#include <QByteArray>

/// What the viewer and the probe program tell each other: lines on the probe's standard output.
namespace PluginProbeSteps {

/// Said before each step, so that the viewer knows which one the plug-in did not come back from.
inline const QByteArray kStart = QByteArrayLiteral("start");
inline const QByteArray kEnd = QByteArrayLiteral("end");
/// The plug-in came through all steps.
inline const QByteArray kDone = QByteArrayLiteral("done");
/// The plug-in was refused in an orderly way; what follows on the line is the message.
inline const QByteArray kRefused = QByteArrayLiteral("refused ");

/// Set in the probe's environment, for plug-ins that want to hold back there.
inline constexpr const char* kVariable = "ZU_PLUGIN_PROBE";

} // namespace PluginProbeSteps
