// Soak test: runs a chain while its transform and the readout of its camera change, and checks that every
// frame has a valid size, memory stays flat and the chain stops cleanly.
//
//   soakToFChain [frames, default 100000]

#include "bench/chain/SoakCamera.h"
#include "plugins/zplToF/chain/CkToFProcessCnbl.h"
#include "plugins/zplToF/transform/ToFNegotiation.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"

#include <QCoreApplication>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <unistd.h>

// Memory in the quarantine of the sanitizer, or not yet returned to the system, would look like growth.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
    return "quarantine_size_mb=16:allocator_release_to_os_interval_ms=100";
}

namespace {

using Block = CkToFProcessCnbl;

constexpr qint64 kFramesPerTransform = 50;
constexpr qint64 kFramesPerReadout = 70;
constexpr long kMaxGrowthKiB = 32 * 1024;

long residentKiB() {
    long pages = 0;
    long resident = 0;
    if (FILE* file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%ld %ld", &pages, &resident) != 2) {
            resident = 0;
        }
        std::fclose(file);
    }
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

bool sameFormat(const SkPicBufInfo& first, const SkPicBufInfo& second) {
    return first.width == second.width && first.height == second.height &&
           first.channels == second.channels && first.dataType == second.dataType &&
           first.lineSize == second.lineSize;
}

/// Whether the frame is a possible result of a transform for the readout that its metadata name.
bool isRight(const CkImageData& frame) {
    SkPicBufInfo in;
    CkImageMetadata record;
    SoakCamera::describe(SoakCamera::Readout(frame.metadata().cameraName.toInt()), in, record);
    for (int transform = 0; transform < 7; ++transform) {
        SkPicBufInfo out;
        CkImageMetadata outRecord;
        if (ToFNegotiation::negotiate(transform, in, out, &record, &outRecord) == nullptr &&
            sameFormat(out, frame.picBuf()) && outRecord.channelNames == frame.metadata().channelNames &&
            outRecord.phasesCount == frame.metadata().phasesCount) {
            return true;
        }
    }
    return false;
}

class SoakSink : public IkFrameSink {
public:
    int takeFrame(CkImageData* data) override {
        const std::unique_ptr<CkImageData> frame(data);
        wrong += !isRight(*frame);
        ++frames;
        return 0;
    }

    std::atomic<qint64> frames{0};
    std::atomic<qint64> wrong{0};
};

/// Changes the transform at a fixed interval of frames, from another thread, as a user does.
void changeTransforms(Block* block, const std::atomic<qint64>& sent, const std::atomic<bool>& done,
                      std::atomic<qint64>& changes) {
    while (!done) {
        if (sent / kFramesPerTransform > changes) {
            ++changes;
            block->setTransform(Block::EkTransformType(changes * 3 % 7), true);
        } else {
            std::this_thread::yield();
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const qint64 total = argc > 1 ? std::atoll(argv[1]) : 100000;
    CkChainManager* const manager = CkChainManager::instance();
    CkChain* const chain = manager->createChain();
    auto* const camera = new SoakCamera;
    auto* const block = new Block;
    manager->insertAfter(chain, camera, nullptr);
    manager->insertAfter(chain, block, camera);
    SoakSink sink;
    chain->addSink(block, &sink);
    chain->start();

    std::atomic<qint64> sent{0};
    std::atomic<qint64> changes{0};
    std::atomic<bool> done{false};
    std::thread user([&] { changeTransforms(block, sent, done, changes); });
    long residentAtFirst = 0;
    for (qint64 frame = 0; frame < total; ++frame) {
        if (frame % kFramesPerReadout == 0) {
            camera->setReadout(SoakCamera::Readout(frame / kFramesPerReadout % SoakCamera::ReadoutCount));
        }
        while (!camera->push(camera->nextFrame())) {
            std::this_thread::yield();
        }
        ++sent;
        if (frame == total / 10) {
            residentAtFirst = residentKiB();
        }
        if (frame % 1000 == 0) {
            application.processEvents();
        }
    }
    done = true;
    user.join();
    chain->stop();
    const bool stopped = chain->stopped();
    const long residentAtLast = residentKiB();
    chain->removeSink(&sink);
    manager->closeChain(manager->chains().first());

    const long growth = residentAtLast - residentAtFirst;
    std::printf("frames in %lld, out %lld, wrong %lld; transforms set %lld; resident memory %ld KiB after a "
                "tenth, %ld KiB at the end; %s\n",
                static_cast<long long>(total), static_cast<long long>(sink.frames.load()),
                static_cast<long long>(sink.wrong.load()), static_cast<long long>(changes.load()),
                residentAtFirst, residentAtLast, stopped ? "stopped cleanly" : "did not stop");
    const bool good = sink.wrong == 0 && sink.frames > 0 && stopped && growth < kMaxGrowthKiB;
    return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
