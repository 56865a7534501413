#include "sim/camera/CkSimCameraDriver.h"
#include "tests/sim/SimFrames.h"

#include "zuCore/CkPicBufAPI.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <set>
#include <thread>

namespace {

std::unique_ptr<IkCamera> openWave() {
    CkSimCameraDriver driver;
    return driver.open(CkSimCameraDriver::kWaveId, nullptr);
}

bool samePixels(const SkPicBuf& first, const SkPicBuf& second) {
    const size_t packed = size_t(first.width) * first.channels * sampleBytes(first.dataType);
    for (quint32 row = 0; row < first.height; ++row) {
        if (std::memcmp(first.row(row), second.row(row), packed) != 0) {
            return false;
        }
    }
    return true;
}

} // namespace

TEST(CkSimCameraDriver, offersThreeCameras) {
    CkSimCameraDriver driver;
    const QList<SkCameraInfo> cameras = driver.availableCameras();
    ASSERT_EQ(cameras.size(), 3);
    std::set<QString> ids;
    std::set<QString> serials;
    for (const SkCameraInfo& info : cameras) {
        ids.insert(info.id);
        serials.insert(info.serial);
        EXPECT_FALSE(info.name.isEmpty());
        EXPECT_FALSE(info.model.isEmpty());
        const auto camera = driver.open(info.id, nullptr);
        ASSERT_TRUE(camera);
        EXPECT_EQ(camera->parameters()->cameraInfo().id, info.id);
        EXPECT_EQ(camera->parameters()->cameraInfo().sensorType, info.sensorType);
    }
    EXPECT_EQ(ids.size(), 3U);
    EXPECT_EQ(serials.size(), 3U);
    QString sError;
    EXPECT_EQ(driver.open("sim:nothing", &sError), nullptr);
    EXPECT_TRUE(sError.contains("sim:nothing"));
    EXPECT_EQ(driver.open("sim:nothing", nullptr), nullptr);
}

TEST(CkSimCamera, picturesAreTheSameAfterEveryStart) {
    const auto first = openWave();
    const auto second = openWave();
    ASSERT_TRUE(commitSim(*first, {{"framerate", 100.0}}));
    ASSERT_TRUE(commitSim(*second, {{"framerate", 100.0}}));
    std::vector<std::vector<SimFrames::Frame>> runs;
    for (IkCamera* camera : {first.get(), first.get(), second.get()}) {
        SimFrames receiver;
        camera->setPaused(true);
        ASSERT_TRUE(camera->start(receiver.receiver(), nullptr));
        for (size_t set = 0; set < 3; ++set) {
            camera->step();
            ASSERT_TRUE(receiver.waitFor(set + 1));
        }
        camera->stop();
        runs.push_back(receiver.take());
    }
    for (size_t set = 0; set < 3; ++set) {
        EXPECT_TRUE(samePixels(runs[0][set]->picBuf(), runs[1][set]->picBuf()));
        EXPECT_TRUE(samePixels(runs[0][set]->picBuf(), runs[2][set]->picBuf()));
    }
    EXPECT_FALSE(samePixels(runs[0][0]->picBuf(), runs[0][1]->picBuf()));
}

TEST(CkSimCamera, countsItsFramesAndItsClock) {
    const auto camera = openWave();
    ASSERT_TRUE(commitSim(*camera, {{"framerate", 50.0}, {"tof_phases", 2}, {"tof_phase_images", 1}}));
    SimFrames receiver;
    camera->setPaused(true);
    ASSERT_TRUE(camera->start(receiver.receiver(), nullptr));
    for (int set = 0; set < 3; ++set) {
        camera->step();
    }
    ASSERT_TRUE(receiver.waitFor(6));
    camera->stop();
    const auto frames = receiver.take();
    ASSERT_EQ(frames.size(), 6U);
    for (size_t index = 0; index < 6; ++index) {
        const SkPicAdditionalData& data = frames[index]->picBuf().additionalData;
        EXPECT_EQ(data.frameNumber, index);
        EXPECT_EQ(frames[index]->metadata().frameNumber, index);
        EXPECT_EQ(data.timestampNs, qint64(index / 2) * 20000000);
        EXPECT_EQ(frames[index]->metadata().phaseSequenceIndex, qint32(index % 2));
        EXPECT_GE(frames[index]->metadata().timestampNs,
                  frames[index > 0 ? index - 1 : 0]->metadata().timestampNs);
    }
}

