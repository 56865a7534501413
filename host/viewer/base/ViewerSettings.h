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

/// The file of the store; empty: the user's own. To be called before the first open(); user-interface thread.
void setFileName(const QString& sFileName);
/// Each call returns a new object on the same store.
std::unique_ptr<QSettings> open();

inline const QString kGeometryKey = QStringLiteral("Viewer/Geometry");
inline const QString kStateKey = QStringLiteral("Viewer/State");
inline const QString kArrangeKey = QStringLiteral("Viewer/Arrange");
inline const QString kSessionKey = QStringLiteral("Viewer/Session"); ///< see SessionWriter
inline const QString kReopenCamerasKey = QStringLiteral("Viewer/ReopenCameras");
inline const QString kLastDirectoryKey = QStringLiteral("Viewer/LastDirectory");
inline const QString kRecentChainsKey = QStringLiteral("Viewer/RecentChains");
QString pseudoColorKey(bool bFloat);

/// Index of the pseudo-colour table of new views: a colourful one for floating-point samples, grey for
/// integers.
int defaultPseudoColor(bool bFloat);

/// The folder in which file dialogs start: that of the file opened or saved last. Empty before the first.
QString lastDirectory();
void setLastDirectory(const QString& sDirectory);

} // namespace ViewerSettings
