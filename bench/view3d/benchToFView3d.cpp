// The processor load of the 3D view: frames of 640 x 480 at 20 per second into a visible window.
//
//   xvfb-run -a benchToFView3d [seconds]
//
// Four runs: no frames (the cost of an idle view), frames, frames with drawing disabled (Qt 3D draws on the
// main thread, which with a software renderer is most of the latency), and frames with the capture leaf
// enabled in the frame graph. For each run: the latency of the main thread's event loop (how late a timer of
// 1 ms fires), the frames shown, the time in our own code per frame, and the processor time per frame of the
// main thread and of all threads, which does not depend on other load.

#include "plugins/zplToF/view3d/3dMdiView.h"
#include "plugins/zplToF/view3d/CkToFRenderCapture.h"
#include "plugins/zplToF/view3d/CkToFScene.h"
#include "tests/support/FakeAppDelegate.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkPicBufAPI.h"

#include <QApplication>
#include <QTimer>
#include <Qt3DExtras/QForwardRenderer>
#include <Qt3DExtras/Qt3DWindow>
#include <Qt3DRender/QNoDraw>
#include <Qt3DRender/QRenderCapture>
#include <Qt3DRender/QSubtreeEnabler>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <vector>

namespace {

constexpr int kWidth = 640;
constexpr int kHeight = 480;
constexpr int kFrameMs = 50;

double now(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

std::unique_ptr<CkImageData> waves(int i) {
    SkPicBuf picture;
    if (!CkPicBufAPI::AllocPicBufFromHeap(
            picture, SkPicBufInfo::of(kWidth, kHeight, 2, EkImageDataType::Float32, 32))) {
        std::abort();
    }
    for (int y = 0; y < kHeight; ++y) {
        auto* row = reinterpret_cast<float*>(picture.row(quint32(y)));
        for (int x = 0; x < kWidth; ++x) {
            row[2 * x] = 3.0F + std::sin(float(x + 5 * i) / 40.0F) * std::cos(float(y) / 30.0F);
            row[2 * x + 1] = 0.1F;
        }
    }
    auto frame = std::make_unique<CkImageData>();
    frame->setPicBuf(picture);
    CkImageMetadata metadata;
    metadata.channelNames = {QStringLiteral("Phase shift"), QStringLiteral("Confidence")};
    frame->setMetadata(metadata);
    return frame;
}

double percentile(std::vector<double> values, double part) {
    if (values.empty()) {
        return 0.0;
    }
    std::sort(values.begin(), values.end());
    return values[size_t(part * double(values.size() - 1))];
}

struct Load {
    std::vector<double> latencyMs;
    std::vector<double> oursMs;
    double mainCpuMs = 0.0;
    double allCpuMs = 0.0;
    double wallMs = 0.0;
};

Load run(CkToF3DMdiView& view, const std::vector<std::unique_ptr<CkImageData>>& frames, int milliseconds) {
    Load load;
    QEventLoop loop;
    QTimer ticker;
    ticker.setTimerType(Qt::PreciseTimer);
    double last = now(CLOCK_MONOTONIC);
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        const double time = now(CLOCK_MONOTONIC);
        load.latencyMs.push_back(std::max(0.0, time - last - 1.0));
        last = time;
    });
    QTimer camera;
    camera.setTimerType(Qt::PreciseTimer);
    size_t next = 0;
    QObject::connect(&camera, &QTimer::timeout, [&] {
        const double start = now(CLOCK_MONOTONIC);
        view.updateWithConnectedImageData(frames[next++ % frames.size()].get(), false);
        load.oursMs.push_back(now(CLOCK_MONOTONIC) - start);
    });
    const double wall = now(CLOCK_MONOTONIC);
    const double main = now(CLOCK_THREAD_CPUTIME_ID);
    const double all = now(CLOCK_PROCESS_CPUTIME_ID);
    ticker.start(1);
    if (!frames.empty()) {
        camera.start(kFrameMs);
    }
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
    load.wallMs = now(CLOCK_MONOTONIC) - wall;
    load.mainCpuMs = now(CLOCK_THREAD_CPUTIME_ID) - main;
    load.allCpuMs = now(CLOCK_PROCESS_CPUTIME_ID) - all;
    return load;
}

void print(const char* name, const Load& load) {
    const double frames = double(std::max<size_t>(1, load.oursMs.size()));
    std::printf(
        "%-26s latency ms: median %.1f 99%% %.1f worst %.1f | %.1f frames/s | ours ms/frame: median %.1f "
        "worst %.1f | processor ms/frame: main thread %.1f, all threads %.1f\n",
        name, percentile(load.latencyMs, 0.5), percentile(load.latencyMs, 0.99),
        percentile(load.latencyMs, 1.0), double(load.oursMs.size()) * 1e3 / load.wallMs,
        percentile(load.oursMs, 0.5), percentile(load.oursMs, 1.0), load.mainCpuMs / frames,
        load.allCpuMs / frames);
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const int milliseconds = 1000 * (argc > 1 ? std::max(1, std::atoi(argv[1])) : 8);
    FakeAppDelegate host;
    host.store(QStringLiteral("ToF.OptCompensateDistorsion"), true);
    CkToF3DMdiView view(-1, -1, nullptr, nullptr);
    if (view.scene() == nullptr) {
        std::fprintf(stderr, "no scene: no usable OpenGL\n");
        return 1;
    }
    std::vector<std::unique_ptr<CkImageData>> frames;
    constexpr int count = 8;
    frames.reserve(count);
    for (int i = 0; i < count; ++i) {
        frames.push_back(waves(i));
    }
    view.resize(800, 600);
    view.show();
    while (!view.scene()->isDrawn()) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    view.updateWithConnectedImageData(frames[0].get(), true);
    run(view, frames, 1000);

    print("no frames", run(view, {}, milliseconds));
    print("20 frames/s", run(view, frames, milliseconds));
    if (view.cloud().pointCount() != kWidth * kHeight) {
        std::fprintf(stderr, "the cloud is not what was given\n");
        return 1;
    }
    // Everything except drawing: the scene still takes over the buffers and runs its jobs.
    Qt3DRender::QFrameGraphNode* leaf = view.scene()->window()->defaultFrameGraph();
    for (auto* child = leaf; child != nullptr; child = leaf->findChild<Qt3DRender::QFrameGraphNode*>()) {
        leaf = child;
    }
    auto* nothing = new Qt3DRender::QNoDraw(leaf);
    print("20 frames/s, none drawn", run(view, frames, milliseconds));
    delete nothing;

    auto* captureLeaf =
        qobject_cast<Qt3DRender::QSubtreeEnabler*>(view.scene()->renderCapture()->capture()->parent());
    captureLeaf->setEnabled(true);
    print("20 frames/s, capture leaf", run(view, frames, milliseconds));
    return 0;
}