TEST(CkSimCamera, runsByItselfAtItsFrameRate) {
    const auto camera = openWave();
    ASSERT_TRUE(commitSim(*camera, {{"framerate", 50.0}, {"tof_phases", 1}}));
    SimFrames receiver;
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_TRUE(camera->start(receiver.receiver(), nullptr));
    EXPECT_TRUE(camera->isRunning());
    ASSERT_TRUE(receiver.waitFor(6));
    const auto elapsed = std::chrono::steady_clock::now() - begin;
    camera->stop();
    EXPECT_FALSE(camera->isRunning());
    // The sixth set is due five periods after the first; a slow machine may be later, no machine earlier.
    EXPECT_GE(elapsed, std::chrono::milliseconds(100));
}

TEST(CkSimCamera, separateImagesAreSpreadOverThePeriod) {
    const auto camera = openWave();
    ASSERT_TRUE(commitSim(*camera, {{"framerate", 5.0}, {"tof_phase_images", 1}}));
    SimFrames receiver;
    camera->setPaused(true);
    ASSERT_TRUE(camera->start(receiver.receiver(), nullptr));
    const auto begin = std::chrono::steady_clock::now();
    camera->step();
    ASSERT_TRUE(receiver.waitFor(4));
    const auto elapsed = std::chrono::steady_clock::now() - begin;
    camera->stop();
    EXPECT_GE(elapsed, std::chrono::milliseconds(150)) << "the fourth image comes after three quarters";
}

TEST(CkSimCamera, nothingArrivesAfterStop) {
    const auto camera = openWave();
    ASSERT_TRUE(commitSim(*camera, {{"framerate", 200.0}, {"tof_phase_images", 1}}));
    for (int round = 0; round < 20; ++round) {
        auto receiver = std::make_unique<SimFrames>(false);
        std::atomic<bool> inside{false};
        const auto receive = receiver->receiver();
        ASSERT_TRUE(camera->start(
            [&inside, receive](CkImageData* data) {
                inside = true;
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
                receive(data);
                inside = false;
            },
            nullptr));
        ASSERT_TRUE(receiver->waitFor(size_t(round % 3)));
        camera->stop();
        EXPECT_FALSE(inside);
        EXPECT_FALSE(camera->isRunning());
    }
    camera->stop();
    EXPECT_FALSE(camera->isRunning());
}

TEST(CkSimCamera, stopDoesNotWaitForALongPeriod) {
    // A period of ten seconds; the whole test program would time out if each stop sat one of them out.
    const auto camera = openWave();
    ASSERT_TRUE(commitSim(*camera, {{"framerate", 0.1}}));
    for (int round = 0; round < 50; ++round) {
        SimFrames receiver;
        ASSERT_TRUE(camera->start(receiver.receiver(), nullptr));
        ASSERT_TRUE(receiver.waitFor(1));
        camera->stop();
        EXPECT_EQ(receiver.count(), 1U);
    }
}

TEST(CkSimCamera, aShorterPeriodAppliesWhileALongOneIsWaitedFor) {
    const auto camera = openWave();
    ASSERT_TRUE(commitSim(*camera, {{"framerate", 0.1}}));
    SimFrames receiver(false);
    ASSERT_TRUE(camera->start(receiver.receiver(), nullptr));
    for (int round = 0; round < 8; ++round) {
        ASSERT_TRUE(receiver.waitFor(receiver.count() + (round == 0 ? 1 : 0)));
        ASSERT_TRUE(commitSim(*camera, {{"framerate", 100.0}}));
        ASSERT_TRUE(receiver.waitFor(receiver.count() + 3));
        ASSERT_TRUE(commitSim(*camera, {{"framerate", 0.1}}));
    }
    camera->stop();
}

