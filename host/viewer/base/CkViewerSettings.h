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
class CkViewerSettings {
public:
    /// Empty: the user's own store. To be called before the first open(); user-interface thread.
    static void setFileName(const QString& sFileName);
    /// Each call returns a new object on the same store.
    static std::unique_ptr<QSettings> open();

    static QString keyGeometry() { return QStringLiteral("Viewer/Geometry"); }
    static QString keyState() { return QStringLiteral("Viewer/State"); }
    static QString keyArrange() { return QStringLiteral("Viewer/Arrange"); }
    /// See SessionWriter.
    static QString keySession() { return QStringLiteral("Viewer/Session"); }
    static QString keyReopenCameras() { return QStringLiteral("Viewer/ReopenCameras"); }
    static QString keyLastDirectory() { return QStringLiteral("Viewer/LastDirectory"); }
    static QString keyRecentChains() { return QStringLiteral("Viewer/RecentChains"); }
    static QString keyPseudoColor(bool bFloat) {
        return bFloat ? QStringLiteral("Viewer/PseudoColorFloat")
                      : QStringLiteral("Viewer/PseudoColorInteger");
    }
    /// Index of the pseudo-colour table of new views: a colourful one for floating-point samples, grey for
    /// integers.
    static int defaultPseudoColor(bool bFloat);
};
