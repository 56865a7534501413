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
    /// What could not be opened again, as texts for the user; everything else is open. A missing recording
    /// keeps its view, which waits for a later session that finds the file.
    QStringList problems;
    /// Identifiers of the picture views that a 3D view followed. Opening it again is left to the plug-in.
    QList<int> viewsWith3d;
};

/// Opens what a text of SessionWriter names. One text per object; user-interface thread.
class CkSessionReader {
    Q_DECLARE_TR_FUNCTIONS(CkSessionReader)

public:
    /// Views go to the area, cameras are opened by the controller; both outlive the reader.
    CkSessionReader(CkViewArea* pArea, CkCameraController* pCameras);

    /// Restores the session of the settings, unless the user has switched that off, and logs its problems.
    static SkRestoredSession restoreLast(CkViewArea* pArea, CkCameraController* pCameras);

    /// A text that is no session, or one of a newer version, is a problem and opens nothing.
    SkRestoredSession restore(const QByteArray& text);

    /// The 3D view that is to follow a restored view has been opened, or cannot be; from now on the session
    /// records whether one follows it.
    static void set3dViewOpened(CkMdiView& view);

private:
    void openCamera(const QDomElement& element);
    void openChain(const QDomElement& element);
    void openView(const QDomElement& element);
    void start();
    bool needsMissingCamera(const QDomElement& chain) const;
    void reportMissingRecordings(const CkChain& chain);

    CkViewArea* m_pArea;
    CkCameraController* m_pCameras;
    SkRestoredSession m_restored;
    QList<CkChain*> m_chains; ///< null for those that cannot be opened, so that the indices in the text hold
    QList<CkChain*> m_shown;
    QList<void*> m_running;
    QStringList m_missing; ///< identifiers of cameras
    int m_iActive = -1;
};