TEST(CkSimCamera, pausesAndSteps) {
    const auto camera = openWave();
    ASSERT_TRUE(commitSim(*camera, {{"framerate", 100.0}, {"tof_phase_images", 1}}));
    SimFrames receiver(false);
    camera->setPaused(true);
    ASSERT_TRUE(camera->start(receiver.receiver(), nullptr));
    EXPECT_TRUE(camera->isRunning());
    camera->step();
    ASSERT_TRUE(receiver.waitFor(4));
    camera->step();
    camera->step();
    ASSERT_TRUE(receiver.waitFor(12));
    // Held: nothing more comes by itself in ten periods.
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ(receiver.count(), 12U);
    camera->setPaused(false);
    ASSERT_TRUE(receiver.waitFor(17));
    // Held in the middle of a set, the camera finishes it.
    camera->setPaused(true);
    EXPECT_TRUE(receiver.waitFor(20));
    camera->stop();
}

TEST(CkSimCamera, stepWithoutPauseDoesNothing) {
    const auto camera = openWave();
    ASSERT_TRUE(commitSim(*camera, {{"framerate", 0.1}}));
    SimFrames receiver;
    ASSERT_TRUE(camera->start(receiver.receiver(), nullptr));
    ASSERT_TRUE(receiver.waitFor(1));
    camera->step();
    camera->step();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(receiver.count(), 1U);
    camera->stop();
}

TEST(CkSimCamera, refusesAStartThatCannotWork) {
    const auto camera = openWave();
    QString sError;
    EXPECT_FALSE(camera->start(nullptr, &sError));
    EXPECT_FALSE(sError.isEmpty());
    EXPECT_FALSE(camera->isRunning());
    SimFrames receiver;
    ASSERT_TRUE(camera->start(receiver.receiver(), &sError));
    sError.clear();
    EXPECT_FALSE(camera->start(receiver.receiver(), &sError));
    EXPECT_FALSE(sError.isEmpty());
    EXPECT_TRUE(camera->isRunning());
    camera->stop();
}

TEST(CkSimCamera, canBeStoppedByItsReceiver) {
    const auto camera = openWave();
    ASSERT_TRUE(commitSim(*camera, {{"framerate", 200.0}}));
    SimFrames receiver;
    const auto receive = receiver.receiver();
    ASSERT_TRUE(camera->start(
        [&](CkImageData* data) {
            camera->stop();
            receive(data);
        },
        nullptr));
    ASSERT_TRUE(receiver.waitFor(1));
    camera->stop();
    EXPECT_EQ(receiver.count(), 1U);
    EXPECT_FALSE(camera->isRunning());
    ASSERT_TRUE(camera->start(receiver.receiver(), nullptr));
    EXPECT_TRUE(receiver.waitFor(2));
    camera->stop();
}

TEST(CkSimCamera, changesApplyTogetherAtTheBoundaryOfASet) {
    const auto camera = openWave();
    ASSERT_TRUE(commitSim(*camera, {{"framerate", 100.0}, {"tof_phase_images", 1}}));
    SimFrames receiver(false);
    ASSERT_TRUE(camera->start(receiver.receiver(), nullptr));
    for (int round = 0; round < 10; ++round) {
        ASSERT_TRUE(receiver.waitFor(receiver.count() + 3));
        const bool even = round % 2 == 0;
        ASSERT_TRUE(commitSim(*camera, {{"tof_readout_mode", even ? 2 : 4},
                                        {"imgdataformat", even ? 6 : 13},
                                        {"tof_phases", even ? 2 : 4}}));
        SkPicBufInfo info;
        ASSERT_TRUE(camera->frameInfo(info, nullptr));
        EXPECT_EQ(info.channels, even ? 1U : 2U) << "the new format is available immediately";
    }
    ASSERT_TRUE(receiver.waitFor(receiver.count() + 4));
    camera->stop();

    // A run of its own to look at every frame: sets are whole, and never half of each setting. Set by set,
    // for the pool of the camera is small.
    SimFrames record;
    camera->setPaused(true);
    ASSERT_TRUE(camera->start(record.receiver(), nullptr));
    std::vector<SimFrames::Frame> frames;
    size_t delivered = 0;
    for (int round = 0; round < 6; ++round) {
        const bool even = round % 2 == 0;
        camera->step();
        // In the middle of a set of four or two images.
        ASSERT_TRUE(record.waitFor(delivered + 1));
        ASSERT_TRUE(commitSim(*camera, {{"tof_readout_mode", even ? 2 : 4},
                                        {"imgdataformat", even ? 6 : 13},
                                        {"tof_phases", even ? 2 : 4}}));
        delivered += even ? 4 : 2;
        ASSERT_TRUE(record.waitFor(delivered));
        // Kept without pixels, so that the pictures return to the pool.
        for (SimFrames::Frame& frame : record.take()) {
            auto copy = std::make_unique<CkImageData>();
            copy->setMetadata(frame->metadata());
            SkPicBuf description;
            static_cast<SkPicBufInfo&>(description) = frame->picBuf();
            copy->setPicBuf(description);
            frames.push_back(std::move(copy));
        }
    }
    camera->stop();
    ASSERT_EQ(frames.size(), delivered);
    quint64 number = 0;
    qint32 index = 0;
    for (const SimFrames::Frame& frame : frames) {
        const CkImageMetadata& metadata = frame->metadata();
        EXPECT_EQ(metadata.frameNumber, number++);
        EXPECT_EQ(metadata.phaseSequenceIndex, index);
        const bool difference = frame->picBuf().channels == 1;
        EXPECT_EQ(metadata.phaseSequenceLength, difference ? 2 : 4);
        EXPECT_EQ(metadata.tofFormatCode, difference ? 0x80a05f0cU : 0x80ab0f0cU);
        index = index + 1 == metadata.phaseSequenceLength ? 0 : index + 1;
    }
}

