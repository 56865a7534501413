#pragma once

#include "sim/camera/CkSimCamera.h"

#include "zuCore/CkImageData.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

/// Receives a camera's frames and keeps them, or only counts them, for the pool of a camera is small.
class SimFrames {
public:
    using Frame = std::unique_ptr<CkImageData>;

    explicit SimFrames(bool keep = true) : m_keep(keep) {}

    IkCamera::FrameFunction receiver() {
        return [this](CkImageData* data) {
            Frame frame(data);
            const std::lock_guard lock(m_mutex);
            if (m_keep) {
                m_frames.push_back(std::move(frame));
            }
            ++m_count;
            m_arrived.notify_all();
        };
    }

    /// Waits until that many frames have arrived in total. False after a minute.
    bool waitFor(size_t count) {
        std::unique_lock lock(m_mutex);
        return m_arrived.wait_for(lock, std::chrono::seconds(60), [&] { return m_count >= count; });
    }

    size_t count() const {
        const std::lock_guard lock(m_mutex);
        return m_count;
    }

    /// The frames since the last call.
    std::vector<Frame> take() {
        const std::lock_guard lock(m_mutex);
        return std::move(m_frames);
    }

private:
    const bool m_keep;
    mutable std::mutex m_mutex;
    std::condition_variable m_arrived;
    std::vector<Frame> m_frames;
    size_t m_count = 0;
};

/// A value for a parameter, whatever its kind.
struct SimValue {
    template <typename Number>
    SimValue(const char* parameter, Number number) : name(parameter), value(double(number)) {}

    const char* name;
    double value;
};

/// Sets parameters and commits them in one batch. False when one is missing or refused.
inline bool commitSim(IkCamera& camera, const std::vector<SimValue>& values) {
    CkCameraParameters* parameters = camera.parameters();
    for (const SimValue& entry : values) {
        CkCameraParam* param = parameters->findParam(QString::fromLatin1(entry.name));
        if (!param || !param->setParamValue(CkValue(entry.value))) {
            return false;
        }
        parameters->addParamCommitToBatch(param);
    }
    return parameters->endCommitBatch(true);
}

/// One set of a stopped camera, without waiting for its frame rate.
inline std::vector<SimFrames::Frame> simSet(IkCamera& camera, size_t images) {
    SimFrames frames;
    camera.setPaused(true);
    if (!camera.start(frames.receiver(), nullptr)) {
        return {};
    }
    camera.step();
    frames.waitFor(images);
    camera.stop();
    camera.setPaused(false);
    return frames.take();
}
