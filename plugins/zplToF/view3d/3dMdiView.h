#pragma once

#include "plugins/zplToF/view3d/CkToFCloudModel.h"
#include "plugins/zplToF/view3d/CkToFFollowingView.h"
#include "plugins/zplToF/view3d/CkToFInputRegulator.h"
#include "plugins/zplToF/view3d/CkToFViewLut.h"
#include "plugins/zplToF/view3d/ToFSceneAttribute.h"

#include <memory>

class CkToFScene;
class CkToFViewToolBar;

/// The frames of another view as a coloured point cloud in space. User-interface thread.
///
/// A frame becomes a depth picture (updateDepthImage), the depth picture a cloud (updatePointCloudGeometry),
/// the cloud the buffers of the scene. While the scene is not on screen only the depth picture follows the
/// frames; the cloud is built when the scene is shown again. Where no OpenGL context can run the shaders the
/// view shows an error label in place of the scene, and everything else works.
class CkToF3DMdiView : public CkToFFollowingView {
    Q_OBJECT

public:
    /// iConnectedViewId: the view whose frames are shown. iSecondViewId is only passed on to clones. Both
    /// blocks may be null.
    CkToF3DMdiView(int iConnectedViewId, int iSecondViewId, CkChainable* pProvider, CkChainable* pSecond);
    ~CkToF3DMdiView() override;

public slots:
    // The numbers of the slots are part of the interface: keep the order.

    /// Shows or hides the box around the volume and stores the choice.
    void showBoundingBox(bool bShow);
    /// 0xRRGGBB; stored.
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
    int viewCaps() const override { return m_model.usesPoints() ? 0 : NativeWindowCap; }
    bool containsData() const override { return false; }
    CkLut* viewLut(bool* pbFlag1, bool* pbFlag2, unsigned int* puiBits) override;
    void setViewLut(CkLut* pLut, bool bFlag1, bool bFlag2, bool bUpdate) override;
    /// The depth picture with the metadata of the frame it was made from.
    CkImageData* currentImage() override { return m_model.imageData(); }
    CkMdiView* clone(CkChainable* pProvider, CkChainable* pSecond) override;

    /// Reads the distance offset from the settings again, after a calibration has stored a new one.
    void updateAfterDistanceOffsetChanged();

    /// Makes the depth and confidence pictures and the colouring of a frame. No-op without pixels.
    void updateDepthImage(const CkImageData* pData);
    /// Builds the cloud from the depth picture and updates the scene, the tool bar and the box.
    void updatePointCloudGeometry();
    /// Half extents of the box in scene units.
    void updateBBoxGeometry(float fHalfX, float fHalfY, float fHalfZ);

    /// Null without a renderer, without a geometry, or when no attribute has exactly this name.
    static Qt3DCore::QAttribute* getSceneAttribute(const Qt3DRender::QGeometryRenderer* pRenderer,
                                                   const QString& sName) {
        return ToFSceneAttribute::find(pRenderer, sName);
    }
    /// The name of every index attribute of the scene.
    static QString indexBufferName() { return ToFSceneAttribute::indexName(); }

    // For applications that call the view by the names of its meta-methods (command lines, scripts). Not
    // slots, so that the numbers of the slots stay.

    /// Saves the scene to a PNG, JPEG or BMP file: the capture of "Screenshot" without its dialog.
    /// Asynchronous: false when no capture can be requested; otherwise the complete file appears when the
    /// capture has completed. May be called again while an earlier capture is pending.
    Q_INVOKABLE bool grabScene(const QString& sFileName);
    /// Writes the current cloud as PLY, the text of "Export data", without dialog or box. False when there
    /// are no points or the file cannot be written; an existing file is then unchanged.
    Q_INVOKABLE bool savePly(const QString& sFileName);

    // State, for tools and tests.

    /// Null when the scene cannot be drawn.
    CkToFScene* scene() const { return m_scene.get(); }
    const CkToFCloudModel& model() const { return m_model; }
    const SkToFViewSettings& options() const { return m_model.options(); }
    const CkToFDepthFrame& depthFrame() const { return m_model.frame(); }
    const CkToFCloudBuilder& cloud() const { return m_model.cloud(); }

protected:
    void resizeEvent(QResizeEvent* pEvent) override;
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;
    void showImageData(const CkImageData* pData, bool bForce) override;

private:
    QWidget* createSceneWidget();

    CkToFCloudModel m_model;
    CkToFViewLut m_lut;
    CkToFInputRegulator m_regulator;
    bool m_buildPending = false; ///< the cloud is older than the depth picture
    std::unique_ptr<CkToFScene> m_scene;
    CkToFViewToolBar* m_toolBar = nullptr;
};