TEST(CkSimCamera, aBatchReachesTheCameraAsOneChange) {
    const auto camera = openWave();
    int commits = 0;
    qsizetype params = 0;
    QObject::connect(camera->parameters(), &CkCameraParameters::committed, camera->parameters(),
                     [&](const QList<CkCameraParam*>& changed) {
                         ++commits;
                         params = changed.size();
                     });
    ASSERT_TRUE(commitSim(*camera, {{"tof_readout_mode", 2}, {"imgdataformat", 6}, {"tof_phases", 8}}));
    EXPECT_EQ(commits, 1);
    EXPECT_EQ(params, 3);
    // What is set but not committed has no effect, whatever else is committed.
    CkCameraParam* readout = camera->parameters()->findParam("tof_readout_mode");
    ASSERT_TRUE(readout->setParamValue(CkValue(4)));
    ASSERT_TRUE(commitSim(*camera, {{"tof_phases", 2}}));
    SkPicBufInfo info;
    ASSERT_TRUE(camera->frameInfo(info, nullptr));
    EXPECT_EQ(info.channels, 1U);
    EXPECT_EQ(info.height, 960U);
    EXPECT_EQ(readout->committedValue().toInt(), 2);
}

TEST(CkSimCamera, lendsAFewPicturesAndDropsWhenAllAreHeld) {
    const auto camera = openWave();
    ASSERT_TRUE(commitSim(*camera, {{"framerate", 200.0}, {"tof_phases", 1}}));
    const auto* sim = static_cast<const CkSimCamera*>(camera.get());
    SimFrames holder;
    ASSERT_TRUE(camera->start(holder.receiver(), nullptr));
    ASSERT_TRUE(holder.waitFor(4));
    for (int waited = 0; sim->droppedSets() < 3 && waited < 30000; ++waited) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_GE(sim->droppedSets(), 3U);
    const size_t held = holder.count();
    const quint64 lost = sim->droppedSets();
    std::set<const quint8*> memory;
    std::vector<SimFrames::Frame> frames = holder.take();
    for (const SimFrames::Frame& frame : frames) {
        memory.insert(frame->picBuf().data);
    }
    EXPECT_EQ(memory.size(), held);
    // Released memory is reused.
    frames.clear();
    ASSERT_TRUE(holder.waitFor(held + 2));
    camera->stop();
    for (const SimFrames::Frame& frame : holder.take()) {
        EXPECT_TRUE(memory.count(frame->picBuf().data) == 1);
        EXPECT_GE(frame->metadata().frameNumber, held + lost) << "what was lost leaves a gap";
    }
}

TEST(CkSimCamera, framesOutliveTheCamera) {
    SimFrames receiver;
    {
        const auto camera = openWave();
        ASSERT_TRUE(camera->start(receiver.receiver(), nullptr));
        ASSERT_TRUE(receiver.waitFor(2));
    }
    for (const SimFrames::Frame& frame : receiver.take()) {
        EXPECT_EQ(frame->picBuf().row(frame->picBuf().height - 1) - frame->picBuf().data,
                  qptrdiff(1919) * frame->picBuf().lineSize);
    }
}
