#pragma once

#include "plugins/zplToF/cloud/CkToFCloudBuilder.h"
#include "plugins/zplToF/cloud/CkToFDepthFrame.h"
#include "plugins/zplToF/view3d/CkToFColorTable.h"
#include "plugins/zplToF/view3d/SkToFViewSettings.h"
#include "zuCoreGui/CkMdiView.h"

#include <QElapsedTimer>
#include <memory>

class CkToFOpticalPathSettingsDlg;
class CkToFScene;
class CkToFToolBar;
class QAction;

namespace Qt3DCore {
class QAttribute;
} // namespace Qt3DCore
namespace Qt3DRender {
class QGeometryRenderer;
} // namespace Qt3DRender

/// The frames of another view as a coloured point cloud in space. User-interface thread.
///
/// A frame becomes a depth picture (updateDepthImage), the depth picture a cloud (updatePointCloudGeometry),
/// the cloud the buffers of the scene. While the scene is not on screen only the depth picture follows the
/// frames; the cloud is built when the scene is shown again. Where no OpenGL context can run the shaders the
/// view says so in place of the scene and everything else works.
class CkToF3DMdiView : public CkMdiView {
    Q_OBJECT

public:
    /// iConnectedViewId: the view whose frames are shown. iSecondViewId is kept for clones only. Both blocks
    /// may be null.
    CkToF3DMdiView(int iConnectedViewId, int iSecondViewId, CkChainable* pProvider, CkChainable* pSecond);
    ~CkToF3DMdiView() override;

public slots:
    // The numbers of the slots are part of the interface: the order holds.

    /// Shows or hides the box around the volume and remembers it.
    void showBoundingBox(bool bShow);
    /// 0xRRGGBB; remembered.
    void selectBgColor(uint uiColor);
    void showOpticalPathDlg();
    /// Apply in the settings dialog, which is the sender.
    void onOpticalPathDlgValueChanged();
    /// Points of a larger confidence value are dropped; values that are not above 0 are ignored.
    void onConfidenceThresholdChanged(float fValue);
    /// The sender is an action whose text is the factor: "0.5x".
    void onZZoomChanged();
    /// The sender is an action whose text is a width in pixels.
    void onDepthResChanged();
    void moveToDefault3DPosition();
    void saveScreenshot();
    void onScreenshotRequestCompleted();
    void exportPointCould();
    void shaderProgramLogChanged(const QString& sLog);

public:
    int viewCaps() const override;
    int connectedViewId() const override;
    int secondViewId() const; ///< As given; what a clone is given, too.
    bool containsData() const override;
    QString viewTitle() const override;
    CkLut* viewLut(bool* pbFlag1, bool* pbFlag2, unsigned int* puiBits) override;
    void setViewLut(CkLut* pLut, bool bFlag1, bool bFlag2, bool bUpdate) override;
    /// The depth picture with the metadata of the frame it was made of.
    CkImageData* currentImage() override;
    /// The frame itself: of the view's own block until the next one comes, of the connected view while
    /// receivedFrame is emitted. Afterwards the depth picture made of that one.
    const CkImageData* imageData(qint32 iFrameId) override;
    CkChainable* dataProvider() const override;
    QList<void*> cameraHandles() const override;
    CkMdiView* clone(CkChainable* pProvider, CkChainable* pSecond) override;
    /// A frame of the connected view; bForce passes over the limit of the refresh rate.
    void updateWithConnectedImageData(const CkImageData* pData, bool bForce) override;

    /// Reads the distance offset from the settings again, after a calibration has stored a new one.
    void updateAfterDistanceOffsetChanged();
    /// The same for every 3D view there is.
    static void updateAllAfterDistanceOffsetChanged();

    /// Makes the depth and confidence pictures and the colouring of a frame. Nothing happens without pixels.
    void updateDepthImage(const CkImageData* pData);
    /// Builds the cloud from the depth picture and hands it to the scene, the export, the label and the box.
    void updatePointCloudGeometry();
    /// Half extents of the box in scene units.
    void updateBBoxGeometry(float fHalfX, float fHalfY, float fHalfZ);

    /// Null without a renderer, without a geometry, or when no attribute has exactly this name.
    static Qt3DCore::QAttribute* getSceneAttribute(const Qt3DRender::QGeometryRenderer* pRenderer,
                                                   const QString& sName);
    /// The name of every index attribute of the scene.
    static QString indexBufferName();

    // For applications that reach the view by the names of its meta-methods (command lines, scripts); no
    // slots, so that the numbers above stay.

    /// Saves the scene, by the same capture as "Screenshot" but without a dialog, to a PNG, JPEG or BMP file.
    /// Asynchronous: false when no capture can be requested; otherwise the file appears, complete at once,
    /// when the capture has come. May be called again while an earlier one is pending.
    Q_INVOKABLE bool grabScene(const QString& sFileName);
    /// Writes the current cloud as PLY, the text of "Export data", without dialog or box. False when there
    /// are no points or the file cannot be written; a file that was there before then stays untouched.
    Q_INVOKABLE bool savePly(const QString& sFileName);

    // What the view holds, for tools and tests.

    /// Null when the scene could not be made.
    CkToFScene* scene() const { return m_scene.get(); }
    const SkToFViewSettings& options() const { return m_options; }
    const CkToFDepthFrame& depthFrame() const { return m_frame; }
    const CkToFCloudBuilder& cloud() const { return m_cloud; }
    /// Whether points are drawn as single vertices by the billboard shaders, or as quads.
    bool usePointPrimitives() const { return m_bUsePointPrimitives; }
    int depthTexResolutionW() const { return m_iDepthTexResolutionW; }
    float zZoom() const { return m_fZZoom; }

protected:
    void resizeEvent(QResizeEvent* pEvent) override;
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

    void showFrame(std::unique_ptr<CkImageData> data) override;

private:
    void refreshTitle();
    void fillToolBar();
    QWidget* createSceneWidget();
    QWidget* sceneWidgetOrLabel();
    void sceneEvent(QEvent& event);

    void takeFrame(const CkImageData* pData, bool bForce);
    void showFigures();
    void takeOverDialogValues(const CkToFOpticalPathSettingsDlg& dialog);
    CkMdiView* connectedView() const;

    void updateLut();
    void createOwnLut();
    void updateGradientLutPic();

    const int m_iConnectedViewId;
    const int m_iSecondViewId;
    const bool m_bUsePointPrimitives;

    // Colouring.
    std::unique_ptr<CkLut> m_lut;
    bool m_bLutIsStandIn = false; ///< nobody chose the table: it was made before there was a picture
    bool m_bLutFlag1 = true;
    bool m_bLutFlag2 = false;
    CkToFColorTable m_colorTable;

    // The frame that is shown.
    CkToFDepthFrame m_frame;
    std::unique_ptr<CkImageData> m_data;
    const CkImageData* m_pArriving = nullptr;
    int m_iDepthTexResolutionW = 640;

    // The cloud made of it.
    SkToFViewSettings m_options;
    float m_fZZoom = 1.0F;
    CkToFCloudBuilder m_cloud;
    bool m_bBuildPending = false;
    QElapsedTimer inputTimer;

    std::unique_ptr<CkToFScene> m_scene;
    QAction* exportAction = nullptr;
    CkToFToolBar* m_pToolBar = nullptr;
};
