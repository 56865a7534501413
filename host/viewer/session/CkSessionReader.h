#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QList>
#include <QStringList>

class CkCameraController;
class CkChain;
class CkMdiView;
class CkViewArea;
class QDomElement;

struct SkRestoredSession {
    /// What could not be reopened, as texts for the user; everything else is open. The view of a missing
    /// recording is kept for a later session that finds the file.
    QStringList problems;
    /// Identifiers of the picture views that a 3D view followed. Reopening it is left to the plug-in.
    QList<int> viewsWith3d;
};

/// Reopens the contents of a session written by SessionWriter. One session per object; user-interface thread.
class CkSessionReader {
    Q_DECLARE_TR_FUNCTIONS(CkSessionReader)

public:
    /// Views go to the area, cameras are opened by the controller; both outlive the reader.
    CkSessionReader(CkViewArea* pArea, CkCameraController* pCameras);

    /// Restores the session in the settings, unless the user has disabled that, and logs its problems.
    static SkRestoredSession restoreLast(CkViewArea* pArea, CkCameraController* pCameras);

    /// A text that is not a session, or of a newer version, is a problem, and nothing is opened.
    SkRestoredSession restore(const QByteArray& text);

    /// The 3D view that follows a restored view has been opened, or cannot be; from now on the session
    /// records the actual state.
    static void set3dViewOpened(CkMdiView& view);

private:
    void openCamera(const QDomElement& element);
    void openChain(const QDomElement& element);
    void openView(const QDomElement& element);
    void start();
    bool needsMissingCamera(const QDomElement& chain) const;
    void reportMissingRecordings(const CkChain& chain);

    CkViewArea* m_area;
    CkCameraController* m_cameras;
    SkRestoredSession m_restored;
    QList<CkChain*> m_chains; ///< null for those that cannot be opened: the indices in the text stay valid
    QList<CkChain*> m_shown;
    QList<void*> m_running;
    QStringList m_missing; ///< identifiers of cameras
    int m_active = -1;
};
