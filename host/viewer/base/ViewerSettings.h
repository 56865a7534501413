#pragma once

#include <QString>
#include <memory>

class QSettings;

/// The viewer's settings store and every key that the viewer itself uses. Plug-ins use the same store under
/// keys of their own ("ToF." ...).
///
/// | key                          | type       | default        | written by       |
/// |------------------------------|------------|----------------|------------------|
/// | Viewer/Geometry              | byte array | none           | SkWindowLayout   |
/// | Viewer/State                 | byte array | none           | SkWindowLayout   |
/// | Viewer/Arrange               | bool       | true           | SkWindowLayout   |
/// | Viewer/Session               | byte array | empty          | SkWindowLayout   |
/// | Viewer/ReopenCameras         | bool       | true           | Camera menu      |
/// | Viewer/LastDirectory         | string     | empty          | file dialogs     |
/// | Viewer/PseudoColorInteger    | int        | 0 (grey)       | colour panel     |
/// | Viewer/PseudoColorFloat      | int        | see .cpp       | colour panel     |
/// | Viewer/RecentChains          | strings    | empty          | File menu        |
namespace ViewerSettings {

/// Empty: the user's own store. To be called before the first open(); user-interface thread.
void setFileName(const QString& sFileName);
/// Each call returns a new object on the same store.
std::unique_ptr<QSettings> open();

inline QString keyGeometry() {
    return QStringLiteral("Viewer/Geometry");
}
inline QString keyState() {
    return QStringLiteral("Viewer/State");
}
inline QString keyArrange() {
    return QStringLiteral("Viewer/Arrange");
}
/// See SessionWriter.
inline QString keySession() {
    return QStringLiteral("Viewer/Session");
}
inline QString keyReopenCameras() {
    return QStringLiteral("Viewer/ReopenCameras");
}
inline QString keyLastDirectory() {
    return QStringLiteral("Viewer/LastDirectory");
}
inline QString keyRecentChains() {
    return QStringLiteral("Viewer/RecentChains");
}
inline QString keyPseudoColor(bool bFloat) {
    return bFloat ? QStringLiteral("Viewer/PseudoColorFloat") : QStringLiteral("Viewer/PseudoColorInteger");
}
/// Index of the pseudo-colour table of new views: a colourful one for floating-point samples, grey for
/// integers.
int defaultPseudoColor(bool bFloat);

} // namespace ViewerSettings
