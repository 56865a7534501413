#include "tests/host/core/fakeCamera.h"

#include "tests/host/core/chainBlocks.h"
#include "zuCore/CkCameraManager.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkPicBufAPI.h"

#include <stdexcept>

namespace {

class FakeCamera : public IkCamera {
public:
    FakeCamera(const SkCameraInfo& info, std::shared_ptr<FakeCameraState> state)
        : m_parameters(info, nullptr), m_state(std::move(state)) {
        ++m_state->alive;
        CkCameraParam::SkDescription gain;
        gain.name = QStringLiteral("gain");
        gain.value = CkValue(1);
        gain.maximum = 10;
        m_parameters.addParam(gain);
        gain.name = QStringLiteral("serial");
        gain.readOnly = true;
        m_parameters.addParam(gain);
    }
    ~FakeCamera() override {
        --m_state->alive;
        m_state->log << QStringLiteral("deleted");
    }

    CkCameraParameters* parameters() override { return &m_parameters; }
    bool frameInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const override {
        info = packedFormat(m_state->width, 4);
        if (pMetadata != nullptr) {
            *pMetadata = CkImageMetadata();
            pMetadata->cameraName = m_parameters.cameraInfo().name;
        }
        return true;
    }
    bool start(FrameFunction deliver, QString* psError) override {
        if (m_state->throwsOnStart) {
            throw std::runtime_error("camera gone wrong");
        }
        if (m_state->refusesStart) {
            *psError = QStringLiteral("no light");
            return false;
        }
        m_state->log << QStringLiteral("start");
        m_state->running = true;
        m_state->deliver = deliver;
        if (m_state->ownThread) {
            m_thread = std::thread([this, deliver] {
                for (quint8 value = 0; m_state->running; ++value) {
                    deliver(fakeFrame(m_state->width, value));
                }
            });
        }
        return true;
    }
    void stop() override {
        m_state->log << QStringLiteral("stop");
        m_state->running = false;
        if (m_thread.joinable()) {
            m_thread.join();
        }
        m_state->deliver = nullptr;
    }
    bool isRunning() const override { return m_state->running; }
    void setPaused(bool bPaused) override {
        m_state->log << (bPaused ? QStringLiteral("pause") : QStringLiteral("go on"));
    }
    void step() override { m_state->log << QStringLiteral("step"); }

private:
    CkCameraParameters m_parameters;
    std::shared_ptr<FakeCameraState> m_state;
    std::thread m_thread;
};

SkCameraInfo infoOf(const char* number) {
    SkCameraInfo info;
    info.id = QStringLiteral("fake:") + QLatin1String(number);
    info.name = QStringLiteral("Fake ") + QLatin1String(number);
    return info;
}

} // namespace

FakeDriver::FakeDriver(std::shared_ptr<FakeCameraState> first, std::shared_ptr<FakeCameraState> second)
    : m_first(std::move(first)), m_second(std::move(second)) {}

QString FakeDriver::name() const {
    return QStringLiteral("Fake");
}

QList<SkCameraInfo> FakeDriver::availableCameras() const {
    QList<SkCameraInfo> cameras{infoOf("2"), infoOf("broken")};
    if (m_first->offered) {
        cameras.prepend(infoOf("1"));
    }
    return cameras;
}

std::unique_ptr<IkCamera> FakeDriver::open(const QString& sId, QString* psError) {
    if (sId == QLatin1String("fake:broken")) {
        *psError = QStringLiteral("lens cap on");
        return nullptr;
    }
    const bool isFirst = sId == QLatin1String("fake:1");
    if ((isFirst ? m_first : m_second)->refusesOpen) {
        *psError = QStringLiteral("in use elsewhere");
        return nullptr;
    }
    return std::make_unique<FakeCamera>(infoOf(isFirst ? "1" : "2"), isFirst ? m_first : m_second);
}

FakeCameras& FakeCameras::instance() {
    static FakeCameras cameras = [] {
        FakeCameras made{std::make_shared<FakeCameraState>(), std::make_shared<FakeCameraState>()};
        CkCameraManager::instance()->addDriver(std::make_unique<FakeDriver>(made.first, made.second));
        return made;
    }();
    return cameras;
}

void FakeCameras::reset() const {
    for (const SkCameraInfo& info : CkCameraManager::instance()->withheldCameras()) {
        CkCameraManager::instance()->plugCameraIn(info.id);
    }
    for (void* handle : CkCameraManager::instance()->openedCameras()) {
        CkCameraManager::instance()->closeCamera(handle);
    }
    for (const auto& state : {first, second}) {
        state->log.clear();
        state->refusesStart = state->throwsOnStart = state->ownThread = state->refusesOpen = false;
        state->offered = true;
        state->width = 8;
    }
}

CkImageData* fakeFrame(quint32 width, quint8 value) {
    auto frame = makeFrame(packedFormat(width, 4));
    std::fill_n(frame->picBuf().data, CkPicBufAPI::byteSize(frame->picBuf()), value);
    return frame.release();
}
