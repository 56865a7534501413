#pragma once

#include "plugins/zplToF/view3d/3dMdiView.h"
#include "tests/support/FakeAppDelegate.h"
#include "zuCore/CkImageData.h"

#include <QImage>
#include <QSize>
#include <QVector3D>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

class CkToFScene;
class QAction;

/// One pixel of a frame that has a confidence.
struct DepthPixel {
    float value;
    float confidence;
};

/// Frames as cameras and chains deliver them, from a function of the pixel.
namespace TestFrame {
using FloatAt = std::function<float(int x, int y)>;
using PixelAt = std::function<DepthPixel(int x, int y)>;

/// Two float channels, "Phase shift" and "Confidence".
std::unique_ptr<CkImageData> phase(int width, int height, const PixelAt& at, quint64 frameNumber = 0);
/// Two float channels, "Depth" and "Confidence".
std::unique_ptr<CkImageData> depth(int width, int height, const PixelAt& at, quint64 frameNumber = 0);
/// One float channel that is neither phase shift nor depth; NaN: no point.
std::unique_ptr<CkImageData> generic(int width, int height, const FloatAt& at, quint64 frameNumber = 0);
/// One channel of unsigned bytes.
std::unique_ptr<CkImageData> bytes(int width, int height, const std::function<int(int x, int y)>& at);
/// Samples of any type, all zero.
std::unique_ptr<CkImageData> zeroes(int width, int height, int channels, EkImageDataType type, int bits);
} // namespace TestFrame

/// The view that the 3D view follows.
class SourceView : public CkMdiView {
public:
    using CkMdiView::CkMdiView;
    CkImageData* currentImage() override { return shown.get(); }
    QList<void*> cameraHandles() const override { return handles; }

    std::unique_ptr<CkImageData> shown;
    QList<void*> handles;
};

/// A host with one view that 3D views can be opened on.
class ViewTest : public ::testing::Test {
protected:
    ViewTest();
    ~ViewTest() override;

    /// A 3D view of the source view; hidden.
    std::unique_ptr<CkToF3DMdiView> open();
    /// Shows the view in this size and waits until its scene is drawn.
    void show(CkToF3DMdiView& view, QSize size = QSize(640, 480));
    /// The scene as drawn in the next frames.
    static QImage capture(CkToF3DMdiView& view);
    static QImage capture(CkToFScene& scene);
    /// Passes a frame to the view as the plug-in does.
    void give(CkToF3DMdiView& view, const std::unique_ptr<CkImageData>& frame);

    static QAction* action(const CkToF3DMdiView& view, const QString& text);
    /// Processes events until the condition holds; false after 30 seconds.
    static bool waitFor(const std::function<bool()>& condition);
    static void letEventsHappen(int milliseconds);

    /// Where a point of the scene is drawn in a picture of this size by a camera at (0, 0, distance) that
    /// looks at the origin, with a vertical field of view of 45 degrees and an aspect ratio of 16:9.
    static QPointF project(const QVector3D& point, const QSize& size, float distance = 3.0F);

    FakeAppDelegate m_host;
    SourceView m_source;
};
