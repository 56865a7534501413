#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>

class CkCameraPanel;
class CkChain;
class CkViewArea;
class QTabWidget;

/// The open cameras of the viewer: their panels, and the chains and views made for them. User-interface
/// thread.
class CkCameraController : public QObject {
    Q_OBJECT

public:
    /// Panels become tabs of pPanels.
    CkCameraController(CkViewArea* pArea, QTabWidget* pPanels, QObject* pParent = nullptr);
    ~CkCameraController() override;

    /// Opens a camera with a panel and, with bWithView, a picture view on a chain of its own. Returns its
    /// handle, also when it is already open; null, with psError set, on failure.
    void* openCamera(const QString& sId, bool bWithView, QString* psError = nullptr);

    /// Opens another picture view with a new chain on a camera. Returns its identifier, or -1.
    int openView(void* pHandle);

    /// Starts a camera and every chain it feeds. A camera without a view gets one, and one of the camera's
    /// views is active afterwards. Null: the current camera.
    bool start(void* pHandle, QString* psError = nullptr);
    bool stop(void* pHandle);

    /// Closes a camera with its views, chains and panel.
    void closeCamera(void* pHandle);
    /// As if the cable had been pulled: views, chains and panel stay until the camera is plugged in again.
    void unplugCamera(void* pHandle);
    void plugCameraIn(const QString& sId);
    void closeAllCameras();

    /// The camera of the active view; if that has none, the camera of the current panel; or null.
    void* currentCamera() const;
    /// Null for a camera without a panel.
    CkCameraPanel* panel(void* pHandle) const;
    QList<CkChain*> chainsOf(void* pHandle) const;
    /// Identifiers of the views that show the camera, in order of opening.
    QList<int> viewsOf(void* pHandle) const;

signals:
    /// A new camera has its panel; plug-ins may add to it now.
    void cameraReady(void* pHandle);
    /// currentCamera may return another camera.
    void currentCameraChanged();

private:
    void addPanel(void* pHandle);
    void removeViewsAndPanel(void* pHandle);
    void* cameraOfActiveView() const;
    void showPanelOfActiveView();
    void activateViewOfShownPanel();
    void report(const QString& sText) const;

    CkViewArea* m_area;
    QTabWidget* m_tabs;
    QHash<void*, QPointer<CkCameraPanel>> m_panels;
    bool m_withView = true;
};
