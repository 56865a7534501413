#pragma once

#include "tests/plugins/zplToF/chain/ToFChainRig.h"

#include <QElapsedTimer>
#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <thread>

// Helpers for tests that run the block on a chain's own thread.

/// Checks every frame that the block delivers.
class CheckingSink : public IkFrameSink {
public:
    using Check = std::function<bool(const CkImageData&)>;
    explicit CheckingSink(Check goodFrame) : m_goodFrame(std::move(goodFrame)) {}

    int takeFrame(CkImageData* data) override {
        const std::unique_ptr<CkImageData> frame(data);
        wrong += !m_goodFrame(*frame);
        ++frames;
        lastId = frame->frameId();
        return 0;
    }

    std::atomic<int> frames{0};
    std::atomic<int> wrong{0};
    std::atomic<int> lastId{-1};

private:
    Check m_goodFrame;
};

/// Polls until the condition holds; false after 30 seconds.
template <typename Condition>
bool waitFor(const Condition& condition) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > 30000) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

/// 4 phases, 8 x 8 pixels: d0 = 100, d90 = 0, d180 = -100, d270 = 0.
inline std::unique_ptr<CkImageData> fourPhases(const ToFChainRig& rig) {
    static constexpr int a[] = {200, 150, 100, 150};
    static constexpr int b[] = {100, 150, 200, 150};
    return rig.frame([](quint32, quint32 y, quint32 c) { return c == 0 ? a[y / 8] : b[y / 8]; });
}

/// Whether a frame is the complete result of one transform of fourPhases, not a mixture of two.
inline bool isWhole(const CkImageData& data) {
    const SkPicBuf& picture = data.picBuf();
    const CkImageMetadata& metadata = data.metadata();
    const int last = valueAt(picture, picture.width - 1, picture.height - 1);
    if (picture.dataType == EkImageDataType::Float32) { // Depth: phase 0
        return picture.height == 8 && picture.channels == 2 &&
               metadata.channelNames.value(0) == "Phase shift" && metadata.phasesCount == 0 && last == 0 &&
               picture.maxValue > 0.0F;
    }
    if (picture.dataType == EkImageDataType::Int16) { // AandBtoAminB: the phase of 270 degrees
        return picture.height == 32 && picture.channels == 1 && metadata.colorFilterArray == 9 &&
               metadata.phasesCount == 4 && last == 0 && valueAt(picture, 0, 0) == 100;
    }
    if (picture.channels == 2) { // SetABPhase or Concat phases: the input
        return picture.height == 32 && metadata.phasesCount == 4 && last == 150;
    }
    // Amplitude: 200 / 4; Intensity: the mean of all samples.
    return picture.height == 8 && picture.dataType == EkImageDataType::UInt16 && metadata.phasesCount == 0 &&
           (last == 50 || last == 150);
}

/// Delivers a frame and waits until the chain has processed it.
inline void pushAndWait(const ToFChainRig& rig, std::unique_ptr<CkImageData> frame) {
    ASSERT_TRUE(rig.source->push(std::move(frame)));
    ASSERT_TRUE(waitFor([&] {
        const SkBlockStatistics statistics = rig.chain->blockStatistics(rig.source);
        return statistics.framesDone + statistics.dropped == statistics.framesIn;
    }));
}
