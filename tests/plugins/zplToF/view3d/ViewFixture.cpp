#include "tests/plugins/zplToF/view3d/ViewFixture.h"

#include "plugins/zplToF/view3d/CkToFRenderCapture.h"
#include "plugins/zplToF/view3d/CkToFScene.h"
#include "tests/support/TestFrames.h"

#include <QAction>
#include <QMenu>
#include <QTest>
#include <QToolBar>
#include <Qt3DExtras/Qt3DWindow>
#include <Qt3DRender/QRenderCapture>
#include <cmath>

namespace {

SkPicBufInfo packed(int width, int height, int channels, EkImageDataType type, int bits) {
    return SkPicBufInfo::of(quint32(width), quint32(height), quint32(channels), type, quint32(bits));
}

std::unique_ptr<CkImageData> twoChannels(const QString& name, int width, int height,
                                         const TestFrame::PixelAt& at, quint64 frameNumber) {
    auto frame = makeFrame(packed(width, height, 2, EkImageDataType::Float32, 32));
    SkPicBuf& picture = frame->picBuf();
    for (int y = 0; y < height; ++y) {
        auto* row = reinterpret_cast<float*>(picture.row(quint32(y)));
        for (int x = 0; x < width; ++x) {
            const DepthPixel pixel = at(x, y);
            row[2 * x] = pixel.value;
            row[2 * x + 1] = pixel.confidence;
        }
    }
    picture.additionalData.frameNumber = frameNumber;
    CkImageMetadata metadata;
    metadata.channelNames = {name, QStringLiteral("Confidence")};
    frame->setMetadata(metadata);
    return frame;
}

} // namespace

std::unique_ptr<CkImageData> TestFrame::phase(int width, int height, const PixelAt& at, quint64 frameNumber) {
    return twoChannels(QStringLiteral("Phase shift"), width, height, at, frameNumber);
}

std::unique_ptr<CkImageData> TestFrame::depth(int width, int height, const PixelAt& at, quint64 frameNumber) {
    return twoChannels(QStringLiteral("Depth"), width, height, at, frameNumber);
}

std::unique_ptr<CkImageData> TestFrame::generic(int width, int height, const FloatAt& at,
                                                quint64 frameNumber) {
    auto frame = makeFrame(packed(width, height, 1, EkImageDataType::Float32, 32));
    SkPicBuf& picture = frame->picBuf();
    for (int y = 0; y < height; ++y) {
        auto* row = reinterpret_cast<float*>(picture.row(quint32(y)));
        for (int x = 0; x < width; ++x) {
            row[x] = at(x, y);
        }
    }
    picture.additionalData.frameNumber = frameNumber;
    return frame;
}

std::unique_ptr<CkImageData> TestFrame::bytes(int width, int height,
                                              const std::function<int(int x, int y)>& at) {
    auto frame = makeFrame(packed(width, height, 1, EkImageDataType::UInt8, 8));
    SkPicBuf& picture = frame->picBuf();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            picture.row(quint32(y))[x] = quint8(at(x, y));
        }
    }
    return frame;
}

std::unique_ptr<CkImageData> TestFrame::zeroes(int width, int height, int channels, EkImageDataType type,
                                               int bits) {
    return makeFrame(packed(width, height, channels, type, bits));
}

ViewTest::ViewTest() {
    m_host.registerView(&m_source);
}

ViewTest::~ViewTest() = default;

std::unique_ptr<CkToF3DMdiView> ViewTest::open() {
    return std::make_unique<CkToF3DMdiView>(m_source.viewId(), -1, nullptr, nullptr);
}

void ViewTest::show(CkToF3DMdiView& view, QSize size) {
    view.resize(size);
    view.show();
    ASSERT_NE(view.scene(), nullptr);
    ASSERT_TRUE(waitFor([&view] { return view.scene()->isDrawn(); }));
}

QImage ViewTest::capture(CkToF3DMdiView& view) {
    return capture(*view.scene());
}

QImage ViewTest::capture(CkToFScene& scene) {
    QImage image;
    // A change made just before may miss the first frame.
    for (int i = 0; i < 2; ++i) {
        Qt3DRender::QRenderCaptureReply* reply = scene.requestCapture();
        if (reply == nullptr) {
            ADD_FAILURE() << "the scene is not drawn";
            return {};
        }
        EXPECT_TRUE(waitFor([reply] { return reply->isComplete(); }));
        image = scene.picture(*reply).convertToFormat(QImage::Format_RGB32);
        delete reply;
    }
    return image;
}

void ViewTest::give(CkToF3DMdiView& view, const std::unique_ptr<CkImageData>& frame) {
    view.updateWithConnectedImageData(frame.get(), false);
}

QAction* ViewTest::action(const CkToF3DMdiView& view, const QString& text) {
    const auto actions = view.findChildren<QAction*>();
    for (QAction* candidate : actions) {
        if (candidate->text() == text) {
            return candidate;
        }
    }
    ADD_FAILURE() << "no action " << text.toStdString();
    return nullptr;
}

bool ViewTest::waitFor(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, 30000);
}

void ViewTest::letEventsHappen(int milliseconds) {
    QTest::qWait(milliseconds);
}

QPointF ViewTest::project(const QVector3D& point, const QSize& size, float distance) {
    const double halfHeight = std::tan(22.5 * M_PI / 180.0) * double(distance - point.z());
    const double halfWidth = halfHeight * 16.0 / 9.0;
    return {(double(point.x()) / halfWidth + 1.0) / 2.0 * size.width(),
            (1.0 - double(point.y()) / halfHeight) / 2.0 * size.height()};
}
