// A program of its own, as it replaces the allocation functions.

#include "tests/plugins/zplToF/cloud/HeapWatch.h"
#include "tests/plugins/zplToF/view3d/ViewFixture.h"

#include "plugins/zplToF/view3d/CkToFScene.h"
#include <Qt3DCore/QAttribute>
#include <Qt3DCore/QBuffer>

namespace {

constexpr size_t kSmall = 4096;
constexpr int kWidth = 320;
constexpr int kHeight = 240;

class ToF3DViewMemoryTest : public ViewTest {};

/// Which pixels are dropped differs from frame to frame, and so does their number if requested.
std::unique_ptr<CkImageData> frameNumber(int i, bool sameCount) {
    return TestFrame::phase(
        kWidth, kHeight,
        [=](int x, int y) {
            const bool dropped = y == i || (!sameCount && y < 10 * i);
            return DepthPixel{1.0F + float((x + 7 * i) % 50) * 0.1F, dropped ? 99.0F : 0.1F};
        },
        quint64(i));
}

/// Qt 3D's buffer takes as much as the vertices; all other allocations of a frame must be small.
TEST_F(ToF3DViewMemoryTest, AFrameAllocatesNothingLargeBeyondWhatQtsBufferTakes) {
    m_host.store(QStringLiteral("ToF.OptCompensateDistorsion"), true);
    for (const bool sameCount : {true, false}) {
        std::vector<std::unique_ptr<CkImageData>> frames;
        for (int i = 0; i < 4; ++i) {
            frames.push_back(frameNumber(i, sameCount));
        }
        const auto view = open();
        show(*view, QSize(300, 260));
        const auto bufferSize = size_t(kWidth) * kHeight * CkToFCloudBuilder::kBytesPerVertex;
        for (int i = 0; i < 32; ++i) {
            const CkImageData* frame = frames[size_t(i % 4)].get();
            {
                const HeapWatch watch(bufferSize);
                view->updateWithConnectedImageData(frame, false);
                if (i >= 12) {
                    EXPECT_LE(watch.largest(), kSmall) << "frame " << i;
                    EXPECT_LE(watch.leftOut(), 2U) << "frame " << i;
                }
            }
            // The scene takes the buffers up between frames.
            letEventsHappen(20);
        }
        EXPECT_EQ(size_t(view->cloud().vertexBytes().size()), bufferSize);
        EXPECT_GT(view->cloud().pointCount(), kWidth * kHeight / 2);
    }
}

} // namespace
