#pragma once

#include <QString>
#include <memory>

class QSettings;

/// Where the viewer keeps its settings, and every key the viewer itself uses. Plug-ins share the store under
/// keys of their own ("ToF." ...).
///
/// | key                          | type       | default        | written by       |
/// |------------------------------|------------|----------------|------------------|
/// | Viewer/Geometry              | byte array | none           | main window      |
/// | Viewer/State                 | byte array | none           | main window      |
/// | Viewer/Arrange              | bool       | true           | main window      |
/// | Viewer/Session              | byte array | empty          | main window      |
/// | Viewer/ReopenCameras        | bool       | true           | Camera menu      |
/// | Viewer/LastDirectory         | string     | empty          | file dialogs     |
/// | Viewer/PseudoColorInteger    | int        | 0 (grey)       | colour panel     |
/// | Viewer/PseudoColorFloat      | int        | see .cpp       | colour panel     |
/// | Viewer/RecentChains          | strings    | empty          | chain files      |
class CkViewerSettings {
public:
    /// Empty: the user's own store. Before the first use; user-interface thread.
    static void setFileName(const QString& sFileName);
    /// A new object on the same store at each call.
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
    /// A colourful map for measured values when there is one, grey for camera pictures.
    static int defaultPseudoColor(bool bFloat);
};
